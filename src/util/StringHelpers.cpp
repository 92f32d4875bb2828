// OrvelDialogs::Util's string and path helpers. Every byte counts as one
// character: nothing here interprets a multi-byte encoding.
#include <OrvelGUIDialogs/Util.hpp>

#include <algorithm>
#include <cstring>
#include <cwchar>

namespace OrvelDialogs {

std::string Util::ToUpper(std::string text)
{
    // Only a to z change. The C library's toupper would also depend on the
    // process's locale (a single-byte Latin locale would change bytes above
    // 0x7F, a Turkish one the letter i), and the result must not.
    for (char &c : text) {
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - 'a' + 'A');
    }
    return text;
}

std::string Util::Unescape(const std::string &text)
{
    std::string result;
    result.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            result += text[i];
            continue;
        }
        if (i + 1 == text.size()) {
            result += '\\';
            break;
        }
        // The pair is consumed whole, so the second backslash of "\\" never
        // starts an escape of its own; an unknown escape drops both bytes.
        switch (text[++i]) {
        case 'n': result += '\n'; break;
        case 't': result += '\t'; break;
        case '"': result += '"'; break;
        case '\\': result += '\\'; break;
        default: break;
        }
    }
    return result;
}

std::string Util::Apostrophies(const std::string &text)
{
    return '"' + text + '"';
}

void Util::SplitString(const std::string &text, char delimiter, std::vector<std::string> &output)
{
    // The text ends at its first zero byte, as a C string would.
    const size_t end = std::min(text.find('\0'), text.size());
    size_t pos = 0;
    while (pos < end) {
        const size_t start = text.find_first_not_of(delimiter, pos);
        if (start == std::string::npos || start >= end)
            break;
        const size_t stop = std::min(text.find(delimiter, start), end);
        output.emplace_back(text, start, stop - start);
        pos = stop;
    }
}

std::string Util::GetFolderPath(const char *path)
{
    // A null path has no folder part; answering that beats a crash in the
    // host.
    if (path == nullptr)
        return {};
    const char *separator = std::strrchr(path, '\\');
    if (separator == nullptr)
        return {};
    return std::string(path, static_cast<size_t>(separator - path) + 1);
}

std::string Util::GetFolderPath(wchar_t *path)
{
    // As the narrow form: a null path has no folder part.
    if (path == nullptr)
        return {};
    const wchar_t *separator = std::wcsrchr(path, L'\\');
    if (separator == nullptr)
        return {};
    return WideChar2String(std::wstring(path, static_cast<size_t>(separator - path) + 1), "UTF-8");
}

} // namespace OrvelDialogs
