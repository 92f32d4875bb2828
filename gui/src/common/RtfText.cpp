#include "common/RtfText.hpp"

#include <iconv.h>

#include <cctype>
#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

namespace OrvelGui {
namespace {

void appendUtf8(std::string &out, unsigned long code)
{
    if (code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
        code = 0xFFFD;
    if (code < 0x80) {
        out.push_back(static_cast<char>(code));
    } else if (code < 0x800) {
        out.push_back(static_cast<char>(0xC0 | (code >> 6)));
        out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    } else if (code < 0x10000) {
        out.push_back(static_cast<char>(0xE0 | (code >> 12)));
        out.push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    } else {
        out.push_back(static_cast<char>(0xF0 | (code >> 18)));
        out.push_back(static_cast<char>(0x80 | ((code >> 12) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | ((code >> 6) & 0x3F)));
        out.push_back(static_cast<char>(0x80 | (code & 0x3F)));
    }
}

// Bytes of the document's ANSI code page (\'hh escapes) to UTF-8.
std::string fromCodePage(const std::string &bytes, int codePage)
{
    const std::string name = "CP" + std::to_string(codePage);
    iconv_t cd = iconv_open("UTF-8", name.c_str());
    if (cd == reinterpret_cast<iconv_t>(-1))
        cd = iconv_open("UTF-8", "CP1252");
    std::string out(bytes.size() * 4, '\0');
    char *in = const_cast<char *>(bytes.data());
    std::size_t inLeft = bytes.size();
    char *dst = out.data();
    std::size_t outLeft = out.size();
    while (inLeft > 0) {
        if (iconv(cd, &in, &inLeft, &dst, &outLeft) != static_cast<std::size_t>(-1))
            break;
        // A byte the code page leaves undefined.
        ++in;
        --inLeft;
        const std::size_t done = out.size() - outLeft;
        out.resize(done);
        out += "\xEF\xBF\xBD";
        out.resize(out.size() + inLeft * 4 + 4);
        dst = out.data() + done + 3;
        outLeft = out.size() - done - 3;
    }
    out.resize(out.size() - outLeft);
    iconv_close(cd);
    return out;
}

struct Group {
    bool skip = false;
    int unicodeSkip = 1;
};

// Destinations whose content is no text of the document.
bool isSkippedDestination(const std::string &word)
{
    static const char *const kSkipped[] = {"fonttbl", "colortbl", "stylesheet", "info",     "pict",
                                           "header",  "footer",   "headerl",    "headerr",  "footerl",
                                           "footerr", "object",   "themedata",  "listtable", "listoverridetable",
                                           "rsidtbl", "generator", "xmlnstbl",  "datastore", "latentstyles"};
    for (const char *skipped : kSkipped)
        if (word == skipped)
            return true;
    return false;
}

// What a control word that stands for text (a break, a dash, a quote)
// stands for, in UTF-8; nothing for every other word.
const char *textOfControlWord(std::string_view word)
{
    static constexpr std::pair<std::string_view, const char *> kTexts[] = {
        {"par", "\n"},
        {"line", "\n"},
        {"sect", "\n"},
        {"page", "\n"},
        {"row", "\n"},
        {"tab", "\t"},
        {"cell", "\t"},
        {"emdash", "\xE2\x80\x94"},
        {"endash", "\xE2\x80\x93"},
        {"bullet", "\xE2\x80\xA2"},
        {"lquote", "\xE2\x80\x98"},
        {"rquote", "\xE2\x80\x99"},
        {"ldblquote", "\xE2\x80\x9C"},
        {"rdblquote", "\xE2\x80\x9D"},
    };
    for (const auto &[name, text] : kTexts)
        if (word == name)
            return text;
    return nullptr;
}

} // namespace

std::string rtfToPlainText(std::string_view rtf)
{
    if (rtf.substr(0, 5) != "{\\rtf")
        return std::string(rtf);
    std::string out;
    std::string ansi; // pending \'hh bytes
    int codePage = 1252;
    std::vector<Group> groups(1);
    int pendingSkip = 0; // characters still to skip after \uN
    const auto flush = [&] {
        if (!ansi.empty())
            out += fromCodePage(ansi, codePage);
        ansi.clear();
    };
    const auto emit = [&](const std::string &text) {
        if (groups.back().skip)
            return;
        if (pendingSkip > 0) {
            --pendingSkip;
            return;
        }
        flush();
        out += text;
    };

    std::size_t i = 0;
    bool groupStart = false; // the next control word opens the group
    while (i < rtf.size()) {
        const char c = rtf[i];
        if (c == '{') {
            groups.push_back(groups.back());
            groupStart = true;
            ++i;
            continue;
        }
        if (c == '}') {
            if (groups.size() > 1)
                groups.pop_back();
            groupStart = false;
            ++i;
            continue;
        }
        if (c == '\r' || c == '\n') {
            ++i;
            continue;
        }
        if (c != '\\') {
            groupStart = false;
            emit(std::string(1, c));
            ++i;
            continue;
        }
        // A control symbol or a control word.
        ++i;
        if (i >= rtf.size())
            break;
        const char symbol = rtf[i];
        if (!std::isalpha(static_cast<unsigned char>(symbol))) {
            ++i;
            const bool opened = groupStart;
            groupStart = false;
            if (symbol == '\'' && i + 2 <= rtf.size()) {
                const std::string hex(rtf.substr(i, 2));
                i += 2;
                if (groups.back().skip)
                    continue;
                if (pendingSkip > 0) {
                    --pendingSkip;
                    continue;
                }
                ansi.push_back(static_cast<char>(std::strtol(hex.c_str(), nullptr, 16)));
            } else if (symbol == '*' && opened) {
                groups.back().skip = true;
            } else if (symbol == '~') {
                emit("\xC2\xA0");
            } else if (symbol == '_') {
                emit("-");
            } else if (symbol == '\\' || symbol == '{' || symbol == '}') {
                emit(std::string(1, symbol));
            } else if (symbol == '\n' || symbol == '\r') {
                emit("\n");
            }
            continue;
        }
        std::string word;
        while (i < rtf.size() && std::isalpha(static_cast<unsigned char>(rtf[i])))
            word.push_back(rtf[i++]);
        std::string digits;
        if (i < rtf.size() && (rtf[i] == '-' || std::isdigit(static_cast<unsigned char>(rtf[i]))))
            digits.push_back(rtf[i++]);
        while (i < rtf.size() && std::isdigit(static_cast<unsigned char>(rtf[i])) && digits.size() < 10)
            digits.push_back(rtf[i++]);
        if (i < rtf.size() && rtf[i] == ' ')
            ++i; // the delimiter belongs to the word
        const long value = digits.empty() || digits == "-" ? 0 : std::strtol(digits.c_str(), nullptr, 10);
        const bool opened = groupStart;
        groupStart = false;

        if (opened && isSkippedDestination(word)) {
            groups.back().skip = true;
        } else if (word == "ansicpg" && value > 0) {
            flush();
            codePage = static_cast<int>(value);
        } else if (word == "uc") {
            groups.back().unicodeSkip = static_cast<int>(value);
        } else if (word == "u") {
            if (!groups.back().skip) {
                flush();
                appendUtf8(out, static_cast<unsigned long>(value < 0 ? value + 65536 : value));
                pendingSkip = groups.back().unicodeSkip;
            }
        } else if (const char *text = textOfControlWord(word)) {
            emit(text);
        }
    }
    flush();
    return out;
}

} // namespace OrvelGui
