// The certificate codec on any bytes and text, for callers inside the library
// whose bytes are not in a std::string (the list's XML in libplist's buffer, a
// value file mapped by the GUI application, a token of the reply).
#pragma once

#include <string>
#include <string_view>
#include <vector>

class Certificate;

namespace OrvelDialogs::CertificateCodec {

// What Certificate::dataToBase64String gives for the same bytes.
std::string encode(std::string_view bytes);
// The same text in `text`, whose room is reused.
void encodeInto(std::string_view bytes, std::string &text);
// What Certificate::b64StringToData gives, in `bytes` (emptied first): no
// copy of the text, and the caller decides what becomes of the room.
void decodeInto(std::string_view text, std::string &bytes);

// Certificate::decodeCertificateArrayFromPropertyList on the list text's
// bytes, already decoded: for a GUI application that has them decoded (and
// checked) already.
int decodeList(std::string_view propertyList, std::vector<Certificate> &outArray);

} // namespace OrvelDialogs::CertificateCodec
