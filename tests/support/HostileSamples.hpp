// Documents an attacker may write, run through both front ends by the tests
// (the desktop windows offscreen, the terminal through its driver): what the
// signature window must show of each (markers as their text), what must never
// reach the screen as itself, and whether Sign is offered at all.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace OrvelTest {

struct HostileSample {
    const char *name;
    std::string data;
    std::optional<std::string> rtf;
    std::vector<std::string> shown;
    std::vector<std::string> absent;
    bool signable = true;
};

inline std::vector<HostileSample> hostileSamples()
{
    std::string wide = "First line\nSecond line\n";
    for (int i = 0; i < 480; ++i)
        wide += "\u2705";
    const std::string hidden = "this text holds characters that cannot be seen";
    return {
        {"BidiOverride", "IBAN: \u202E1234 5678 9012\ninvoice \u202Efdp.exe", {},
         {hidden, "IBAN: ⟨U+202E⟩1234 5678 9012", "invoice ⟨U+202E⟩fdp.exe"}, {"\u202E"}},
        {"IsolatesAndMarks", "a\u2066b\u2069c\u200Fd\u061Ce", {}, {"a⟨U+2066⟩b⟨U+2069⟩c⟨U+200F⟩d⟨U+061C⟩e"},
         {"\u2066", "\u200F"}},
        {"ZeroWidthBomSoftHyphen", "zero\u200Bwidth\u200D\uFEFFjoin\u00ADed", {},
         {"zero⟨U+200B⟩width⟨U+200D⟩⟨U+FEFF⟩join⟨U+00AD⟩ed"}, {"\u200B", "\uFEFF", "\u00AD"}},
        {"TagCharacters", "Pay\U000E0049\U000E0020\U000E006F\U000E0077\U000E0065", {},
         {"Pay⟨U+E0049⟩⟨U+E0020⟩⟨U+E006F⟩⟨U+E0077⟩⟨U+E0065⟩"}, {"\U000E0049"}},
        {"ControlsAndSeparators", "a\x1b[31mred\x07 lone\rcr\u2028sep\u0085nel\r\nnext", {},
         {"a⟨U+001B⟩[31mred⟨U+0007⟩ lone⟨U+000D⟩cr⟨U+2028⟩sep⟨U+0085⟩nel\nnext"}, {"\x1b[31m", "\x07", "\u2028"}},
        {"PrivateUseUnassignedVariationSelectors", "\uE000x\U0010FFFDy\u0378z\uFFFF \u2764\uFE0F \u8FBB\U000E0100",
         {}, {"⟨U+E000⟩x⟨U+10FFFD⟩y⟨U+0378⟩z⟨U+FFFF⟩ ❤⟨U+FE0F⟩ 辻⟨U+E0100⟩"}, {"\uE000", "\uFE0F"}},
        {"WideCharacters", wide, {}, {"First line\n"}, {}},
        {"HostileRtf", "Pay",
         std::string("{\\rtf1\\ansi\\ansicpg1250{\\fonttbl{\\f0 Arial;}}{\\header Header text\\par}{\\footer Footer "
                     "text\\par}{\\field{\\*\\fldinst HYPERLINK \"x\"}{\\fldrslt Field result}} Zaplat\\'ed "
                     "\\u8364? {\\*\\unknown gone}\\bin1 { after the binary\\cell next cell{\\footnote Footnote}}"),
         {"Header text", "Footer text", "Field result Zaplatí €", "after the binary", "next cellFootnote"},
         {"\\rtf1", "HYPERLINK", "gone"}},
        {"ConcealedRtf", "Pay",
         std::string("{\\rtf1{\\colortbl;\\red255\\green255\\blue255;}Seen {\\v hidden} {\\cf1 white} {\\fs4 tiny}"
                     " \\rtlmark end}"),
         {"passages that the document hides", "Seen ⟨hidden⟩hidden⟨/hidden⟩ ⟨hidden⟩white⟨/hidden⟩ "
                                              "⟨hidden⟩tiny⟨/hidden⟩", "⟨U+200F⟩end"},
         {"\u200F"}},
        {"UnreadableRtf", "Pay", std::string("{\\rtf1 {open \u202E"),
         {"cannot be read as RTF", "{\\rtf1 {open ⟨U+202E⟩"}, {"\u202E"}},
        {"EmptyData", "", {}, {"There is nothing to sign"}, {}, false},
        {"WhiteSpaceOnly", " \n\t\u3000 ", {}, {"There is nothing to sign"}, {}, false},
        {"EmptyDataAndFormattedText", "", std::string("{\\rtf1 \\par }"), {"There is nothing to sign"}, {}, false},
    };
}

} // namespace OrvelTest
