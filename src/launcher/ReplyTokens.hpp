// The GUI application's reply is cut into tokens at every single space; two
// spaces in a row make an empty token. Tokens are found by scanning, so that
// a huge reply of spaces costs no memory.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace OrvelDialogs::Launcher {

// The token at `index`; raises the platform exception when the reply has no
// such token.
std::string_view tokenAt(std::string_view reply, size_t index);

// The index of the first token equal to `token`.
std::optional<size_t> findToken(std::string_view reply, std::string_view token);

} // namespace OrvelDialogs::Launcher
