// OrvelDialogs::Util's text-encoding conversions through iconv. The wide side
// is always "UTF-32LE", the memory form of our 32-bit wchar_t. A conversion
// either succeeds whole or yields an empty result: nothing partial.
#include <OrvelGUIDialogs/Util.hpp>

#include <bit>
#include <cstring>
#include <cwchar>
#include <iconv.h>
#include <new>

static_assert(sizeof(wchar_t) == 4, "wide strings are UTF-32");
static_assert(std::endian::native == std::endian::little, "the wide side is named UTF-32LE");

namespace {

constexpr const char *kWideCodePage = "UTF-32LE";

iconv_t invalidConverter()
{
    return reinterpret_cast<iconv_t>(-1);
}

// One iconv converter, closed on every path out of the conversion. A null
// code page name counts as an unknown one rather than reaching iconv_open.
class Converter {
public:
    Converter(const char *to, const char *from)
        : cd_(to != nullptr && from != nullptr ? iconv_open(to, from) : invalidConverter())
    {
    }
    ~Converter()
    {
        if (isOpen())
            iconv_close(cd_);
    }
    Converter(const Converter &) = delete;
    Converter &operator=(const Converter &) = delete;

    bool isOpen() const { return cd_ != invalidConverter(); }

    // Starts from the initial shift state, then converts all input in one
    // call. False on any failure (invalid or incomplete input, a character
    // the target cannot hold, an output area too small); a count of
    // irreversible conversions is success. `written` counts output bytes.
    bool convert(const void *input, size_t inputBytes, void *output, size_t outputBytes, size_t &written)
    {
        iconv(cd_, nullptr, nullptr, nullptr, nullptr);
        // iconv's interface is not const-correct; it never writes the input.
        char *in = const_cast<char *>(static_cast<const char *>(input));
        char *out = static_cast<char *>(output);
        size_t inLeft = inputBytes, outLeft = outputBytes;
        if (iconv(cd_, &in, &inLeft, &out, &outLeft) == static_cast<size_t>(-1))
            return false;
        written = outputBytes - outLeft;
        return true;
    }

private:
    iconv_t cd_;
};

} // namespace

namespace OrvelDialogs {

std::wstring Util::MultiByte2WideChar(const char *text, unsigned long length, const char *codePage)
{
    if (text == nullptr || text[0] == '\0')
        return {};
    Converter converter(kWideCodePage, codePage);
    if (!converter.isOpen())
        return {};

    // Without a length the text's terminator is converted along with it, so
    // a code page whose characters span several bytes (UTF-16) still sees a
    // complete last unit. An explicit length is taken literally: exactly those
    // bytes are converted and the byte after them is never read, since the
    // caller may hand us a buffer that is not terminated there.
    size_t inputBytes = length;
    if (length == 0) {
        length = std::strlen(text);
        inputBytes = length + 1;
    }
    // One 32-bit unit per input byte, terminator included, is always enough
    // for the code pages we meet; an area that proves too small fails.
    std::wstring output;
    if (length >= output.max_size())
        throw std::bad_alloc();
    output.resize(length + 1);
    size_t written = 0;
    if (!converter.convert(text, inputBytes, output.data(), output.size() * sizeof(wchar_t), written))
        return {};
    output.resize(written / sizeof(wchar_t));
    // The result ends at the first zero character: the converted terminator
    // or a zero byte inside the text.
    const size_t end = output.find(L'\0');
    if (end != std::wstring::npos)
        output.resize(end);
    return output;
}

std::wstring Util::MultiByte2WideChar(const std::string &text, const char *codePage)
{
    if (text.empty())
        return {};
    return MultiByte2WideChar(text.data(), text.size(), codePage);
}

std::string Util::WideChar2String(const wchar_t *text, const char *codePage)
{
    if (text == nullptr || text[0] == L'\0')
        return {};
    Converter converter(codePage, kWideCodePage);
    if (!converter.isOpen())
        return {};

    // The terminator is converted too, so that a stateful target returns to
    // its initial state before the end of the text.
    const size_t inputBytes = (std::wcslen(text) + 1) * sizeof(wchar_t);
    // Four bytes per character hold UTF-8 and every single-byte code page.
    std::string output(inputBytes, '\0');
    size_t written = 0;
    if (!converter.convert(text, inputBytes, output.data(), output.size(), written))
        return {};
    output.resize(written);
    const size_t end = output.find('\0');
    if (end != std::string::npos)
        output.resize(end);
    return output;
}

std::string Util::WideChar2String(const wchar_t *text, bool ascii)
{
    return WideChar2String(text, ascii ? "ASCII" : "UTF-8");
}

std::string Util::WideChar2String(std::wstring text, const char *codePage)
{
    return WideChar2String(text.c_str(), codePage);
}

std::string Util::WideChar2String(std::wstring text, bool ascii)
{
    return WideChar2String(text.c_str(), ascii);
}

std::string Util::FromCodepage2UTF8(const std::string &text, const char *codePage)
{
    return WideChar2String(MultiByte2WideChar(text, codePage), "UTF-8");
}

std::string Util::FromUTF82Codepage(const std::string &text, const char *codePage)
{
    return WideChar2String(MultiByte2WideChar(text, "UTF-8"), codePage);
}

} // namespace OrvelDialogs
