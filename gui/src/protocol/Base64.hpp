// Base64 as the protocol writes it: the standard alphabet, "=" padding, no
// line breaks.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace OrvelGui {

// Strict Base64 (standard alphabet, "=" padding, length a multiple of four);
// nothing on text that is not.
std::optional<std::string> decodeBase64Strict(std::string_view text);
std::string encodeBase64(std::string_view bytes);

} // namespace OrvelGui
