/* C interface of libOrvelGUIDialogs. Compiles as C99 and as C++.
 *
 * The library draws nothing itself: each dialog starts the GUI application
 * set with ORV_SetAppPath as a child process, waits for its answer and hands
 * back a result code and, where the dialog has one, a value. The reference
 * GUI application, OrvelGUI.app, is installed with the library; its path is
 * `pkg-config --variable=guiapp OrvelGUIDialogs`, or OrvelGUIDialogs_GUI_APP
 * after find_package(OrvelGUIDialogs). What OrvelGUI.app shows is said below
 * for each dialog; another GUI application may show the same things its own way.
 *
 * Conventions:
 *   - Texts are NUL-terminated UTF-8, in parameters and in results.
 *   - "in" parameters are read, "out" parameters written, "in/out" both.
 *   - The host owns every buffer, record and text it passes; the library
 *     copies what it keeps and keeps no pointer after the call returns. The
 *     library owns the log text that ORV_GetLog hands out.
 *   - An out-buffer comes with its size in bytes, the terminating zero
 *     included; a value is copied only when it fits, else the result is 11.
 *   - Call the library from one thread at a time. A modal dialog blocks the
 *     calling thread until the GUI application exits, with no time limit.
 *   - No exception ever leaves these functions: any that arises inside (out of
 *     memory included) gives 7 and, when memory allows, a log entry.
 *
 * Language codes (ORV_SetLanguage): 0 Czech, 1 Slovak, 2 any other language
 * (OrvelGUI.app speaks English then). The language starts as 0.
 *
 * Every function returns a result code as a long:
 *   0  success
 *   1  bad argument: a required pointer is NULL or a number is out of range;
 *      nothing was started and nothing logged
 *   2  cancelled: the user backed out (Escape, the window's close button,
 *      Ctrl-C), or the GUI application's standard input ended
 *   3  no launcher: reinsert-card switch or close before any dialog was shown
 *   4  no certificate data (ORV_DisplayCertificate)
 *   7  the exchange with the GUI application failed: it could not be started,
 *      its exit status was unknown, its reply was missing or not understood,
 *      or a text could not be passed to it
 *   9  the GUI application's path is not set (ORV_SetAppPath)
 *   11 a host buffer is too small for the value
 * 1 to 8 are also the GUI application's own non-zero exit statuses, passed on
 * unchanged. OrvelGUI.app uses 2 (above), 5 (it refused its command line),
 * 6 (no user interface: neither a display nor a terminal) and 8 (internal
 * failure); it leaves 1, 3, 4 and 7 to the library. The library's diagnostic
 * log (ORV_GetLog) tells which side a code came from. */
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
 * ORV_ConfirmSignature. The host owns the record and what it points to; the
 * library reads it during the call only. NULL in data, subjectStr or
 * notAfterStr, or a dataLength of 0, gives 1; a NULL renewDeadlineStr, or a
 * text that is not UTF-8, gives 7. */
typedef struct ORV_Certificate {
    char *data;                /* the certificate (DER; OrvelGUI.app reads PEM too): dataLength bytes */
    unsigned int dataLength;
    char *subjectStr;          /* NUL-terminated UTF-8: the name shown for it */
    char *notAfterStr;         /* NUL-terminated UTF-8: end of validity, as it is to be shown */
    char *renewDeadlineStr;    /* NUL-terminated UTF-8: renew before this, as it is to be shown */
    int validDaysRemaining;    /* days of validity left; negative once expired */
    bool forceRenew;           /* OrvelGUI.app marks it "renewal required by <renewDeadlineStr>" */
    bool warnRenew;            /* OrvelGUI.app marks it "renewal recommended by <renewDeadlineStr>" */
} ORV_Certificate;

/* ---- Settings and log ---- */

