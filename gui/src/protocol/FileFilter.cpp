#include "protocol/FileFilter.hpp"

#include <cctype>

namespace OrvelGui {
namespace {

// The pattern lists of the entries that have one; true when one of them
// says "every file".
bool readFilter(const std::string &filterText, std::vector<std::string> &patterns)
{
    for (const FilterEntry &entry : filterEntries(filterText)) {
        if (entry.allFiles)
            return true;
        patterns.insert(patterns.end(), entry.patterns.begin(), entry.patterns.end());
    }
    return false;
}

} // namespace

std::vector<FilterEntry> filterEntries(const std::string &filterText)
{
    std::vector<FilterEntry> entries;
    std::size_t start = 0;
    while (start <= filterText.size()) {
        std::size_t bar = filterText.find('|', start);
        if (bar == std::string::npos)
            bar = filterText.size();
        const std::string text = filterText.substr(start, bar - start);
        start = bar + 1;
        const std::size_t open = text.find_first_of("()");
        if (open == std::string::npos)
            continue;
        FilterEntry entry;
        entry.name = text.substr(0, open);
        const std::size_t close = text.find_first_of("()", open + 1);
        const std::string list = text.substr(open + 1, close == std::string::npos ? std::string::npos : close - open - 1);
        std::size_t p = 0;
        while (p <= list.size()) {
            std::size_t comma = list.find(',', p);
            if (comma == std::string::npos)
                comma = list.size();
            std::string pattern = list.substr(p, comma - p);
            p = comma + 1;
            const auto first = pattern.find_first_not_of(' ');
            pattern = first == std::string::npos ? "" : pattern.substr(first, pattern.find_last_not_of(' ') - first + 1);
            if (pattern == "*" || pattern == "*.*")
                entry.allFiles = true;
            else if (!pattern.empty())
                entry.patterns.push_back(pattern);
        }
        entries.push_back(std::move(entry));
    }
    return entries;
}

std::vector<std::string> filterPatterns(const std::string &filterText)
{
    std::vector<std::string> patterns;
    if (readFilter(filterText, patterns))
        return {};
    return patterns;
}

bool filterUnderstood(const std::string &filterText)
{
    std::vector<std::string> patterns;
    const bool allFiles = readFilter(filterText, patterns);
    return allFiles || !patterns.empty() || filterText.find_first_not_of(' ') == std::string::npos;
}

bool matchesFilter(const std::string &fileName, const std::vector<std::string> &patterns)
{
    if (patterns.empty())
        return true;
    const auto lower = [](std::string s) {
        for (char &c : s)
            c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        return s;
    };
    const std::string name = lower(fileName);
    for (std::string pattern : patterns) {
        pattern = lower(pattern);
        if (!pattern.empty() && pattern[0] == '*')
            pattern.erase(0, 1);
        if (!pattern.empty() && pattern[0] == '.')
            pattern.erase(0, 1);
        const std::string suffix = "." + pattern;
        if (pattern.empty() ||
            (name.size() > suffix.size() && name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0))
            return true;
    }
    return false;
}

} // namespace OrvelGui
