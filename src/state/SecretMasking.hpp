// Whether the PKCS#12 reply is logged with its password token masked: off
// until the host turns it on, so that the log holds the whole reply as the
// protocol has it.
#pragma once

namespace OrvelDialogs::State {

bool maskSecrets();

} // namespace OrvelDialogs::State
