// What every text that reaches a view must be, checked by the fuzz targets of
// the GUI application's readers: UTF-8 whose marks lie in order inside it, and
// in which nothing outside the marks is hidden.
#pragma once

#include "FuzzCheck.hpp"

#include "common/SignedData.hpp"
#include "common/VisibleText.hpp"

namespace OrvelFuzz {

inline void checkVisible(const OrvelGui::VisibleText &visible)
{
    FUZZ_CHECK(OrvelGui::isUtf8(visible.text));
    std::size_t at = 0;
    for (const OrvelGui::TextSpan &span : visible.marks) {
        FUZZ_CHECK(span.begin >= at && span.begin < span.end && span.end <= visible.text.size());
        at = span.end;
    }
    OrvelGui::forEachPiece(visible, [](std::string_view piece, bool mark) {
        if (!mark)
            FUZZ_CHECK(OrvelGui::visibleText(piece).hiddenCharacters == 0);
    });
}

} // namespace OrvelFuzz
