// C++ interface of libOrvelGUIDialogs: the settings, the dialogs as static
// members of OrvelDialogs::Dialog, and the helper classes. Unlike the ORV_
// functions, these may let std::bad_alloc reach a C++ caller.
#ifndef ORVEL_DIALOGS_HPP
#define ORVEL_DIALOGS_HPP

#include <OrvelGUIDialogs/OrvelExport.h>
#include <OrvelGUIDialogs/OrvelGUIDialogs.h>
#include <OrvelGUIDialogs/Util.hpp>

#include <optional>
#include <string>
#include <vector>

namespace OrvelDialogs {

// A null pointer or text that is not valid UTF-8 stores "no value".
ORV_EXPORT void SetAppPath(const char *path);
ORV_EXPORT void SetLanguage(int language);
ORV_EXPORT void SetOrvelSignVersion(const char *version);
// The most bytes read from a GUI application's output (ORV_SetOutputLimit);
// here 0 is stored as it is and refuses every reply.
ORV_EXPORT void SetOutputLimit(unsigned long long bytes);
// The host's window for the dialogs to stay above (ORV_SetParentWindow);
// here a text that cannot be used clears it, as null and "" do.
ORV_EXPORT void SetParentWindow(const char *handle);
// The log as NUL-terminated UTF-8, or null while nothing has been logged.
ORV_EXPORT const char *GetLogBuffer();

// Each dialog returns a result code (see OrvelGUIDialogs.h).
class ORV_EXPORT Dialog {
public:
    Dialog() = delete;

    static long displayMessage(const char *message, const char *info, int icon);
    static long displayConfirmDialog(const char *message, const char *info, int button, bool *result);
    static long displayFileOpenDialog(const char *message, const char *fileName, char *outPath,
                                      unsigned int outPathSize, const char *fileFilter);
    static long displayFileSaveDialog(const char *message, const char *fileName, char *outPath,
                                      unsigned int outPathSize, const char *fileFilter);
    static long displayReinsertCardDialog(const char *message);
    static long switchTextReinsertCardDialog(int insert);
    static long closeReinsertCardDialog();
    static long displayCertificate(unsigned char *data, unsigned int length);
    static long displaySelectCertificateDialog(const ORV_Certificate *certs, unsigned int count,
                                               unsigned int *selected);
    static long displayConfirmSignatureDialog(const ORV_Certificate *certs, unsigned int count,
                                              unsigned int *selected, const char *data, const char *rtf,
                                              const char *hashAlg, const char *hashVal, bool *confirmed);
    static long displaySelectPKCS12Dialog(const char *fileName, char *outPath, unsigned int outPathSize,
                                          char *outValue, unsigned int outValueSize);
};

} // namespace OrvelDialogs

// True when the language is 0, 1 or 2.
ORV_EXPORT bool languageIsSet();
// Sets the language from the user's locale: cs 0, sk 1, anything else 2.
ORV_EXPORT void SetCurrentOSLanguage();
// Appends the message and one line feed to the log.
ORV_EXPORT void logMsg(const std::string &message);

// The file patterns of a filter text such as "Documents (pdf,doc)|Text (txt)",
// or no list for a null or invalid text or when a "*" pattern means all files.
// An entry with neither "(" nor ")" throws an exception derived from
// std::runtime_error, as for a token index out of range.
ORV_EXPORT std::optional<std::vector<std::string>> getFileTypesFromString(const char *filterText);

#endif
