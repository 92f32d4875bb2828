// What a view may show of a text from outside (the host, a document, a
// certificate, the file system). A character that a reader cannot see or that
// reorders the text around it never reaches a view as itself: it becomes a
// marker such as "⟨U+202E⟩" in its place, which the front ends draw apart
// from the text (reverse video, a coloured box). Both front ends show every
// outside text through this, so that what the user reads is what is there.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace OrvelGui {

// A byte range [begin, end) of a text.
struct TextSpan {
    std::size_t begin = 0;
    std::size_t end = 0;
};

struct VisibleText {
    std::string text;            // valid UTF-8; line breaks are "\n" alone
    std::vector<TextSpan> marks; // what is ours (markers, notes): in order, apart
    std::size_t hiddenCharacters = 0; // markers that stand for a character (or a byte)
};

// How line feeds and tabs of a text are shown: as they are, or as markers
// (for a value that must stay on one line, such as a name's attribute).
enum class LineBreaks { Keep, Mark };

// Builds a VisibleText piece by piece, in time linear in its length.
class VisibleTextBuilder {
public:
    // Outside text: each character a reader cannot see or that reorders text
    // becomes a marker. These are C0 and C1 controls (a line feed and a tab
    // only with LineBreaks::Mark; a carriage return right before a line feed
    // is part of the line break and dropped), format characters (Cf: bidi
    // controls, zero-width characters, the BOM, the soft hyphen, tag
    // characters), U+2028 and U+2029, private-use and unassigned code points,
    // and variation selectors. A byte that is no UTF-8 is one marker too.
    void append(std::string_view outside, LineBreaks breaks = LineBreaks::Keep);
    // A text made visible already.
    void append(const VisibleText &visible);
    // Text of our own (a label, a line break) as it is.
    void appendOwn(std::string_view own);
    // Text of our own that the views draw as a mark, like the markers (such
    // as the brackets around text that a document hides).
    void appendNote(std::string_view own);
    std::size_t size() const { return result_.text.size(); }
    VisibleText take() { return std::move(result_); }

private:
    void mark(std::size_t begin);
    void marker(const char *prefix, unsigned value, int digits);

    VisibleText result_;
};

VisibleText visibleText(std::string_view outside, LineBreaks breaks = LineBreaks::Keep);

// A name proposed for a field the user may edit (a file to save, a PKCS#12
// file) as it is shown: with its markers as text. The field then holds what
// the user sees, and the file gets that name (or, when it holds hidden
// characters, is not found under it).
std::string offeredAsShown(std::string_view outside);

// A pattern of our own with each "{}" replaced by the next outside value, on
// one line (as fill() does for texts of our own).
VisibleText fillVisible(std::string_view pattern, std::initializer_list<std::string_view> outside);

// Calls f(piece, isMark) for the text's pieces in order.
template <typename F> void forEachPiece(const VisibleText &visible, F &&f)
{
    std::size_t at = 0;
    const std::string_view text = visible.text;
    for (const TextSpan &span : visible.marks) {
        if (span.begin > at)
            f(text.substr(at, span.begin - at), false);
        f(text.substr(span.begin, span.end - span.begin), true);
        at = span.end;
    }
    if (at < text.size())
        f(text.substr(at), false);
}

// True when the text shows nothing: empty, or white space alone. A hidden
// character is something: it is shown as its marker.
bool showsNothing(std::string_view text);

// The cells a terminal draws for a code point: none for a combining mark,
// two for East Asian wide characters and emoji, one for the others; two for
// one whose width is not known (terminals disagree on it, and counting too
// many only wraps a row early).
std::size_t terminalCells(char32_t codePoint);

// The code point of the well-formed UTF-8 sequence of `length` bytes at text[i].
char32_t decodeUtf8(std::string_view text, std::size_t i, std::size_t length);

} // namespace OrvelGui
