#include "common/ExecutableFolder.hpp"

#include <limits.h>
#include <unistd.h>
#ifdef __APPLE__
#include <mach-o/dyld.h>
#endif

namespace OrvelGui {

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
    const std::string file(path);
    return file.substr(0, file.rfind('/'));
}

} // namespace OrvelGui
