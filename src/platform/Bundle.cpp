#include "platform/Bundle.hpp"

#include "platform/PlatformException.hpp"
#include "platform/PropertyListFile.hpp"

#include <sys/stat.h>

#include <array>

namespace OrvelDialogs::Platform {
namespace {

bool isDirectory(const std::string &path)
{
    struct stat info{};
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool isRegularFile(const std::string &path)
{
    struct stat info{};
    return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

std::string withoutTrailingSlashes(std::string path)
{
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

// "/x/OrvelGUI.app" gives "OrvelGUI".
std::string bundleBaseName(const std::string &bundlePath)
{
    const auto slash = bundlePath.find_last_of('/');
    std::string name = slash == std::string::npos ? bundlePath : bundlePath.substr(slash + 1);
    const auto dot = name.find_last_of('.');
    if (dot != std::string::npos && dot > 0)
        name.erase(dot);
    return name;
}

struct Layout {
    const char *infoPlist;
    const char *executableFolder;
};
constexpr std::array<Layout, 2> kLayouts{{{"/Contents/Info.plist", "/Contents/MacOS/"}, {"/Info.plist", "/"}}};

} // namespace

std::optional<std::string> bundleExecutablePath(const std::string &givenPath)
{
    if (givenPath.empty() || !isDirectory(givenPath))
        return std::nullopt;
    const std::string bundlePath = withoutTrailingSlashes(givenPath);

    for (const auto &layout : kLayouts) {
        const std::string infoPlist = bundlePath + layout.infoPlist;
        if (!isRegularFile(infoPlist))
            continue;
        std::optional<std::string> name;
        try {
            name = readStringFromPropertyListFile(infoPlist, "CFBundleExecutable");
        } catch (const PlatformException &refused) {
            // The bundle is there, but its Info.plist could not be opened or
            // read, or was refused: say that and why, not that it is missing.
            throw PlatformException("cannot start the application bundle at \"" + givenPath +
                                    "\": " + refused.reason());
        }
        if (!name || name->empty() || name->find('/') != std::string::npos)
            return std::nullopt;
        const std::string executable = bundlePath + layout.executableFolder + *name;
        if (isRegularFile(executable))
            return executable;
        return std::nullopt;
    }

    const std::string name = bundleBaseName(bundlePath);
    for (const auto &layout : kLayouts) {
        const std::string executable = bundlePath + layout.executableFolder + name;
        if (isRegularFile(executable))
            return executable;
    }
    return std::nullopt;
}

} // namespace OrvelDialogs::Platform
