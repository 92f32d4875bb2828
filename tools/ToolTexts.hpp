// The tool's own words on stderr, in the language of the dialogs (--lang) or,
// without it, of the environment's locale. The library's log is printed as it
// is, apart from the prefix the library puts before the GUI application's log.
#pragma once

#include <optional>
#include <string>

namespace OrvelTool {

enum class ToolLanguage { Czech, Slovak, English };

// "cs", "sk", "en" from --lang; without it LC_ALL, LC_MESSAGES, LANG.
ToolLanguage toolLanguage(const std::optional<std::string> &lang);

struct ToolTexts {
    const char *result;            // "result %d: %s"
    const char *cause;             // "cause: %s"
    const char *guiLogPrefix;      // replaces the library's prefix of the GUI log
    const char *emptyLog;          // --log when the log holds nothing
    const char *passwordLength;    // "%zu"
    const char *badReinsertInput;  // "line %zu: %s"
    const char *switchFailed;      // "%ld"
};
const ToolTexts &toolTexts(ToolLanguage language);

// What a result code means, in the tool's language.
std::string resultMeaning(long result, ToolLanguage language);

} // namespace OrvelTool
