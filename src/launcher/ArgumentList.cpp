#include "launcher/ArgumentList.hpp"

#include "platform/PlatformException.hpp"

namespace OrvelDialogs::Launcher {

std::vector<std::string> argumentList(std::initializer_list<OptionalText> values)
{
    std::vector<std::string> arguments;
    arguments.reserve(values.size());
    for (const auto &value : values) {
        if (!value) {
            const std::string previous = arguments.empty() ? std::string("(start)") : arguments.back();
            throw Platform::PlatformException("argument list: no value at position " +
                                              std::to_string(arguments.size()) + " (after \"" + previous + "\")");
        }
        arguments.push_back(*value);
    }
    return arguments;
}

} // namespace OrvelDialogs::Launcher
