// Application bundles: a directory with Contents/Info.plist and the executable
// in Contents/MacOS (the macOS layout), or Info.plist and the executable at
// the top level (the flat layout).
#pragma once

#include <optional>
#include <string>

namespace OrvelDialogs::Platform {

// The executable of the bundle at `bundlePath`: named by CFBundleExecutable
// in its Info.plist, or like the bundle folder without its extension when it
// has none. No value for a path that is not a directory or a bundle without
// an executable. Raises the platform exception for an Info.plist that cannot
// be read or is refused unparsed (see PropertyListBounds.hpp).
std::optional<std::string> bundleExecutablePath(const std::string &bundlePath);

} // namespace OrvelDialogs::Platform
