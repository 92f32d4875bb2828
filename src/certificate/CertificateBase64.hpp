// The certificate codec on bytes and text that are not in a std::string (the
// list's XML in libplist's buffer, a token of the reply).
#pragma once

#include <string>
#include <string_view>

namespace OrvelDialogs::CertificateCodec {

// What Certificate::dataToBase64String gives for the same bytes.
std::string encode(std::string_view bytes);
// The same text in `text`, whose room is reused.
void encodeInto(std::string_view bytes, std::string &text);
// What Certificate::b64StringToData gives, in `bytes` (emptied first): no
// copy of the text, and the caller decides what becomes of the room.
void decodeInto(std::string_view text, std::string &bytes);

} // namespace OrvelDialogs::CertificateCodec
