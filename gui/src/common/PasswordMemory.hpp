// The PKCS#12 password in the GUI application's memory: kept out of core
// dumps and away from other processes of the same user while the window asks
// for it, and wiped once the reply has been written.
#pragma once

#include <cstddef>
#include <string>

namespace OrvelGui {

// From now on this process leaves no core dump and cannot be traced or have
// its memory read by the same user (PR_SET_DUMPABLE 0, RLIMIT_CORE 0). False,
// with the reason in `why`, when the system refuses.
bool keepOutOfCoreDumps(std::string &why);

// Overwrites `size` bytes with zeros; the compiler may not drop it.
void wipeSecret(void *bytes, std::size_t size);
// Overwrites every byte the string owns, room past its end included (what
// Backspace left there), and empties it.
void wipeSecret(std::string &text);

// Wipes a string when it goes out of scope, on every way out.
class WipedOnExit {
public:
    explicit WipedOnExit(std::string &text) : text_(text) {}
    ~WipedOnExit() { wipeSecret(text_); }
    WipedOnExit(const WipedOnExit &) = delete;
    WipedOnExit &operator=(const WipedOnExit &) = delete;

private:
    std::string &text_;
};

} // namespace OrvelGui
