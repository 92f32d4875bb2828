// OrvelDialogs::Util: Base64, text-encoding conversion, file and string
// helpers offered to the host. Every operation is static; failures are
// reported as an empty result or false, never as an exception.
#ifndef ORVEL_UTIL_HPP
#define ORVEL_UTIL_HPP

#include <OrvelGUIDialogs/OrvelExport.h>

#include <string>
#include <vector>

namespace OrvelDialogs {

class ORV_EXPORT Util {
public:
    Util();
    virtual ~Util();

    // Base64 with the standard alphabet and "=" padding, no line breaks.
    static std::string Base64Encode(const unsigned char *bytes, unsigned int length);
    // Stops at the first "=" or character outside the alphabet; decodes an
    // unpadded last group.
    static std::string Base64Decode(const std::string &encoded);
    static bool is_base64(unsigned char c);

    // Conversions through iconv; the wide side is UTF-32 ("UTF-32LE").
    // With an explicit length the pointer form converts exactly those bytes.
    static std::wstring MultiByte2WideChar(const char *text, unsigned long length, const char *codePage);
    static std::wstring MultiByte2WideChar(const std::string &text, const char *codePage);
    static std::string WideChar2String(const wchar_t *text, const char *codePage);
    static std::string WideChar2String(const wchar_t *text, bool ascii);
    static std::string WideChar2String(std::wstring text, const char *codePage);
    static std::string WideChar2String(std::wstring text, bool ascii);
    static std::string FromCodepage2UTF8(const std::string &text, const char *codePage);
    static std::string FromUTF82Codepage(const std::string &text, const char *codePage);

    // Whole-file helpers.
    static bool SaveToFile(const std::string &path, const std::string &content);
    // Reads the file's words: the content with every whitespace removed.
    static bool LoadFile(const std::string &path, std::string &output);
    // Keeps the last `size` bytes of the file.
    static bool ShrinkBinaryFile(const std::string &path, unsigned long size);

    // String and path helpers; every byte counts as one character.
    static std::string ToUpper(std::string text);
    static std::string Unescape(const std::string &text);
    // The text between two double quote characters, nothing escaped.
    static std::string Apostrophies(const std::string &text);
    // Appends the words of `text` separated by runs of `delimiter` to
    // `output`; empty words are never appended. A space as the delimiter
    // splits at spaces only (tabs and line breaks stay inside the words).
    static void SplitString(const std::string &text, char delimiter, std::vector<std::string> &output);
    // The part up to and including the last backslash, or the empty string.
    static std::string GetFolderPath(const char *path);
    static std::string GetFolderPath(wchar_t *path);
};

} // namespace OrvelDialogs

#endif
