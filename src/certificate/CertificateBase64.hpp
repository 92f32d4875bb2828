// The certificate codec's encoder on any bytes, for callers inside the library
// whose bytes are not in a std::string (the list's XML in libplist's buffer).
#pragma once

#include <string>
#include <string_view>

namespace OrvelDialogs::CertificateCodec {

// What Certificate::dataToBase64String gives for the same bytes.
std::string encode(std::string_view bytes);
// The same text in `text`, whose room is reused.
void encodeInto(std::string_view bytes, std::string &text);

} // namespace OrvelDialogs::CertificateCodec
