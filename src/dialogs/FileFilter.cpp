// The file filter text: entries separated by "|", each with its patterns
// between "(" and ")" separated by ",", such as "Documents (pdf,doc)|Text (txt)".
#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "platform/HostText.hpp"
#include "platform/PlatformException.hpp"

#include <string_view>

namespace {

// Calls visit(piece) for each piece of `text` between separators; stops when
// visit returns false.
template <typename Visit>
bool forEachPiece(std::string_view text, std::string_view separators, Visit visit)
{
    size_t start = 0;
    for (;;) {
        const size_t end = text.find_first_of(separators, start);
        if (!visit(text.substr(start, end == std::string_view::npos ? std::string_view::npos : end - start)))
            return false;
        if (end == std::string_view::npos)
            return true;
        start = end + 1;
    }
}

// The entry's pattern list: the piece after its first "(" or ")". An entry
// with neither has none, which is an error of the filter text.
std::string_view patternList(std::string_view entry)
{
    const size_t open = entry.find_first_of("()");
    if (open == std::string_view::npos)
        throw OrvelDialogs::Platform::PlatformException("file filter entry \"" + std::string(entry) +
                                                        "\" has no pattern list: index 1 beyond bounds [0 .. 0]");
    const size_t close = entry.find_first_of("()", open + 1);
    return entry.substr(open + 1, close == std::string_view::npos ? std::string_view::npos : close - open - 1);
}

} // namespace

std::optional<std::vector<std::string>> getFileTypesFromString(const char *filterText)
{
    const auto text = OrvelDialogs::Platform::textFromHost(filterText);
    if (!text)
        return std::nullopt;
    std::vector<std::string> patterns;
    const bool allFiles = !forEachPiece(*text, "|", [&](std::string_view entry) {
        return forEachPiece(patternList(entry), ",", [&](std::string_view pattern) {
            if (pattern == "*")
                return false;
            patterns.emplace_back(pattern);
            return true;
        });
    });
    if (allFiles)
        return std::nullopt;
    return patterns;
}
