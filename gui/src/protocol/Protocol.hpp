// The GUI application's side of the dialog protocol, kept apart from any front
// end: the command line ("-window" NAME, then option pairs), the reply
// ("<Window> <result tokens> -log <Base64 of our log>") and the exit statuses,
// and the reinsert-card commands that arrive on standard input.
#pragma once

#include "protocol/GuiLog.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace OrvelGui {

// Exit statuses. 1, 3, 4 and 7 are left out on purpose: the library returns
// them for its own failures, so a host can tell ours apart from those.
enum ExitStatus : int {
    kAnswered = 0,
    kCancelled = 2,
    kBadCommandLine = 5,
    kNoUserInterface = 6,
    kInternalFailure = 8,
};

enum class Window {
    MessageBox,
    YesNoDialog,
    FileOpen,
    FileSave,
    ReinsertCard,
    DisplayCert,
    CertificateSelect,
    SignatureConfirm,
    SelectPKCS12,
};

enum class Language { Czech, Slovak, English };

// One certificate of "-certs", decoded.
struct CertificateEntry {
    std::string data; // the certificate's bytes as the host gave them
    std::string subject;
    std::string notAfter;
    std::string renewDeadline;
    std::int32_t daysRemaining = 0;
    bool forceRenew = false;
    bool warnRenew = false;
};

// Everything a window needs, decoded and checked. Only the fields of the
// requested window are filled.
struct Request {
    Window window = Window::MessageBox;
    std::string windowName;
    Language language = Language::English;
    std::string message;
    std::string info;
    int icon = 0;   // 0 information, 1 warning, 2 error
    int button = 0; // the preselected answer: 0 yes, 1 no
    std::string fileFilter;
    std::string fileName;
    std::string certificate; // DisplayCert: the bytes of "-cert"
    std::vector<CertificateEntry> certificates;
    unsigned selected = 0;
    std::string version;
    std::string data;
    std::optional<std::string> rtf;
    std::string hashAlg;
    std::string hashVal;
};

struct ParseResult {
    std::optional<Request> request; // absent: a bad command line
    std::string windowName;         // as given, for the reply; may be empty
};

// The language of the environment's locale, by the library's own rule for a
// host that set none (LC_ALL, LC_MESSAGES, LANG; cs Czech, sk Slovak, else
// English). Windows that get no "-lang" use it.
Language languageFromEnvironment();

// Reads argv[1..]. Problems are written to the log; a bad command line gives
// no request.
ParseResult parseCommandLine(const std::vector<std::string> &arguments, GuiLog &log);

// What the user answered; only the fields of the window are used.
struct Answer {
    bool yes = false;
    std::string path;
    std::string secondValue;
    unsigned selected = 0;
    bool confirmed = false;
};

// The reply text, ending in a line feed. With answered false only the window
// name and the log section are written.
std::string formatReply(const std::string &windowName, const Request *request, bool answered,
                        const Answer &answer, const GuiLog &log);

// Writes the whole reply to standard output; false when that failed.
bool writeReply(const std::string &reply);

// Strict Base64 (standard alphabet, "=" padding, length a multiple of four);
// nothing on text that is not.
std::optional<std::string> decodeBase64Strict(const std::string &text);
std::string encodeBase64(std::string_view bytes);

enum class ReinsertCommand { Insert, Remove, Close };

// Takes the reinsert-card commands apart. They arrive as one byte stream with
// no separators between them; anything that cannot begin a command is skipped.
class ReinsertCommandParser {
public:
    explicit ReinsertCommandParser(GuiLog &log) : log_(log) {}
    // Appends the complete commands found so far to `out`.
    void feed(std::string_view bytes, std::vector<ReinsertCommand> &out);

private:
    GuiLog &log_;
    std::string pending_;
    std::size_t skipped_ = 0;
};

// Reads the commands from a descriptor (standard input). A front end polls
// fd() for readability in its own event loop and then calls readAvailable().
class ReinsertCommandReader {
public:
    ReinsertCommandReader(int fd, GuiLog &log) : fd_(fd), log_(log), parser_(log) {}
    int fd() const { return fd_; }
    // One read; end of input or a read error counts as the close command.
    void readAvailable(std::vector<ReinsertCommand> &out);
    // Blocks until the next command (for when there is no user to show it to).
    ReinsertCommand waitForCommand();
    bool ended() const { return ended_; }

private:
    int fd_;
    GuiLog &log_;
    ReinsertCommandParser parser_;
    bool ended_ = false;
};

// One entry of a filter text: "Documents (pdf,doc)" has the name
// "Documents " and the patterns "pdf" and "doc"; "*" or "*.*" among them
// means every file.
struct FilterEntry {
    std::string name;
    std::vector<std::string> patterns;
    bool allFiles = false;
};
// The entries with a pattern list, in order.
std::vector<FilterEntry> filterEntries(const std::string &filterText);

// The file patterns of a filter text such as "Documents (pdf,doc)|Text (txt)";
// empty when every file fits ("*", no text, or nothing usable).
std::vector<std::string> filterPatterns(const std::string &filterText);
// False when the text holds something but no entry that filterPatterns can
// read (such as "*.pdf", which has no parentheses): every file is then listed,
// and the window should say why.
bool filterUnderstood(const std::string &filterText);
// True when the file name ends in one of the patterns (".pdf", "*.pdf" and
// "pdf" alike, letters compared without case).
bool matchesFilter(const std::string &fileName, const std::vector<std::string> &patterns);

} // namespace OrvelGui
