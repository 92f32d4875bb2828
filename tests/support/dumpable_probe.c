/* Preloaded (LD_PRELOAD) into the GUI application by a terminal session: on
 * SIGURG, which no front end takes (it is ignored by default), it writes to
 * standard error, the session's terminal, whether the process may be dumped
 * and its core size limit: "[dumpable D, core limit C]". The application is
 * waiting for a key then, so formatting here is safe. */
#include <signal.h>
#include <stdio.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

static void report(int signalNumber)
{
    (void)signalNumber;
    struct rlimit core = {0, 0};
    getrlimit(RLIMIT_CORE, &core);
    char line[64];
    const int length = snprintf(line, sizeof line, "[dumpable %d, core limit %llu]", prctl(PR_GET_DUMPABLE),
                                (unsigned long long)core.rlim_cur);
    (void)!write(STDERR_FILENO, line, (size_t)length);
}

__attribute__((constructor)) static void installProbe(void)
{
    signal(SIGURG, report);
}
