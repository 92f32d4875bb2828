#include "PlugIns.hpp"

#include <dlfcn.h>
#include <limits.h>
#include <unistd.h>
#ifdef __APPLE__
#include <mach-o/dyld.h>
#endif

namespace OrvelGui {
namespace {

std::string executableFolder()
{
    char path[PATH_MAX + 1] = {};
#ifdef __APPLE__
    uint32_t size = PATH_MAX;
    if (_NSGetExecutablePath(path, &size) != 0)
        return {};
#else
    const ssize_t n = ::readlink("/proc/self/exe", path, PATH_MAX);
    if (n <= 0)
        return {};
    path[n] = '\0';
#endif
    const std::string folder(path);
    return folder.substr(0, folder.rfind('/'));
}

} // namespace

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
