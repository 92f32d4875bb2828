// What a test does and counts as the host: temporary folders and whole files,
// the library's log, the descriptors and children it holds, buffers of exact
// size, and signals that interrupt it.
#pragma once

#include <OrvelGUIDialogs/OrvelGUIDialogs.h>

#include <signal.h>
#include <sys/time.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>

namespace OrvelTest {

// A new empty directory under $TMPDIR (or /tmp).
std::string makeTempDir();
void removeTree(const std::string &path);
std::string readFile(const std::string &path);
// Writes `bytes` with the folders above them and the permissions `mode`.
std::string writeFile(const std::string &path, std::string_view bytes, unsigned mode = 0644);

// A temporary folder that lasts as long as the object.
class TempFolder {
public:
    TempFolder() : path(makeTempDir()) {}
    ~TempFolder() { removeTree(path); }
    TempFolder(const TempFolder &) = delete; // one owner removes it
    std::string operator/(const std::string &name) const { return path + "/" + name; }
    const std::string path;
};

// The library's log as it stands, "" while nothing was logged.
inline std::string logText()
{
    const char *log = nullptr;
    ORV_GetLog(&log);
    return log ? log : "";
}

int openDescriptorCount();
// Children of this process, zombies included.
int childProcessCount();
// Children of this process that have exited but were not reaped.
int zombieChildCount();
// Waits (for ten seconds at most) until every child has exited.
bool childrenHaveExited();

// Whether this test was built under AddressSanitizer, which reserves address
// space and keeps freed memory, so memory figures and limits mean little.
#if defined(__SANITIZE_ADDRESS__)
inline constexpr bool kAddressSanitizer = true;
#elif defined(__has_feature)
inline constexpr bool kAddressSanitizer = __has_feature(address_sanitizer);
#else
inline constexpr bool kAddressSanitizer = false;
#endif

// A host's buffer on the heap, of exactly `size` bytes and filled with 'x', so
// that under AddressSanitizer a one-byte overrun fails.
struct HostBuffer {
    explicit HostBuffer(unsigned int size) : size(size), bytes(new char[size]) { std::fill_n(bytes.get(), size, 'x'); }
    std::string text() const { return std::string(bytes.get()); }
    bool all(char c) const { return std::all_of(bytes.get(), bytes.get() + size, [c](char b) { return b == c; }); }
    bool untouched() const { return all('x'); }
    bool clearedExceptLast() const
    {
        return std::all_of(bytes.get(), bytes.get() + size - 1, [](char c) { return c == 0; }) && bytes[size - 1] == 'x';
    }
    // "untouched", "cleared" (all zero but the last byte), "zero", or the text.
    std::string describe() const
    {
        return untouched() ? "untouched" : clearedExceptLast() ? "cleared" : all(0) ? "zero" : text();
    }
    unsigned int size;
    std::unique_ptr<char[]> bytes;
};

// Interrupts the test process every millisecond (SIGALRM, handler installed
// without SA_RESTART, so that every blocking call sees EINTR) for as long as
// the object lives.
class EveryMillisecondInterruptions {
public:
    EveryMillisecondInterruptions()
    {
        ticks_ = 0;
        struct sigaction action{}; // no SA_RESTART, nothing blocked
        action.sa_handler = [](int) { ticks_ = ticks_ + 1; };
        sigaction(SIGALRM, &action, nullptr);
        const itimerval everyMillisecond{{0, 1000}, {0, 1000}};
        setitimer(ITIMER_REAL, &everyMillisecond, nullptr);
    }
    ~EveryMillisecondInterruptions()
    {
        const itimerval off{};
        setitimer(ITIMER_REAL, &off, nullptr);
        signal(SIGALRM, SIG_DFL);
    }
    EveryMillisecondInterruptions(const EveryMillisecondInterruptions &) = delete;
    EveryMillisecondInterruptions &operator=(const EveryMillisecondInterruptions &) = delete;

    int count() const { return ticks_; }

private:
    static inline volatile sig_atomic_t ticks_ = 0;
};

} // namespace OrvelTest
