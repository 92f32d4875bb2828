#include "common/RtfText.hpp"

#include <iconv.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <utility>

namespace OrvelGui {
namespace {

constexpr int kDefaultCodePage = 1252;
constexpr int kDefaultHalfPoints = 24;
// Below 4 points (8 half-points) text is too small to read.
constexpr long kSmallestReadableHalfPoints = 8;
// Colours that differ by no more than this in each channel look the same.
constexpr int kSameColour = 24;

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

int hexValue(char c)
{
    if (isDigit(c))
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

void appendUtf8(std::string &out, char32_t code)
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

// The code page of a font's \fcharsetN; 0 for the document's own.
int codePageOfCharset(long charset)
{
    static constexpr std::pair<long, int> kCharsets[] = {
        {77, 10000}, {128, 932},  {129, 949},  {130, 1361}, {134, 936},  {136, 950}, {161, 1253}, {162, 1254},
        {163, 1258}, {177, 1255}, {178, 1256}, {186, 1257}, {204, 1251}, {222, 874}, {238, 1250}, {254, 437},
        {255, 850},
    };
    for (const auto &[number, codePage] : kCharsets)
        if (number == charset)
            return codePage;
    return 0;
}

std::string iconvName(int codePage)
{
    switch (codePage) {
    case 10000:
        return "MACINTOSH";
    case 1361:
        return "JOHAB";
    case 65001:
        return "UTF-8";
    default:
        return "CP" + std::to_string(codePage);
    }
}

// Bytes of a code page to UTF-8, one converter per code page for the whole
// document.
class CodePages {
public:
    CodePages() = default;
    CodePages(const CodePages &) = delete;
    CodePages &operator=(const CodePages &) = delete;
    ~CodePages()
    {
        for (const auto &[codePage, converter] : converters_)
            if (converter != invalid())
                iconv_close(converter);
    }

    void convert(const std::string &bytes, int codePage, std::string &out)
    {
        iconv_t converter = open(codePage);
        if (converter == invalid())
            converter = open(kDefaultCodePage);
        if (converter == invalid()) {
            for (std::size_t k = 0; k < bytes.size(); ++k)
                appendUtf8(out, static_cast<unsigned char>(bytes[k]) < 0x80 ? static_cast<unsigned char>(bytes[k])
                                                                            : 0xFFFD);
            return;
        }
        char *in = const_cast<char *>(bytes.data());
        std::size_t inLeft = bytes.size();
        while (inLeft > 0) {
            char buffer[1024];
            char *dst = buffer;
            std::size_t outLeft = sizeof buffer;
            const std::size_t result = iconv(converter, &in, &inLeft, &dst, &outLeft);
            out.append(buffer, sizeof buffer - outLeft);
            if (result == static_cast<std::size_t>(-1) && errno != E2BIG) {
                // A byte the code page leaves undefined, or a lead byte
                // without its second byte.
                iconv(converter, nullptr, nullptr, nullptr, nullptr);
                appendUtf8(out, 0xFFFD);
                ++in;
                --inLeft;
            }
        }
    }

private:
    static iconv_t invalid() { return reinterpret_cast<iconv_t>(-1); }

    iconv_t open(int codePage)
    {
        const auto found = converters_.find(codePage);
        if (found != converters_.end())
            return found->second;
        iconv_t converter = iconv_open("UTF-8", iconvName(codePage).c_str());
        converters_.emplace(codePage, converter);
        return converter;
    }

    std::map<int, iconv_t> converters_;
};

struct Colour {
    int red = 0, green = 0, blue = 0;
    bool automatic = true;
};

bool sameColour(const Colour &a, const Colour &b)
{
    return std::abs(a.red - b.red) <= kSameColour && std::abs(a.green - b.green) <= kSameColour &&
           std::abs(a.blue - b.blue) <= kSameColour;
}

enum class Destination : std::uint8_t { Text, Skipped, FontTable, ColourTable };

struct Style {
    bool hidden = false;
    long halfPoints = kDefaultHalfPoints;
    long foreground = 0; // colour table index; 0 the automatic colour
    long background = 0; // colour table index; 0 none (the white page)
    long font = -1;
};

struct Group {
    Destination destination = Destination::Text;
    long unicodeSkip = 1;
    Style style;
};

// Destinations that hold no text of the document.
bool isSkippedDestination(std::string_view word)
{
    static constexpr std::string_view kSkipped[] = {
        "stylesheet", "info",       "pict",        "objdata",         "objclass",   "objname",
        "themedata",  "colorschememapping", "datastore", "latentstyles", "listtable", "listoverridetable",
        "rsidtbl",    "revtbl",     "filetbl",     "xmlnstbl",        "pgdsctbl",   "fldinst",
        "generator",  "bkmkstart",  "bkmkend",     "private",         "nonshppict", "shpinst",
        "blipuid",    "mmathPr",    "userprops",   "docvar",          "template",   "falt",
    };
    return std::find(std::begin(kSkipped), std::end(kSkipped), word) != std::end(kSkipped);
}

// What a control word that stands for text stands for, in UTF-8.
const char *textOfControlWord(std::string_view word)
{
    static constexpr std::pair<std::string_view, const char *> kTexts[] = {
        {"par", "\n"},
        {"line", "\n"},
        {"sect", "\n"},
        {"page", "\n"},
        {"row", "\n"},
        {"nestrow", "\n"},
        {"tab", "\t"},
        {"cell", "\t"},
        {"nestcell", "\t"},
        {"emdash", "\xE2\x80\x94"},
        {"endash", "\xE2\x80\x93"},
        {"emspace", "\xE2\x80\x83"},
        {"enspace", "\xE2\x80\x82"},
        {"qmspace", "\xE2\x80\x85"},
        {"bullet", "\xE2\x80\xA2"},
        {"lquote", "\xE2\x80\x98"},
        {"rquote", "\xE2\x80\x99"},
        {"ldblquote", "\xE2\x80\x9C"},
        {"rdblquote", "\xE2\x80\x9D"},
        // Characters that the views then show as their markers.
        {"ltrmark", "\xE2\x80\x8E"},
        {"rtlmark", "\xE2\x80\x8F"},
        {"zwj", "\xE2\x80\x8D"},
        {"zwnj", "\xE2\x80\x8C"},
        {"zwbo", "\xE2\x80\x8B"},
        {"zwnbo", "\xE2\x81\xA0"},
    };
    for (const auto &[name, text] : kTexts)
        if (word == name)
            return text;
    return nullptr;
}

class Reader {
public:
    explicit Reader(std::string_view rtf) : rtf_(rtf) { out_.reserve(rtf.size()); }
    bool read();
    RtfText take()
    {
        RtfText result;
        result.readable = true;
        result.text = std::move(out_);
        result.concealed = std::move(concealed_);
        return result;
    }

private:
    Group &group() { return groups_.back(); }
    bool inText() const { return groups_.back().destination == Destination::Text; }
    bool concealedNow() const;
    int codePageNow() const;
    // Takes the skip after \uN; true when `count` characters were taken by it.
    bool skippedAsFallback()
    {
        if (pendingSkip_ <= 0)
            return false;
        --pendingSkip_;
        return true;
    }
    void emit(std::string_view utf8, bool concealed);
    void put(std::string_view utf8);
    void putCodePoint(char32_t code);
    void putByte(char byte);
    void flush();
    void controlWord(std::string_view word, bool hasValue, long value, bool opensGroup);
    bool controlSymbol(char symbol, bool opensGroup);

    std::string_view rtf_;
    std::size_t at_ = 0;
    std::string out_;
    std::vector<TextSpan> concealed_;
    std::vector<Group> groups_;
    long pendingSkip_ = 0;      // fallback characters still to skip after \uN
    char32_t highSurrogate_ = 0; // the first half of a \uN pair
    std::string pendingBytes_;  // \'hh bytes not yet converted
    std::string converted_;
    int pendingCodePage_ = kDefaultCodePage;
    bool pendingConcealed_ = false;
    int documentCodePage_ = kDefaultCodePage;
    long defaultFont_ = -1;
    std::map<long, int> fontCodePages_;
    long fontBeingDefined_ = -1;
    std::vector<Colour> colours_;
    Colour colourBeingDefined_;
    CodePages codePages_;
};

bool Reader::concealedNow() const
{
    const Style &style = groups_.back().style;
    if (style.hidden || style.halfPoints < kSmallestReadableHalfPoints)
        return true;
    const auto colour = [&](long index) -> const Colour * {
        return index > 0 && static_cast<std::size_t>(index) < colours_.size() && !colours_[index].automatic
                   ? &colours_[index]
                   : nullptr;
    };
    const Colour *text = colour(style.foreground);
    if (!text)
        return false; // the automatic colour is chosen to be seen
    static const Colour kPage{255, 255, 255, false};
    const Colour *background = colour(style.background);
    return sameColour(*text, background ? *background : kPage);
}

int Reader::codePageNow() const
{
    const long font = groups_.back().style.font >= 0 ? groups_.back().style.font : defaultFont_;
    const auto found = fontCodePages_.find(font);
    return found != fontCodePages_.end() && found->second != 0 ? found->second : documentCodePage_;
}

void Reader::emit(std::string_view utf8, bool concealed)
{
    if (utf8.empty())
        return;
    if (concealed) {
        if (!concealed_.empty() && concealed_.back().end == out_.size())
            concealed_.back().end += utf8.size();
        else
            concealed_.push_back({out_.size(), out_.size() + utf8.size()});
    }
    out_.append(utf8);
}

// At most one of the pending bytes and the pending half of a pair is there.
void Reader::flush()
{
    if (!pendingBytes_.empty()) {
        converted_.clear();
        codePages_.convert(pendingBytes_, pendingCodePage_, converted_);
        pendingBytes_.clear();
        emit(converted_, pendingConcealed_);
    }
    if (highSurrogate_) {
        highSurrogate_ = 0;
        emit("\xEF\xBF\xBD", concealedNow()); // half a pair stands for nothing
    }
}

void Reader::put(std::string_view utf8)
{
    flush();
    emit(utf8, concealedNow());
}

void Reader::putCodePoint(char32_t code)
{
    std::string utf8;
    if (code >= 0xDC00 && code <= 0xDFFF && highSurrogate_) {
        // The second half of a UTF-16 pair.
        appendUtf8(utf8, 0x10000 + ((highSurrogate_ - 0xD800) << 10) + (code - 0xDC00));
        highSurrogate_ = 0;
        emit(utf8, concealedNow());
        return;
    }
    flush();
    if (code >= 0xD800 && code <= 0xDBFF) {
        highSurrogate_ = code;
        return;
    }
    appendUtf8(utf8, code);
    emit(utf8, concealedNow());
}

void Reader::putByte(char byte)
{
    const int codePage = codePageNow();
    const bool concealed = concealedNow();
    if (highSurrogate_ || (!pendingBytes_.empty() && (codePage != pendingCodePage_ || concealed != pendingConcealed_)))
        flush();
    pendingCodePage_ = codePage;
    pendingConcealed_ = concealed;
    pendingBytes_.push_back(byte);
}

bool Reader::controlSymbol(char symbol, bool opensGroup)
{
    if (symbol == '*') {
        // {\* ...}: a destination to skip unless the reader knows it; the
        // ones that hold text have no "\*".
        if (opensGroup)
            group().destination = Destination::Skipped;
        return true;
    }
    if (symbol == '\'') {
        if (at_ + 2 > rtf_.size())
            return false;
        const int high = hexValue(rtf_[at_]), low = hexValue(rtf_[at_ + 1]);
        at_ += 2;
        if (high < 0 || low < 0)
            return true; // no character; a word processor passes over it too
        if (!inText() || skippedAsFallback())
            return true;
        putByte(static_cast<char>(high * 16 + low));
        return true;
    }
    if (!inText() || skippedAsFallback())
        return true;
    switch (symbol) {
    case '~':
        put("\xC2\xA0"); // no-break space
        break;
    case '_':
        put("\xE2\x80\x91"); // non-breaking hyphen
        break;
    case '\\':
    case '{':
    case '}':
        put(std::string_view(&symbol, 1));
        break;
    case '\n':
    case '\r':
        put("\n");
        break;
    case '\t':
        put("\t");
        break;
    default:
        // \- (a place to hyphenate), \| and \: (formulas, index entries)
        // show nothing.
        flush();
        break;
    }
    return true;
}

void Reader::controlWord(std::string_view word, bool hasValue, long value, bool opensGroup)
{
    Group &current = group();
    if (opensGroup && current.destination != Destination::Skipped) {
        if (word == "fonttbl") {
            current.destination = Destination::FontTable;
            return;
        }
        if (word == "colortbl") {
            current.destination = Destination::ColourTable;
            colours_.clear();
            colourBeingDefined_ = {};
            return;
        }
        if (isSkippedDestination(word)) {
            current.destination = Destination::Skipped;
            return;
        }
    }
    switch (current.destination) {
    case Destination::Skipped:
        return;
    case Destination::FontTable:
        if (word == "f")
            fontBeingDefined_ = value;
        else if (word == "fcharset")
            fontCodePages_[fontBeingDefined_] = codePageOfCharset(value);
        else if (word == "cpg")
            fontCodePages_[fontBeingDefined_] = static_cast<int>(value);
        return;
    case Destination::ColourTable: {
        const int channel = static_cast<int>(std::clamp(value, 0L, 255L));
        if (word == "red")
            colourBeingDefined_.red = channel;
        else if (word == "green")
            colourBeingDefined_.green = channel;
        else if (word == "blue")
            colourBeingDefined_.blue = channel;
        else
            return;
        colourBeingDefined_.automatic = false;
        return;
    }
    case Destination::Text:
        break;
    }

    // The document's settings and the character formatting.
    Style &style = current.style;
    if (word == "ansicpg" && value > 0) {
        flush();
        documentCodePage_ = static_cast<int>(std::min(value, 65535L));
    } else if (word == "mac" || word == "pc" || word == "pca") {
        flush();
        documentCodePage_ = word == "mac" ? 10000 : word == "pc" ? 437 : 850;
    } else if (word == "deff") {
        defaultFont_ = value;
    } else if (word == "uc") {
        current.unicodeSkip = std::max(value, 0L);
    } else if (word == "u") {
        if (!skippedAsFallback()) {
            // A signed 16-bit value; some writers give larger code points.
            const long code = value < 0 ? value + 65536 : value;
            putCodePoint(code >= 0 && code <= 0x10FFFF ? static_cast<char32_t>(code) : 0xFFFD);
            pendingSkip_ = current.unicodeSkip;
        }
    } else if (word == "v") {
        style.hidden = !hasValue || value != 0;
    } else if (word == "fs") {
        style.halfPoints = hasValue ? value : kDefaultHalfPoints;
    } else if (word == "cf") {
        style.foreground = value;
    } else if (word == "cb" || word == "highlight" || word == "chcbpat") {
        style.background = value;
    } else if (word == "f") {
        style.font = value;
    } else if (word == "plain") {
        style = Style{};
    } else if (skippedAsFallback()) {
    } else if (const char *text = textOfControlWord(word)) {
        put(text);
    }
}

bool Reader::read()
{
    groups_.reserve(16);
    bool opened = false; // the next control word names the new group's destination
    while (at_ < rtf_.size()) {
        const char c = rtf_[at_];
        if (c == '{') {
            flush();
            ++at_;
            groups_.push_back(groups_.empty() ? Group{} : groups_.back());
            pendingSkip_ = 0;
            opened = true;
            continue;
        }
        if (c == '}') {
            flush();
            ++at_;
            pendingSkip_ = 0;
            opened = false;
            if (groups_.empty())
                return false;
            if (group().destination == Destination::FontTable)
                fontBeingDefined_ = -1;
            groups_.pop_back();
            if (groups_.empty()) {
                // The document ends here; what follows may only be white
                // space (or the zero bytes some writers pad with).
                for (; at_ < rtf_.size(); ++at_)
                    if (rtf_[at_] != ' ' && rtf_[at_] != '\r' && rtf_[at_] != '\n' && rtf_[at_] != '\t' &&
                        rtf_[at_] != '\0')
                        return false;
                return true;
            }
            continue;
        }
        if (groups_.empty())
            return false; // text outside the document's group
        if (c == '\\') {
            ++at_;
            if (at_ >= rtf_.size())
                return false;
            if (!isLetter(rtf_[at_])) {
                const char symbol = rtf_[at_++];
                const bool opens = opened;
                // After "{\*" the destination's word still follows.
                opened = opened && symbol == '*';
                if (!controlSymbol(symbol, opens))
                    return false;
                continue;
            }
            const std::size_t start = at_;
            while (at_ < rtf_.size() && isLetter(rtf_[at_]) && at_ - start < 32)
                ++at_;
            const std::string_view word = rtf_.substr(start, at_ - start);
            bool hasValue = false;
            bool negative = false;
            long value = 0;
            if (at_ + 1 < rtf_.size() && rtf_[at_] == '-' && isDigit(rtf_[at_ + 1])) {
                negative = true;
                ++at_;
            }
            for (int digits = 0; at_ < rtf_.size() && isDigit(rtf_[at_]); ++at_, ++digits) {
                hasValue = true;
                if (digits < 10)
                    value = value * 10 + (rtf_[at_] - '0');
            }
            if (negative)
                value = -value;
            if (at_ < rtf_.size() && rtf_[at_] == ' ')
                ++at_; // the delimiter belongs to the word
            const bool opens = opened;
            opened = false;
            if (word == "bin") {
                // Binary data of that many bytes, whatever they are.
                if (value < 0 || static_cast<std::size_t>(value) > rtf_.size() - at_)
                    return false;
                at_ += static_cast<std::size_t>(value);
                skippedAsFallback();
                continue;
            }
            controlWord(word, hasValue, value, opens);
            continue;
        }
        ++at_;
        if (c == '\r' || c == '\n')
            continue;
        opened = false;
        const Destination destination = group().destination;
        if (destination == Destination::ColourTable) {
            if (c == ';') {
                colours_.push_back(colourBeingDefined_);
                colourBeingDefined_ = {};
            }
            continue;
        }
        if (destination != Destination::Text || skippedAsFallback())
            continue;
        if (c == '\t') {
            put("\t");
        } else if (static_cast<unsigned char>(c) >= 0x80) {
            putByte(c); // 8-bit text is in the code page too
        } else if (static_cast<unsigned char>(c) >= 0x20) {
            // A run of plain characters in one piece.
            std::size_t end = at_;
            while (end < rtf_.size()) {
                const auto next = static_cast<unsigned char>(rtf_[end]);
                if (next < 0x20 || next >= 0x80 || next == '\\' || next == '{' || next == '}')
                    break;
                ++end;
            }
            put(rtf_.substr(at_ - 1, end - at_ + 1));
            at_ = end;
        }
        // Other control characters are no text in RTF.
    }
    return false; // a group left open
}

} // namespace

RtfText readRtf(std::string_view rtf)
{
    if (rtf.substr(0, 5) == "{\\rtf") {
        Reader reader(rtf);
        if (reader.read())
            return reader.take();
    }
    RtfText raw;
    raw.text.assign(rtf);
    return raw;
}

VisibleText visibleRtf(const RtfText &reading, std::string_view concealedStart, std::string_view concealedEnd)
{
    VisibleTextBuilder builder;
    const std::string_view text = reading.text;
    std::size_t at = 0;
    for (const TextSpan &span : reading.concealed) {
        builder.append(text.substr(at, span.begin - at));
        builder.appendNote(concealedStart);
        builder.append(text.substr(span.begin, span.end - span.begin));
        builder.appendNote(concealedEnd);
        at = span.end;
    }
    builder.append(text.substr(at));
    return builder.take();
}

} // namespace OrvelGui
