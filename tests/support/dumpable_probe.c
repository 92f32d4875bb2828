/* Preloaded (LD_PRELOAD) into the GUI application by a terminal session: on
 * SIGUSR1 it writes to standard error, the session's terminal, whether the
 * process may be dumped and its core size limit: "[dumpable D, core limit C]". */
#include <signal.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

static char *decimal(char *out, unsigned long long value)
{
    char digits[24];
    int n = 0;
    do
        digits[n++] = (char)('0' + value % 10);
    while ((value /= 10) != 0);
    while (n > 0)
        *out++ = digits[--n];
    return out;
}

static void report(int signalNumber)
{
    (void)signalNumber;
    struct rlimit core = {0, 0};
    getrlimit(RLIMIT_CORE, &core);
    char line[96] = "[dumpable ";
    char *end = decimal(line + 10, (unsigned long long)prctl(PR_GET_DUMPABLE));
    const char middle[] = ", core limit ";
    for (const char *c = middle; *c; ++c)
        *end++ = *c;
    end = decimal(end, (unsigned long long)core.rlim_cur);
    *end++ = ']';
    (void)!write(STDERR_FILENO, line, (size_t)(end - line));
}

__attribute__((constructor)) static void installProbe(void)
{
    signal(SIGUSR1, report);
}
