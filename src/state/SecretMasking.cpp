#include "state/SecretMasking.hpp"

#include <OrvelGUIDialogs/OrvelDialogs.hpp>

namespace OrvelDialogs {
namespace {

// Constant-initialised: no dynamic initializer runs at load.
constinit bool secretsMasked = false;

} // namespace

void SetMaskSecrets(bool mask)
{
    secretsMasked = mask;
}

namespace State {

bool maskSecrets()
{
    return secretsMasked;
}

} // namespace State
} // namespace OrvelDialogs

extern "C" long ORV_SetMaskSecrets(int mask)
{
    OrvelDialogs::SetMaskSecrets(mask != 0);
    return 0;
}