/* in path: the GUI application's bundle, a directory such as
 * "/usr/lib/x86_64-linux-gnu/orvel-dialogs/OrvelGUI.app" (not the executable
 * inside it). Required before any dialog. The text is copied; NULL or text
 * that is not UTF-8 stores "no value", and every dialog then returns 9.
 * Nothing is checked here: a wrong path shows at the next dialog (7, with the
 * reason in the log).
 * Returns 0. */
ORV_EXPORT long ORV_SetAppPath(const char *path);

/* in language: 0 Czech, 1 Slovak, 2 any other. Every dialog passes it to the
 * GUI application: on the command line ("-lang") where the protocol has it,
 * and for every window in its environment (ORVEL_GUI_LANGUAGE), so that the
 * message box and the certificate display speak it too.
 * Returns 0 when stored; 1 for any other value, the language unchanged. */
ORV_EXPORT long ORV_SetLanguage(int language);

/* in version: the signing application's version text, which
 * ORV_ConfirmSignature requires and OrvelGUI.app shows in that window. The
 * text is copied; NULL or text that is not UTF-8 stores "no value" (then
 * ORV_ConfirmSignature returns 7).
 * Returns 0. */
ORV_EXPORT long ORV_SetOrvelSignVersion(const char *version);

/* out *log: the diagnostic log, NUL-terminated UTF-8, or NULL while nothing
 * has been logged. The text is the library's: do not free or change it. It
 * stays valid until the next entry is written (the next dialog call, say);
 * copy it to keep it. The log only grows: every read returns everything since
 * the library was loaded, the GUI application's own logs included. It holds
 * the whole reply of the file save dialog (the chosen path) and of the PKCS#12
 * dialog (the password, Base64-encoded, unless ORV_SetMaskSecrets is on).
 * Returns 0; 1 when log is NULL (nothing happens). */
ORV_EXPORT long ORV_GetLog(const char **log);

/* in bytes: the most bytes the library reads from a GUI application's output,
 * 256 MiB until set. Past it the GUI application is killed, the log names the
 * limit and the dialog returns 7. One GUI log adds at most a quarter of it to
 * the diagnostic log; the rest is cut off with an entry that says so.
 * Returns 0; 1 for 0, the limit unchanged. */
ORV_EXPORT long ORV_SetOutputLimit(unsigned long long bytes);

/* in handle: the host's own window, which the dialogs' windows then stay
 * above (made transient for it) where the window system allows: "x11:" and
 * the window id ("x11:0x3a00007"), or "wayland:" and a handle the host
 * exported with xdg-foreign; copied. The GUI application gets it in its
 * environment (ORVEL_GUI_PARENT_WINDOW), never on its command line, and logs
 * when it cannot use it. NULL or "" clears it.
 * Returns 0; 1 for text that is not UTF-8, holds a control character or is
 * longer than 1024 bytes (nothing changes). */
ORV_EXPORT long ORV_SetParentWindow(const char *handle);

/* in mask: not 0 to log the PKCS#12 dialog's reply with its second value (the
 * password) replaced by "********"; the window name, the path and the log
 * section stay as they are, and nothing else changes. 0, the default, logs the
 * whole reply.
 * Returns 0. */
ORV_EXPORT long ORV_SetMaskSecrets(int mask);

/* ---- Modal dialogs: each returns after the GUI application has exited ---- */

/* A message to read and close.
 * in message: the text; required (NULL gives 1).
 * in info: further text shown under it; NULL or "" for none.
 * in icon: 0 information, 1 warning, 2 error; OrvelGUI.app shows that icon
 *   (in the terminal, its name) beside the message.
 * Returns 0 once closed; 1 for a NULL message or an icon outside 0 to 2
 * (checked before the path); 9; 7; or the GUI application's status (2, 5, 6, 8). */
ORV_EXPORT long ORV_MessageBox(const char *message, const char *info, int icon);

