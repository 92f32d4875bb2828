// C++ interface of libOrvelGUIDialogs: the settings, the dialogs as static
// members of OrvelDialogs::Dialog, and the helper classes. Each member does
// what the ORV_ function of the same dialog does (OrvelGUIDialogs.h describes
// every parameter, what OrvelGUI.app shows, who owns what and each result
// code); only the differences are said here. Unlike the ORV_ functions, these
// may let std::bad_alloc reach a C++ caller.
#ifndef ORVEL_DIALOGS_HPP
#define ORVEL_DIALOGS_HPP

#include <OrvelGUIDialogs/OrvelExport.h>
#include <OrvelGUIDialogs/OrvelGUIDialogs.h>
#include <OrvelGUIDialogs/Util.hpp>

#include <optional>
#include <string>
#include <vector>

namespace OrvelDialogs {

// in path: the GUI application's bundle (ORV_SetAppPath), copied. A null
// pointer or text that is not valid UTF-8 stores "no value" (dialogs give 9).
ORV_EXPORT void SetAppPath(const char *path);
// in language: stored unchecked, unlike ORV_SetLanguage. 0 Czech, 1 Slovak,
// 2 any other; any other value counts as "not set", and the next dialog that
// passes a language sets it from the locale first (cs 0, sk 1, else 2).
ORV_EXPORT void SetLanguage(int language);
// in version: the signing application's version text (ORV_SetOrvelSignVersion),
// copied; null or text that is not UTF-8 stores "no value".
ORV_EXPORT void SetOrvelSignVersion(const char *version);
// in bytes: the most bytes read from a GUI application's output
// (ORV_SetOutputLimit); here 0 is stored as it is and refuses every reply.
ORV_EXPORT void SetOutputLimit(unsigned long long bytes);
// in mask: true logs the PKCS#12 reply with its password token replaced by
// "********" (ORV_SetMaskSecrets); false, the default, logs it whole.
ORV_EXPORT void SetMaskSecrets(bool mask);
// The host's window for the dialogs to stay above (ORV_SetParentWindow);
// here a text that cannot be used clears it, as null and "" do.
ORV_EXPORT void SetParentWindow(const char *handle);
// The log as NUL-terminated UTF-8, or null while nothing has been logged.
// Owned by the library and valid until the next entry (ORV_GetLog).
ORV_EXPORT const char *GetLogBuffer();

// The dialogs. Each returns the result code of its ORV_ function, takes the
// same parameters in the same order and forwards nothing else; "in", "out"
// and ownership are as there. Each blocks until the GUI application exits,
// except the reinsert-card notice.
class ORV_EXPORT Dialog {
public:
    Dialog() = delete;

    // ORV_MessageBox: icon 0 information, 1 warning, 2 error.
    static long displayMessage(const char *message, const char *info, int icon);
    // ORV_YesNoDialog: button 0 chooses Yes at first, 1 No; out *result.
    static long displayConfirmDialog(const char *message, const char *info, int button, bool *result);
    // ORV_FileOpenDialog: fileName is accepted and never read.
    static long displayFileOpenDialog(const char *message, const char *fileName, char *outPath,
                                      unsigned int outPathSize, const char *fileFilter);
    // ORV_FileSaveDialog: fileName is the name the chooser starts with.
    static long displayFileSaveDialog(const char *message, const char *fileName, char *outPath,
                                      unsigned int outPathSize, const char *fileFilter);
    // ORV_ReinsertCardShow, ORV_ReinsertCardSwitchText (insert 1 insert text,
    // 0 remove text) and ORV_ReinsertCardClose.
    static long displayReinsertCardDialog(const char *message);
    static long switchTextReinsertCardDialog(int insert);
    static long closeReinsertCardDialog();
    // ORV_DisplayCertificate: in data, length bytes; 4 for none.
    static long displayCertificate(unsigned char *data, unsigned int length);
    // ORV_SelectCertificate: in/out *selected.
    static long displaySelectCertificateDialog(const ORV_Certificate *certs, unsigned int count,
                                               unsigned int *selected);
    // ORV_ConfirmSignature: in/out *selected, out *confirmed.
    static long displayConfirmSignatureDialog(const ORV_Certificate *certs, unsigned int count,
                                              unsigned int *selected, const char *data, const char *rtf,
                                              const char *hashAlg, const char *hashVal, bool *confirmed);
    // ORV_SelectPKCS12 with the starting name apart from the path's buffer:
    // in fileName, the file to start from (null for none; it may point into
    // outPath, as ORV_SelectPKCS12 passes it, and is read before outPath is
    // cleared); out outPath (outPathSize bytes), the chosen file; out outValue
    // (outValueSize bytes), its password.
    static long displaySelectPKCS12Dialog(const char *fileName, char *outPath, unsigned int outPathSize,
                                          char *outValue, unsigned int outValueSize);
};

} // namespace OrvelDialogs

// True when the language is 0, 1 or 2.
ORV_EXPORT bool languageIsSet();
// Sets the language from the user's locale: cs 0, sk 1, anything else 2.
ORV_EXPORT void SetCurrentOSLanguage();
// in message: appended to the log, then one line feed.
ORV_EXPORT void logMsg(const std::string &message);

// in filterText: a filter such as "Documents (pdf,doc)|Text (txt)" (UTF-8).
// The file patterns in their order ("pdf", "doc", "txt"), taken unchanged, or
// no list for a null or invalid text or when a "*" pattern means all files.
// The list is the caller's. An entry with neither "(" nor ")" throws an
// exception derived from std::runtime_error, as for a token index out of range.
ORV_EXPORT std::optional<std::vector<std::string>> getFileTypesFromString(const char *filterText);

#endif
