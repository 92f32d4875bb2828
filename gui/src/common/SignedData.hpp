// How the data to be signed is put before the user. Both front ends show it
// through this, so that data which is not text is never shown blank (and so
// never signed unseen).
#pragma once

#include "common/RtfText.hpp"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace OrvelGui {

struct SignedDataView {
    bool isText = true; // false: `text` is a hex dump of the bytes
    std::string text;
};

// UTF-8 data as it is; anything else as a hex dump, 16 bytes a line:
// "00000000  50 61 79 20 ... |Pay ...|".
SignedDataView viewSignedData(std::string_view bytes);

// The hex dump alone.
std::string hexDump(std::string_view bytes);

// Nothing that could be signed is there to be seen: the data show nothing
// (empty, or white space alone) and neither does the formatted text, if any.
// The windows then offer only to decline.
bool nothingToSign(std::string_view data, const std::optional<RtfText> &formatted);

bool isUtf8(std::string_view bytes);
// Bytes of the well-formed UTF-8 sequence at bytes[i] (i < size); 0 when
// there is none.
std::size_t utf8SequenceLength(std::string_view bytes, std::size_t i);

} // namespace OrvelGui
