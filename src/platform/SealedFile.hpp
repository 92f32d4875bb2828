// Values too large for the child's command line travel in files that the
// child inherits. Such a file must hold exactly the value for as long as the
// child reads it: a memory file with every seal (no write, no shrinking, no
// growing, no new seals), so that what the GUI application shows cannot
// change under it. Where memory files are missing, an unlinked temporary
// file that only this process and the child can reach stands in.
#pragma once

#include "platform/Descriptor.hpp"

#include <string_view>

namespace OrvelDialogs::Platform {

// A close-on-exec descriptor of a file that holds exactly `bytes`, read from
// its start. Raises the platform exception when no such file can be made.
UniqueFd sealedFileHolding(std::string_view bytes);

// The stand-in alone: an unlinked private temporary file holding `bytes`
// (what sealedFileHolding gives where memory files are missing).
UniqueFd unlinkedFileHolding(std::string_view bytes);

} // namespace OrvelDialogs::Platform
