// The RTF reader on arbitrary bytes: it reads or says that it cannot (and
// then keeps the bytes as they are), its text is UTF-8 with its concealed
// passages in order inside it and no longer than the input allows, and what
// a view shows of it hides nothing.
#include "VisibleTextCheck.hpp"

#include "common/RtfText.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string bytes = OrvelFuzz::bytesOf(data, size);
    const OrvelGui::RtfText reading = OrvelGui::readRtf(bytes);
    if (!reading.readable) {
        FUZZ_CHECK(reading.text == bytes);
        FUZZ_CHECK(reading.concealed.empty());
    } else {
        FUZZ_CHECK(bytes.rfind("{\\rtf", 0) == 0);
        FUZZ_CHECK(OrvelGui::isUtf8(reading.text));
        // At most three bytes of text for each byte read ("\_" is U+2011).
        FUZZ_CHECK(reading.text.size() <= 3 * bytes.size());
        std::size_t at = 0;
        for (const OrvelGui::TextSpan &span : reading.concealed) {
            FUZZ_CHECK(span.begin >= at && span.begin < span.end && span.end <= reading.text.size());
            at = span.end;
        }
    }
    const OrvelGui::VisibleText shown = OrvelGui::visibleRtf(reading, "<", ">");
    OrvelFuzz::checkVisible(shown);
    // Twelve bytes for a marker ("⟨U+0001⟩") in place of a byte, at most.
    FUZZ_CHECK(shown.text.size() <= 12 * reading.text.size() + 2 * reading.concealed.size());
    return 0;
}
