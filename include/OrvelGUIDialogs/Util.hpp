// OrvelDialogs::Util: Base64, text-encoding conversion, file and string
// helpers offered to the host. Every operation is static; failures are
// reported as an empty result or false, never as an exception (out of memory
// aside). Parameters are all "in" except where a reference says "out"; every
// result is a new object that the caller owns.
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

    // The Base64 text of `length` bytes at `bytes`: standard alphabet, "="
    // padding, no line breaks.
    static std::string Base64Encode(const unsigned char *bytes, unsigned int length);
    // The bytes of `encoded`, up to its first "=" or character outside the
    // alphabet; an unpadded last group is decoded too.
    static std::string Base64Decode(const std::string &encoded);
    // True for a character of the Base64 alphabet ("=" is not one).
    static bool is_base64(unsigned char c);

    // Conversions through iconv; the wide side is UTF-32 ("UTF-32LE").
    // `codePage` is an iconv code-set name ("UTF-8", "CP1250",
    // "ISO-8859-2"); `ascii` stands for "ASCII" when true, "UTF-8" when false.
    // A text ends at its first zero character. The result is empty for an
    // empty or null text, an unknown code set or text it cannot convert.
    // `length` bytes of `text` are converted exactly; 0 means up to its
    // terminating zero.
    static std::wstring MultiByte2WideChar(const char *text, unsigned long length, const char *codePage);
    static std::wstring MultiByte2WideChar(const std::string &text, const char *codePage);
    static std::string WideChar2String(const wchar_t *text, const char *codePage);
    static std::string WideChar2String(const wchar_t *text, bool ascii);
    static std::string WideChar2String(std::wstring text, const char *codePage);
    static std::string WideChar2String(std::wstring text, bool ascii);
    static std::string FromCodepage2UTF8(const std::string &text, const char *codePage);
    static std::string FromUTF82Codepage(const std::string &text, const char *codePage);

    // Whole-file helpers; false when the file cannot be opened.
    // Writes `content` as the whole file; true once it was opened.
    static bool SaveToFile(const std::string &path, const std::string &content);
    // out `output`: the file's words, its content with every whitespace
    // removed (emptied first).
    static bool LoadFile(const std::string &path, std::string &output);
    // Keeps the last `size` bytes of the file (a shorter file stays as it is).
    static bool ShrinkBinaryFile(const std::string &path, unsigned long size);

    // String and path helpers; every byte counts as one character.
    // ASCII letters in upper case, every other byte unchanged.
    static std::string ToUpper(std::string text);
    // \n, \t, \" and \\ replaced by what they stand for; an unknown escape
    // is dropped, a lone backslash at the end kept.
    static std::string Unescape(const std::string &text);
    // The text between two double quote characters, nothing escaped.
    static std::string Apostrophies(const std::string &text);
    // out `output`: the words of `text` (up to its first zero byte) separated
    // by runs of `delimiter` are appended; empty words never are. A space as
    // the delimiter splits at spaces only (tabs and line breaks stay inside
    // the words).
    static void SplitString(const std::string &text, char delimiter, std::vector<std::string> &output);
    // The part of `path` up to and including its last backslash, or the empty
    // string (also for a null path); the wide form gives it as UTF-8.
    static std::string GetFolderPath(const char *path);
    static std::string GetFolderPath(wchar_t *path);
};

} // namespace OrvelDialogs

#endif