/* A yes/no question.
 * in message: the question; required.
 * in info: further text; NULL or "" for none.
 * in button: the answer chosen at first, which Enter takes: 0 Yes, 1 No.
 * out *result: true for yes, false for no; written only when the result is 0
 *   and the reply held an answer.
 * Returns 0; 9 (checked first); 1 for a NULL message or result, or a button
 * other than 0 and 1; 2 when the user backed out; 7; or 5, 6, 8. */
ORV_EXPORT long ORV_YesNoDialog(const char *message, const char *info, int button, bool *result);

/* A file to open. OrvelGUI.app shows the platform's file chooser (in the
 * terminal, a browser of the working directory) with the message and the
 * filter's file types, and replies with an absolute path.
 * in message: the chooser's text; required (NULL gives 7).
 * in fileName: accepted and ignored: the open dialog never reads it.
 * out outPath: the host's buffer of outPathSize bytes. Once the arguments
 *   pass, its first outPathSize - 1 bytes are set to zero (the last byte is not
 *   written); on 0 it holds the chosen path (none when the reply carried no
 *   log section).
 * in outPathSize: its size, the terminating zero included; 0 gives 1.
 * in fileFilter: NULL (or "") for all files, else entries separated by "|",
 *   each a description with its patterns in parentheses, separated by ",":
 *   "Documents (pdf,doc)|Text (txt)"; a pattern "*" means all files.
 *   OrvelGUI.app offers "Documents (*.pdf *.doc)" and "Text (*.txt)".
 * Returns 0; 9; 1 for a NULL outPath or outPathSize 0; 11 when the path does
 * not fit (the buffer stays zeroed); 2 when the user backed out; 7 (also for a
 * message or filter that is not UTF-8); or 5, 6, 8. */
ORV_EXPORT long ORV_FileOpenDialog(const char *message, const char *fileName, char *outPath,
                                   unsigned int outPathSize, const char *fileFilter);

/* Where to save a file: as ORV_FileOpenDialog, except
 * in fileName: the file name the chooser starts with; NULL or "" for none.
 *   OrvelGUI.app asks before it replaces an existing file.
 * The log gains the whole reply, which holds the chosen path (Base64). */
ORV_EXPORT long ORV_FileSaveDialog(const char *message, const char *fileName, char *outPath,
                                   unsigned int outPathSize, const char *fileFilter);

/* One certificate to look at. OrvelGUI.app shows its subject, issuer, serial
 * number, validity, key, usages and fingerprints, read from DER or PEM; other
 * bytes as "Not a certificate" with a hex dump. Nothing is checked or trusted:
 * it shows what the certificate says.
 * in data: the certificate's bytes (not changed); NULL gives 4.
 * in length: their number; 0 gives 4.
 * Returns 0 once closed; 4 (checked before the path); 9; 7; or 2, 5, 6, 8. */
ORV_EXPORT long ORV_DisplayCertificate(unsigned char *data, unsigned int length);

/* One certificate out of a list. OrvelGUI.app shows a table of subject,
 * issuer, valid until and days left, with the renewal marks of each record
 * and the certificate's details on request.
 * in certs: count records, index 0 first (see ORV_Certificate).
 * in count: at least 1.
 * in/out *selected: in, the index chosen at first, below count; out, the
 *   chosen index, written only when the result is 0 and the reply held one.
 * Returns 0; 9 (checked first); 1 for a NULL certs or selected, count 0,
 * *selected not below count, or a record with a NULL data, subjectStr or
 * notAfterStr or a dataLength of 0; 2 when the user backed out; 7 (also for a
 * NULL renewDeadlineStr or a text that is not UTF-8); or 5, 6, 8. */
ORV_EXPORT long ORV_SelectCertificate(const ORV_Certificate *certs, unsigned int count,
                                      unsigned int *selected);

