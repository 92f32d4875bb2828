#include "PlugIns.hpp"

#include "common/ExecutableFolder.hpp"

#include <dlfcn.h>

namespace OrvelGui {

void *openPlugIn(const char *fileName, std::string &error)
{
    const std::string path = executableFolder() + "/../PlugIns/" + fileName;
    void *handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        const char *why = dlerror();
        error = why ? why : path + " cannot be loaded";
    }
    return handle;
}

} // namespace OrvelGui
