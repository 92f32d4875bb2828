#include "protocol/ReinsertCommands.hpp"

#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstring>
#include <utility>

namespace OrvelGui {

void ReinsertCommandParser::feed(std::string_view bytes, std::vector<ReinsertCommand> &out)
{
    static constexpr std::pair<std::string_view, ReinsertCommand> kCommands[] = {
        {"ReinsertCard insert", ReinsertCommand::Insert},
        {"ReinsertCard remove", ReinsertCommand::Remove},
        {"ReinsertCard close", ReinsertCommand::Close},
    };
    pending_.append(bytes);
    std::size_t pos = 0;
    while (pos < pending_.size()) {
        const std::string_view rest = std::string_view(pending_).substr(pos);
        bool matched = false;
        bool prefix = false;
        for (const auto &[text, command] : kCommands) {
            if (rest.substr(0, text.size()) == text) {
                if (skipped_ != 0)
                    log_.add("Skipped " + std::to_string(skipped_) + " bytes of unknown input.");
                skipped_ = 0;
                out.push_back(command);
                pos += text.size();
                matched = true;
                break;
            }
            if (text.substr(0, rest.size()) == rest)
                prefix = true;
        }
        if (matched)
            continue;
        if (prefix)
            break; // the rest may still become a command
        if (!std::isspace(static_cast<unsigned char>(rest[0])))
            ++skipped_;
        ++pos;
    }
    pending_.erase(0, pos);
}

void ReinsertCommandReader::readAvailable(std::vector<ReinsertCommand> &out)
{
    if (ended_)
        return;
    char buffer[4096];
    ssize_t n = 0;
    do {
        n = ::read(fd_, buffer, sizeof buffer);
    } while (n < 0 && errno == EINTR);
    if (n <= 0) {
        log_.add(n == 0 ? "End of input." : std::string("Reading the input failed: ") + std::strerror(errno));
        ended_ = true;
        out.push_back(ReinsertCommand::Close);
        return;
    }
    parser_.feed(std::string_view(buffer, static_cast<std::size_t>(n)), out);
}

ReinsertCommand ReinsertCommandReader::waitForCommand()
{
    std::vector<ReinsertCommand> commands;
    while (commands.empty())
        readAvailable(commands); // the descriptor blocks until there is input
    // Only the close command matters without a user; the rest is logged.
    for (ReinsertCommand c : commands)
        if (c == ReinsertCommand::Close)
            return c;
    return commands.front();
}

} // namespace OrvelGui
