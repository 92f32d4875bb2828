// The log append for an entry written in place, for entries too large to be
// built apart and then copied (a GUI log of many MiB).
#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace OrvelDialogs::State {

// The log append with the message written by `write`, which appends it to
// the string it is handed (the log), with room made beforehand for about
// `expectedBytes`. If `write` raises, the log is left as it was and the
// exception passes.
void logEntryInPlace(size_t expectedBytes, const std::function<void(std::string &)> &write);

// Room for `bytes` more in the log handed to such a `write`, for an entry
// that turns out longer than expected.
void makeLogRoom(std::string &log, size_t bytes);

// The log append for an entry that holds a secret. From then on the log's
// room is wiped whenever it grows, so that the secret stays in the log only.
void logSecretEntry(const std::string &message);

} // namespace OrvelDialogs::State
