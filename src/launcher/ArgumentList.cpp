#include "launcher/ArgumentList.hpp"

#include "platform/PlatformException.hpp"

namespace OrvelDialogs::Launcher {

void ArgumentEntry::appendTo(std::vector<std::string> &list) const
{
    if (movable_ != nullptr)
        list.push_back(std::move(*movable_));
    else if (text_ != nullptr)
        list.push_back(*text_);
    else
        list.emplace_back(literal_);
}

std::vector<std::string> argumentList(std::initializer_list<ArgumentEntry> entries)
{
    std::vector<std::string> arguments;
    arguments.reserve(entries.size());
    for (const ArgumentEntry &entry : entries) {
        if (entry.absent()) {
            const std::string previous = arguments.empty() ? std::string("(start)") : arguments.back();
            throw Platform::PlatformException("argument list: no value at position " +
                                              std::to_string(arguments.size()) + " (after \"" + previous + "\")");
        }
        entry.appendTo(arguments);
    }
    return arguments;
}

} // namespace OrvelDialogs::Launcher
