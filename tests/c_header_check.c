/* The C interface compiles as strict C99 (built with -std=c99 -pedantic-errors). */
#include <OrvelGUIDialogs/OrvelGUIDialogs.h>

#include <stddef.h>

/* The x86-64 layout that hosts built against this header rely on. */
typedef char certificate_is_48_bytes[sizeof(ORV_Certificate) == 48 ? 1 : -1];
typedef char fields_in_place[offsetof(ORV_Certificate, dataLength) == 8 && offsetof(ORV_Certificate, subjectStr) == 16 &&
    offsetof(ORV_Certificate, notAfterStr) == 24 && offsetof(ORV_Certificate, renewDeadlineStr) == 32 &&
    offsetof(ORV_Certificate, validDaysRemaining) == 40 && offsetof(ORV_Certificate, forceRenew) == 44 &&
    offsetof(ORV_Certificate, warnRenew) == 45 ? 1 : -1];

long orvel_c_header_check(void);

long orvel_c_header_check(void)
{
    bool confirmed = false;
    unsigned int selected = 0;
    ORV_Certificate certificate = {0};
    long (*dialogs[])(void) = {ORV_ReinsertCardClose};
    (void)dialogs;
    return ORV_ConfirmSignature(&certificate, 1, &selected, "d", NULL, "SHA-256", "00", &confirmed);
}
