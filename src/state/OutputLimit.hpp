// How much a GUI application can make the host hold: the bytes read from its
// output, and what one GUI log adds to the diagnostic log.
#pragma once

#include <cstdint>

namespace OrvelDialogs::State {

inline constexpr std::uint64_t kDefaultOutputLimit = 256u << 20;

// Past this many bytes of output the child is stopped and the dialog fails.
std::uint64_t outputLimit();

// A quarter of the output limit: a whole reply's log section still fits
// (Base64 takes four characters for three bytes), and a host that raises or
// lowers one limit moves the other with it.
std::uint64_t guiLogLimit();

} // namespace OrvelDialogs::State
