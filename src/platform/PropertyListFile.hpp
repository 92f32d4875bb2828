// Reading one value out of a property-list file (XML or binary), as bundles
// keep their Info.plist.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace OrvelDialogs::Platform {

// The string stored under `key` in the top-level dictionary of the property
// list at `path`; no value if the file is missing or cannot be parsed, or
// holds no such string. Raises the platform exception, saying why, when it
// cannot be opened or read, or is too large or nested too deep to parse.
std::optional<std::string> readStringFromPropertyListFile(const std::string &path, const std::string &key);

// The same for the file's bytes; `name` names the file in the exception.
std::optional<std::string> stringFromInfoPlist(std::string_view bytes, const std::string &key,
                                              const std::string &name);

} // namespace OrvelDialogs::Platform
