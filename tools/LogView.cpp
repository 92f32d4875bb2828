#include "LogView.hpp"

#include "PrintableText.hpp"

namespace OrvelTool {
namespace {

constexpr std::string_view kLibraryGuiLogPrefix = "log z GUI aplikace: ";
constexpr std::string_view kExceptionEntry = "Exception occured:";

} // namespace

std::string logForDisplay(std::string_view log, const ToolTexts &texts)
{
    std::string out;
    while (!log.empty()) {
        const auto end = log.find('\n');
        std::string_view line = log.substr(0, end);
        std::string shown;
        if (line.starts_with(kLibraryGuiLogPrefix)) {
            shown = texts.guiLogPrefix;
            shown += line.substr(kLibraryGuiLogPrefix.size());
        } else {
            shown = line;
        }
        out += escapeForTerminal(shown);
        if (end == std::string_view::npos)
            break;
        out += '\n';
        log.remove_prefix(end + 1);
    }
    return out;
}

std::optional<std::string> failureCause(std::string_view displayedLog)
{
    const auto exception = displayedLog.rfind(kExceptionEntry);
    if (exception != std::string_view::npos) {
        // The message follows on the next line; the call stack after it is
        // for --log only.
        std::string_view rest = displayedLog.substr(exception + kExceptionEntry.size());
        if (rest.starts_with('\n'))
            rest.remove_prefix(1);
        const std::string_view message = rest.substr(0, rest.find('\n'));
        if (!message.empty())
            return std::string(message);
    }
    // The last line with something on it (the library ends the GUI log with
    // a space and empty lines).
    const auto end = displayedLog.find_last_not_of(" \t\n");
    if (end == std::string_view::npos)
        return std::nullopt;
    const auto newline = displayedLog.rfind('\n', end);
    const auto start = newline == std::string_view::npos ? 0 : newline + 1;
    return std::string(displayedLog.substr(start, end + 1 - start));
}

} // namespace OrvelTool