/* Asks the user to confirm a signature before the host signs. OrvelGUI.app
 * shows all of the data, the formatted text, the hash algorithm and value, the
 * chosen certificate (which the user may change) and the signing
 * application's version (ORV_SetOrvelSignVersion, required); Sign becomes
 * possible once every text has been seen, and Decline is the default.
 * in certs, count, in/out *selected: as for ORV_SelectCertificate.
 * in data: the data to be signed, as text; required (NULL gives 7).
 * in rtf: a formatted (RTF) form of it, shown as readable text; NULL for none.
 * in hashAlg: the hash algorithm's name, e.g. "SHA-256"; required.
 * in hashVal: the hash value, e.g. in hexadecimal; required. Shown as given:
 *   nobody recomputes it from the data.
 * out *confirmed: true for Sign, false for Decline; written as soon as the
 *   reply's answer has been read (also when a later part of the reply then
 *   gives 7). *selected is written only when the result is 0.
 * Returns 0 (confirmed or declined); 9; 1 as for ORV_SelectCertificate or for a
 * NULL confirmed; 2 when
 * the user backed out; 7 (also without a version text); and any other
 * non-zero exit status of the GUI application unchanged, 9 and above included
 * (128 + N for one killed by signal N). */
ORV_EXPORT long ORV_ConfirmSignature(const ORV_Certificate *certs, unsigned int count,
                                     unsigned int *selected, const char *data, const char *rtf,
                                     const char *hashAlg, const char *hashVal, bool *confirmed);

/* A PKCS#12 file and its password. OrvelGUI.app asks for the file (starting
 * from the name given) and its password, and checks both with OpenSSL before
 * it answers.
 * in/out path: the host's buffer of pathSize bytes; in, the file name to start
 *   from ("" for none; read before the buffer is cleared); out, the chosen
 *   file's path.
 * in pathSize: its size, the terminating zero included; 0 gives 1.
 * out outValue: the host's buffer of outValueSize bytes for the password.
 * in outValueSize: its size, the terminating zero included; 0 gives 1.
 * Once the arguments pass, both buffers are set to zero entirely. On 0 they
 * hold the path and the password; on 11 the path when it fitted and the
 * password did not, else nothing.
 * The password is the host's to wipe once used. The library wipes every copy
 * it made; its log holds the reply, the password's Base64 included, unless
 * ORV_SetMaskSecrets is on.
 * Returns 0; 9; 1 for a NULL buffer or a size of 0; 11 when a value does not
 * fit; 2 when the user backed out; 7; or 5, 6, 8. */
ORV_EXPORT long ORV_SelectPKCS12(char *path, unsigned int pathSize, char *outValue,
                                 unsigned int outValueSize);

/* ---- The modeless reinsert-card notice ----
 * Show starts it and returns at once; switch changes its text and close ends
 * it. Any other dialog shown meanwhile takes its place in the library: the
 * notice then reads the end of its input and can no longer be switched or
 * closed (7). */

/* in message: the notice's text; required.
 * Returns 0 once started; 9; 1 for a NULL message; 7 when it cannot be started
 * or the message is not UTF-8. */
ORV_EXPORT long ORV_ReinsertCardShow(const char *message);

/* in insert: 1 for the insert text, 0 for the remove text; OrvelGUI.app shows
 * "Insert the card into the reader." or "Remove the card from the reader."
 * (in the notice's language).
 * Returns 0 once sent; 1 for another value; 3 when no dialog of any kind was
 * shown since the library was loaded; 7 when the notice cannot take it (it has
 * ended, was closed, or another dialog has replaced it). */
ORV_EXPORT long ORV_ReinsertCardSwitchText(int insert);

/* Ends the notice and waits for it.
 * Returns its exit status (OrvelGUI.app: 0 closed, 2 when the user had hidden
 * it, 6 without a user interface); 3 as for switch; 7 when it cannot be
 * reached or its status is unknown. */
ORV_EXPORT long ORV_ReinsertCardClose(void);

#ifdef __cplusplus
}
#endif

#endif
