// Interrupts the test process every millisecond (SIGALRM, handler installed
// without SA_RESTART, so that every blocking call sees EINTR) for as long as
// the object lives.
#pragma once

#include <signal.h>
#include <sys/time.h>

namespace OrvelTest {

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
