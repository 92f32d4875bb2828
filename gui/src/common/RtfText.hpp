// The readable text of the "-rtf" value, as a word processor would show it:
// the body, headers and footers, footnotes, field results, table cells, with
// \uN and \'hh characters in the document's code page; tables of fonts,
// colours and styles, pictures, binary data and the destinations that a
// reader does not know taken out. Text that the document hides or makes hard
// to see is kept, and its place noted, so that the user reads all of it.
#pragma once

#include "common/VisibleText.hpp"

#include <string>
#include <string_view>
#include <vector>

namespace OrvelGui {

struct RtfText {
    // False: not RTF at all, or RTF that cannot be read (groups that do not
    // balance, binary data past the end, text after the document); `text` is
    // then the input as it is.
    bool readable = false;
    std::string text; // UTF-8 when readable
    // Ranges of `text` that the document hides (\v), writes in the colour of
    // their background, or sets below 4 points. In order, apart.
    std::vector<TextSpan> concealed;
};

// Linear in the length of the input, for any input.
RtfText readRtf(std::string_view rtf);

// What a view shows of a reading: each concealed passage between the two
// notes, every hidden character as its marker.
VisibleText visibleRtf(const RtfText &reading, std::string_view concealedStart, std::string_view concealedEnd);

} // namespace OrvelGui
