/* C interface of libOrvelGUIDialogs. Compiles as C99 and as C++.
 * No exception ever leaves these functions: any that arises inside (out of
 * memory included) gives 7 and, when memory allows, a log entry.
 *
 * Every function returns a result code as a long:
 *   0 success, 1 bad argument, 3 no launcher for switch or close,
 *   4 no certificate data, 7 the exchange with the GUI application failed,
 *   9 GUI application path not set, 11 a host buffer is too small;
 *   1 to 8 are also the GUI application's own non-zero exit statuses.
 * The library's diagnostic log (ORV_GetLog) tells which one it was. */
#ifndef ORVEL_GUI_DIALOGS_H
#define ORVEL_GUI_DIALOGS_H

#include <OrvelGUIDialogs/OrvelExport.h>

#ifndef __cplusplus
#include <stdbool.h>
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* One certificate of a list shown by ORV_SelectCertificate and
 * ORV_ConfirmSignature. The host owns the record and what it points to. */
typedef struct ORV_Certificate {
    char *data;                /* dataLength bytes, not terminated */
    unsigned int dataLength;
    char *subjectStr;          /* NUL-terminated UTF-8 */
    char *notAfterStr;         /* NUL-terminated UTF-8 */
    char *renewDeadlineStr;    /* NUL-terminated UTF-8 */
    int validDaysRemaining;
    bool forceRenew;
    bool warnRenew;
} ORV_Certificate;

/* Settings and log. A null path or version stores "no value": with no path
 * every dialog returns 9. The log text stays owned by the library and valid
 * until the next log entry is written. */
ORV_EXPORT long ORV_SetAppPath(const char *path);
ORV_EXPORT long ORV_SetLanguage(int language);
ORV_EXPORT long ORV_SetOrvelSignVersion(const char *version);
ORV_EXPORT long ORV_GetLog(const char **log);
/* The most bytes the library reads from a GUI application's output, 256 MiB
 * until set (0 gives 1). Past it the GUI application is killed, the log names
 * the limit and the dialog returns 7. One GUI log adds at most a quarter of
 * it to the diagnostic log; the rest is cut off with an entry that says so. */
ORV_EXPORT long ORV_SetOutputLimit(unsigned long long bytes);
/* The host's own window, which the dialogs' windows then stay above (made
 * transient for it) where the window system allows: "x11:" and the window
 * id ("x11:0x3a00007"), or "wayland:" and a handle the host exported with
 * xdg-foreign. The GUI application gets it in its environment
 * (ORVEL_GUI_PARENT_WINDOW), never on its command line, and logs when it
 * cannot use it. Null or "" clears it. Text that is not UTF-8, holds a
 * control character or is longer than 1024 bytes gives 1 and changes
 * nothing. */
ORV_EXPORT long ORV_SetParentWindow(const char *handle);

/* Modal dialogs: each returns after the GUI application has exited. */
ORV_EXPORT long ORV_MessageBox(const char *message, const char *info, int icon);
ORV_EXPORT long ORV_YesNoDialog(const char *message, const char *info, int button, bool *result);
ORV_EXPORT long ORV_FileOpenDialog(const char *message, const char *fileName, char *outPath,
                                   unsigned int outPathSize, const char *fileFilter);
ORV_EXPORT long ORV_FileSaveDialog(const char *message, const char *fileName, char *outPath,
                                   unsigned int outPathSize, const char *fileFilter);
ORV_EXPORT long ORV_DisplayCertificate(unsigned char *data, unsigned int length);
ORV_EXPORT long ORV_SelectCertificate(const ORV_Certificate *certs, unsigned int count,
                                      unsigned int *selected);
ORV_EXPORT long ORV_ConfirmSignature(const ORV_Certificate *certs, unsigned int count,
                                     unsigned int *selected, const char *data, const char *rtf,
                                     const char *hashAlg, const char *hashVal, bool *confirmed);
ORV_EXPORT long ORV_SelectPKCS12(char *path, unsigned int pathSize, char *outValue,
                                 unsigned int outValueSize);

/* The modeless reinsert-card notice: show returns at once, switch changes its
 * text (1 insert, 0 remove), close ends it and returns the GUI's exit status. */
ORV_EXPORT long ORV_ReinsertCardShow(const char *message);
ORV_EXPORT long ORV_ReinsertCardSwitchText(int insert);
ORV_EXPORT long ORV_ReinsertCardClose(void);

#ifdef __cplusplus
}
#endif

#endif
