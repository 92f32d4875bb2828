// What an Info.plist may be before libplist sees it. A real one is a few KiB
// and a few levels deep; libplist reads and frees nested containers
// recursively, so a deep one would overflow the host's stack, and it reads a
// document whole, so a huge one would fill the host's memory.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace OrvelDialogs::Platform {

inline constexpr size_t kPropertyListMaximumBytes = 1u << 20;
inline constexpr size_t kPropertyListMaximumNesting = 32;

// Why libplist must not read `bytes` (nested too deep, or a binary property
// list that is malformed or whose containers hold themselves), or no value.
// XML nesting counts elements; binary nesting, objects.
std::optional<std::string> nestingRefusal(std::string_view bytes);

// The same, and too large for an Info.plist.
std::optional<std::string> infoPlistRefusal(std::string_view bytes);

} // namespace OrvelDialogs::Platform
