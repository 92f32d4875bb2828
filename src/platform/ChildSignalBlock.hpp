// Keeps SIGCHLD blocked on the calling thread while it lives. A host's
// SIGCHLD handler that reaps with waitpid(-1, ...) then cannot run on this
// thread during an exchange and take the GUI application's status before the
// library reads it; the signal stays pending and reaches the handler once the
// block ends, when the child is already reaped. A handler on another thread
// that leaves SIGCHLD unblocked can still take it.
#pragma once

#include <signal.h>

namespace OrvelDialogs::Platform {

class ChildSignalBlock {
public:
    ChildSignalBlock()
    {
        sigset_t childSignal;
        sigemptyset(&childSignal);
        sigaddset(&childSignal, SIGCHLD);
        pthread_sigmask(SIG_BLOCK, &childSignal, &previousMask_);
    }
    ~ChildSignalBlock() { pthread_sigmask(SIG_SETMASK, &previousMask_, nullptr); }
    ChildSignalBlock(const ChildSignalBlock &) = delete;
    ChildSignalBlock &operator=(const ChildSignalBlock &) = delete;

private:
    sigset_t previousMask_;
};

} // namespace OrvelDialogs::Platform
