#include "launcher/ReplyTokens.hpp"

#include "platform/PlatformException.hpp"

#include <string>

namespace OrvelDialogs::Launcher {
namespace {

// Calls visit(index, token) for each token until it returns true.
template <typename Visit>
bool forEachToken(std::string_view reply, Visit visit)
{
    size_t index = 0;
    size_t start = 0;
    for (;;) {
        const size_t space = reply.find(' ', start);
        const std::string_view token =
            reply.substr(start, space == std::string_view::npos ? std::string_view::npos : space - start);
        if (visit(index, token))
            return true;
        if (space == std::string_view::npos)
            return false;
        start = space + 1;
        ++index;
    }
}

} // namespace

std::string_view tokenAt(std::string_view reply, size_t index)
{
    std::string_view found;
    size_t count = 0;
    const bool present = forEachToken(reply, [&](size_t i, std::string_view token) {
        count = i + 1;
        if (i != index)
            return false;
        found = token;
        return true;
    });
    if (!present)
        throw Platform::PlatformException("reply token index " + std::to_string(index) +
                                          " beyond bounds [0 .. " + std::to_string(count - 1) + "]");
    return found;
}

std::optional<size_t> findToken(std::string_view reply, std::string_view wanted)
{
    std::optional<size_t> found;
    forEachToken(reply, [&](size_t i, std::string_view token) {
        if (token != wanted)
            return false;
        found = i;
        return true;
    });
    return found;
}

} // namespace OrvelDialogs::Launcher
