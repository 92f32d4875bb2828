/* The smallest GUI application that answers a dialog: it writes its window's
 * name (a signature confirmation declined, with the first certificate) and a
 * log section, and exits with 0. The log is "hello", or with
 * ORVEL_RESPONDER_LOG_BYTES set that many Base64 characters (of "ABC..."). */
#include <errno.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

static void writeAll(const char *bytes, size_t size)
{
    while (size > 0) {
        const ssize_t n = write(STDOUT_FILENO, bytes, size);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            exit(1);
        }
        bytes += n;
        size -= (size_t)n;
    }
}

int main(int argc, char **argv)
{
    const char *window = "MessageBox";
    for (int i = 1; i + 1 < argc; ++i)
        if (strcmp(argv[i], "-window") == 0)
            window = argv[i + 1];
    writeAll(window, strlen(window));
    if (strcmp(window, "SignatureConfirm") == 0) {
        static const char answer[] = " -result 0 -selectedCert 0";
        writeAll(answer, sizeof answer - 1);
    }

    const char *size = getenv("ORVEL_RESPONDER_LOG_BYTES");
    if (size == NULL) {
        static const char log[] = " -log aGVsbG8=";
        writeAll(log, sizeof log - 1);
        return 0;
    }
    writeAll(" -log ", 6);
    static char chunk[1 << 16];
    for (size_t i = 0; i < sizeof chunk; i += 4)
        memcpy(chunk + i, "QUJD", 4);
    for (long left = atol(size); left > 0; left -= (long)sizeof chunk)
        writeAll(chunk, left < (long)sizeof chunk ? (size_t)left : sizeof chunk);
    return 0;
}
