// Room for buffers of a megabyte and more: Base64 results, the reply, the
// log. Such a buffer is fresh memory, and on our machines the first touch of
// each 4 KiB page costs more than the work done on it; a 2 MiB page costs one
// fault instead of 512. So large room is taken in whole 2 MiB units (which
// the kernel then places on a 2 MiB boundary), advised for huge pages where
// the kernel offers them, and never zero-filled first.
//
// The room stays an ordinary std::string's, freed by its own allocator: the
// log is an exported std::string, and results go to the host as strings.
#pragma once

#include <cstddef>
#include <string>

namespace OrvelDialogs::LargeBuffer {

// From this size on, room is taken as described above.
inline constexpr size_t kLargeBytes = size_t{1} << 20;

// Makes room for `capacity` bytes in `text` without changing its contents.
// Room grows at least `growth`-fold, so that appending stays linear. The room
// given up is wiped first for `wipeReleased`, and inside a secret scope
// (SecretMemory.hpp).
void reserve(std::string &text, size_t capacity, size_t growth = 2, bool wipeReleased = false);

// Sets the size of `text` to `size` (not below its current size) and returns
// where its new bytes begin; they hold no defined value until the caller
// writes them.
char *extendUninitialized(std::string &text, size_t size);

} // namespace OrvelDialogs::LargeBuffer
