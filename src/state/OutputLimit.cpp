#include "state/OutputLimit.hpp"

#include <OrvelGUIDialogs/OrvelDialogs.hpp>

namespace OrvelDialogs {
namespace {

// Constant-initialised: no dynamic initializer runs at load.
constinit std::uint64_t currentOutputLimit = State::kDefaultOutputLimit;

} // namespace

void SetOutputLimit(unsigned long long bytes)
{
    currentOutputLimit = bytes;
}

namespace State {

std::uint64_t outputLimit()
{
    return currentOutputLimit;
}

std::uint64_t guiLogLimit()
{
    return currentOutputLimit / 4;
}

} // namespace State
} // namespace OrvelDialogs

extern "C" long ORV_SetOutputLimit(unsigned long long bytes)
{
    // No output at all would refuse every reply.
    if (bytes == 0)
        return 1;
    OrvelDialogs::SetOutputLimit(bytes);
    return 0;
}
