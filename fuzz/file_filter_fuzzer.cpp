// The file filter parser: entries separated by "|", patterns between "(" and
// ")" separated by ",". An entry with neither parenthesis raises by design.
#include "FuzzCheck.hpp"

#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "platform/HostText.hpp"

#include <stdexcept>

namespace {

bool hasEntryWithoutParenthesis(const std::string &text)
{
    size_t start = 0;
    for (;;) {
        const size_t bar = text.find('|', start);
        const std::string entry = text.substr(start, bar == std::string::npos ? std::string::npos : bar - start);
        if (entry.find_first_of("()") == std::string::npos)
            return true;
        if (bar == std::string::npos)
            return false;
        start = bar + 1;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // A host text ends at its first zero byte.
    std::string text = OrvelFuzz::bytesOf(data, size);
    text.resize(text.find('\0') == std::string::npos ? text.size() : text.find('\0'));
    FUZZ_CHECK(!getFileTypesFromString(nullptr));

    std::optional<std::vector<std::string>> patterns;
    try {
        patterns = getFileTypesFromString(text.c_str());
    } catch (const std::runtime_error &) {
        FUZZ_CHECK(OrvelDialogs::Platform::isValidUtf8(text) && hasEntryWithoutParenthesis(text));
        return 0;
    }
    if (!OrvelDialogs::Platform::isValidUtf8(text)) {
        FUZZ_CHECK(!patterns);
        return 0;
    }
    if (!patterns)
        return 0;
    // A list means every entry was read, so each had its parenthesis.
    FUZZ_CHECK(!hasEntryWithoutParenthesis(text));
    for (const std::string &pattern : *patterns) {
        FUZZ_CHECK(pattern.find_first_of("|,()") == std::string::npos);
        FUZZ_CHECK(pattern != "*");
        FUZZ_CHECK(text.find(pattern) != std::string::npos);
    }
    return 0;
}
