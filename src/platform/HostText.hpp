// Texts that cross the C interface are NUL-terminated UTF-8. Inside the
// library a text is a std::string holding valid UTF-8, and "no value" is
// std::nullopt.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace OrvelDialogs::Platform {

// Strict UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
bool isValidUtf8(std::string_view bytes);

// The host's text, or no value for a null pointer or invalid UTF-8.
std::optional<std::string> textFromHost(const char *text);

// The bytes as text, or no value when they are not valid UTF-8.
std::optional<std::string> textFromBytes(std::string_view bytes);

} // namespace OrvelDialogs::Platform

namespace OrvelDialogs::Platform {

// The bytes with every invalid UTF-8 sequence replaced by U+FFFD, for texts
// that must go into the log whatever they hold.
std::string textReplacingInvalidUtf8(std::string_view bytes);

} // namespace OrvelDialogs::Platform
