// orvel-dialogs: a command-line host of libOrvelGUIDialogs. Shows any of the
// library's dialogs through a GUI application (by default the reference one
// next to this tool), prints its value to standard output and exits with the
// dialog's result code.
#include "CommandLine.hpp"
#include "HostCertificates.hpp"
#include "LogView.hpp"
#include "PrintableText.hpp"
#include "ToolTexts.hpp"
#include "common/ExecutableFolder.hpp"
#include "common/SignedData.hpp"

#include <OrvelGUIDialogs/OrvelGUIDialogs.h>

#include <openssl/evp.h>

#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace OrvelTool;
namespace fs = std::filesystem;

// The reference GUI application. The tool in the build tree takes the bundle
// built with it; any other copy of the tool (the installed one) looks only in
// its own installed layout, never at a build tree's place relative to itself.
std::optional<std::string> defaultApp()
{
    const std::string folder = OrvelGui::executableFolder();
    if (folder.empty())
        return std::nullopt;
    const fs::path candidate = folder == ORVEL_TOOL_BUILD_DIR
                                   ? fs::path(ORVEL_GUI_BUILD_TREE_BUNDLE)
                                   : (fs::path(folder) / ORVEL_GUI_FROM_INSTALL).lexically_normal();
    std::error_code error;
    if (fs::is_regular_file(candidate / "Contents" / "Info.plist", error))
        return candidate.string();
    return std::nullopt;
}

// What a dialog gave back, for the plain and the JSON output.
struct Answer {
    std::string printed;        // stdout lines on success
    std::string json = "null";  // the JSON value
    std::optional<bool> positive; // yes/confirmed, for --answer-status
};

class Dialogs {
public:
    Dialogs(const Invocation &call, const ToolTexts &texts) : call_(call), texts_(texts) {}

    // The exit status; `answer` is filled on result 0.
    int run(Answer &answer);

private:
    const char *optional(const std::optional<std::string> &text) const { return text ? text->c_str() : nullptr; }
    // --message or the text of --message-file (likewise --data).
    int textOrFile(const std::optional<std::string> &text, const std::optional<std::string> &file,
                   const char *fileOption, std::string &out) const;

    int message(Answer &answer);
    int yesNo(Answer &answer);
    int file(bool save, Answer &answer);
    int reinsert();
    int showCertificate();
    int selectCertificate(Answer &answer);
    int confirmSignature(Answer &answer);
    int pkcs12(Answer &answer);

    const Invocation &call_;
    const ToolTexts &texts_;
};

int Dialogs::run(Answer &answer)
{
    const std::string &name = call_.command;
    if (name == "message")
        return message(answer);
    if (name == "yesno")
        return yesNo(answer);
    if (name == "open" || name == "save")
        return file(name == "save", answer);
    if (name == "reinsert")
        return reinsert();
    if (name == "show-cert")
        return showCertificate();
    if (name == "select-cert")
        return selectCertificate(answer);
    if (name == "confirm-signature")
        return confirmSignature(answer);
    return pkcs12(answer);
}

int Dialogs::textOrFile(const std::optional<std::string> &text, const std::optional<std::string> &file,
                        const char *fileOption, std::string &out) const
{
    if (!file) {
        out = text.value_or("");
        return 0;
    }
    std::string error;
    if (!readFile(*file, out, error)) {
        std::fprintf(stderr, "orvel-dialogs: %s\n", error.c_str());
        return kInputError;
    }
    // The library takes NUL-terminated UTF-8.
    if (out.find('\0') != std::string::npos)
        return usageError(std::string(fileOption) + ": " + *file + " holds a NUL byte");
    if (!OrvelGui::isUtf8(out))
        return usageError(std::string(fileOption) + ": " + *file + " is not valid UTF-8");
    return 0;
}

int Dialogs::message(Answer &)
{
    std::string text;
    if (const int status = textOrFile(call_.message, call_.messageFile, "--message-file", text))
        return status;
    return static_cast<int>(ORV_MessageBox(text.c_str(), optional(call_.info), call_.icon));
}

int Dialogs::yesNo(Answer &answer)
{
    std::string text;
    if (const int status = textOrFile(call_.message, call_.messageFile, "--message-file", text))
        return status;
    bool yes = false;
    const long result = ORV_YesNoDialog(text.c_str(), optional(call_.info), call_.button, &yes);
    const char *word = yes ? "yes" : "no";
    answer = {std::string(word) + "\n", jsonString(word), yes};
    return static_cast<int>(result);
}

int Dialogs::file(bool save, Answer &answer)
{
    std::string text;
    if (const int status = textOrFile(call_.message, call_.messageFile, "--message-file", text))
        return status;
    std::vector<char> path(static_cast<std::size_t>(call_.bufferSize) + 1, '\0');
    const long result =
        save ? ORV_FileSaveDialog(text.c_str(), optional(call_.filename), path.data(), call_.bufferSize,
                                  optional(call_.filter))
             : ORV_FileOpenDialog(text.c_str(), nullptr, path.data(), call_.bufferSize, optional(call_.filter));
    answer = {std::string(path.data()) + "\n", jsonString(path.data()), std::nullopt};
    return static_cast<int>(result);
}

bool readLine(std::string &buffer, std::string &line)
{
    for (;;) {
        const auto end = buffer.find('\n');
        if (end != std::string::npos) {
            line = buffer.substr(0, end);
            buffer.erase(0, end + 1);
            return true;
        }
        char chunk[1024];
        ssize_t n = 0;
        do {
            n = ::read(STDIN_FILENO, chunk, sizeof chunk);
        } while (n < 0 && errno == EINTR);
        if (n <= 0) {
            if (buffer.empty())
                return false;
            line.swap(buffer);
            buffer.clear();
            return true;
        }
        buffer.append(chunk, static_cast<std::size_t>(n));
    }
}

void sleepSeconds(double seconds)
{
    const auto whole = static_cast<time_t>(seconds);
    timespec left{whole, static_cast<long>((seconds - static_cast<double>(whole)) * 1e9)};
    while (::nanosleep(&left, &left) != 0 && errno == EINTR) {
    }
}

// One line of reinsert's input: nothing to do, a switch, a wait, the end, or
// a line that is no command.
enum class ReinsertStep { Skip, Switched, End, Bad };

ReinsertStep reinsertStep(const std::string &line, long &switchResult)
{
    if (line.empty() || line[0] == '#')
        return ReinsertStep::Skip;
    if (line == "close")
        return ReinsertStep::End;
    if (line == "insert" || line == "remove") {
        switchResult = ORV_ReinsertCardSwitchText(line == "insert" ? 1 : 0);
        return ReinsertStep::Switched;
    }
    if (line.compare(0, 5, "wait ") == 0) {
        char *end = nullptr;
        const double seconds = std::strtod(line.c_str() + 5, &end);
        if (*end == '\0' && seconds >= 0 && seconds <= 3600) {
            sleepSeconds(seconds);
            return ReinsertStep::Skip;
        }
    }
    return ReinsertStep::Bad;
}

int Dialogs::reinsert()
{
    std::string text;
    if (const int status = textOrFile(call_.message, call_.messageFile, "--message-file", text))
        return status;
    if (::isatty(STDIN_FILENO))
        return usageError("reinsert reads its commands from a pipe or a file, not from the terminal "
                          "(the notice uses the terminal); e.g. printf 'remove\\nwait 2\\ninsert\\nclose\\n' | ...");
    const long shown = ORV_ReinsertCardShow(text.c_str());
    if (shown != 0)
        return static_cast<int>(shown);
    std::string buffer;
    std::string line;
    std::size_t number = 0;
    bool badLine = false;
    while (readLine(buffer, line)) {
        ++number;
        const auto first = line.find_first_not_of(" \t\r");
        const auto last = line.find_last_not_of(" \t\r");
        line = first == std::string::npos ? "" : line.substr(first, last - first + 1);
        long switched = 0;
        const ReinsertStep step = reinsertStep(line, switched);
        if (step == ReinsertStep::End)
            break;
        if (step == ReinsertStep::Bad) {
            const std::string shownLine = "'" + escapeForTerminal(line) + "'";
            std::fputs("orvel-dialogs: ", stderr);
            std::fprintf(stderr, texts_.badReinsertInput, number, shownLine.c_str());
            std::fputs("\n", stderr);
            badLine = true;
            break;
        }
        if (switched != 0) {
            std::fputs("orvel-dialogs: ", stderr);
            std::fprintf(stderr, texts_.switchFailed, switched);
            std::fputs("\n", stderr);
            break;
        }
    }
    // The notice is closed on every path, so none outlives the tool.
    const long closed = ORV_ReinsertCardClose();
    return badLine ? kBadCommandInput : static_cast<int>(closed);
}

int Dialogs::showCertificate()
{
    std::string bytes;
    std::string error;
    if (!readFile(call_.files[0], bytes, error)) {
        std::fprintf(stderr, "orvel-dialogs: %s\n", error.c_str());
        return kInputError;
    }
    return static_cast<int>(ORV_DisplayCertificate(reinterpret_cast<unsigned char *>(bytes.data()),
                                                   static_cast<unsigned>(bytes.size())));
}

int loadCertificates(const Invocation &call, HostCertificates &certificates)
{
    std::string error;
    if (!certificates.load(call.files, call.rules, error)) {
        std::fprintf(stderr, "orvel-dialogs: %s\n", error.c_str());
        return kInputError;
    }
    return 0;
}

int Dialogs::selectCertificate(Answer &answer)
{
    HostCertificates certificates;
    if (const int status = loadCertificates(call_, certificates))
        return status;
    unsigned selected = call_.selected;
    const long result = ORV_SelectCertificate(certificates.records(), certificates.count(), &selected);
    // Counted from 0 like --selected, while the window numbers its lines from 1.
    answer = {std::to_string(selected) + "\n", std::to_string(selected), std::nullopt};
    return static_cast<int>(result);
}

// The hash of the data in upper-case hexadecimal, or nothing for an unknown
// algorithm.
std::optional<std::string> hashOf(const std::string &algorithm, const std::string &data)
{
    const EVP_MD *md = EVP_get_digestbyname(algorithm.c_str());
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    if (!md || EVP_Digest(data.data(), data.size(), digest, &length, md, nullptr) != 1)
        return std::nullopt;
    static const char digits[] = "0123456789ABCDEF";
    std::string hex;
    for (unsigned i = 0; i < length; ++i) {
        hex.push_back(digits[digest[i] >> 4]);
        hex.push_back(digits[digest[i] & 0x0F]);
    }
    return hex;
}

int Dialogs::confirmSignature(Answer &answer)
{
    std::string data;
    if (const int status = textOrFile(call_.data, call_.dataFile, "--data-file", data))
        return status;
    std::string hash;
    if (call_.hashValue) {
        hash = *call_.hashValue;
    } else if (const auto computed = hashOf(call_.hashAlg, data)) {
        hash = *computed;
    } else {
        return usageError("--hash-alg: unknown hash algorithm '" + call_.hashAlg + "'; give --hash-value");
    }
    HostCertificates certificates;
    if (const int status = loadCertificates(call_, certificates))
        return status;
    unsigned selected = call_.selected;
    ORV_SetOrvelSignVersion(call_.signVersion.value_or(ORVEL_VERSION).c_str());
    bool confirmed = false;
    const long result = ORV_ConfirmSignature(certificates.records(), certificates.count(), &selected, data.c_str(),
                                             optional(call_.rtf), call_.hashAlg.c_str(), hash.c_str(), &confirmed);
    answer = {std::string(confirmed ? "confirmed " : "declined ") + std::to_string(selected) + "\n",
              std::string("{\"confirmed\":") + (confirmed ? "true" : "false") +
                  ",\"index\":" + std::to_string(selected) + "}",
              confirmed};
    return static_cast<int>(result);
}

int Dialogs::pkcs12(Answer &answer)
{
    const std::string start = call_.filename.value_or("");
    if (start.size() >= call_.bufferSize)
        return usageError("--filename does not fit into --buffer-size");
    std::vector<char> path(call_.bufferSize, '\0');
    std::vector<char> password(call_.bufferSize, '\0');
    start.copy(path.data(), start.size());
    const long result = ORV_SelectPKCS12(path.data(), call_.bufferSize, password.data(), call_.bufferSize);
    answer.printed = std::string(path.data()) + "\n";
    answer.json = "{\"path\":" + jsonString(path.data());
    if (call_.showPassword) {
        answer.printed += std::string(password.data()) + "\n";
        answer.json += ",\"password\":" + jsonString(password.data());
    } else if (result == 0) {
        std::fputs("orvel-dialogs: ", stderr);
        std::fprintf(stderr, texts_.passwordLength, std::string(password.data()).size());
        std::fputs("\n", stderr);
    }
    answer.json += "}";
    return static_cast<int>(result);
}

// After the dialog: the value (plain or JSON), a failure's meaning and cause
// on stderr, the log with --log; returns the exit status.
int report(const Invocation &call, ToolLanguage language, int status, const Answer &answer)
{
    const ToolTexts &texts = toolTexts(language);
    const bool dialogResult = status < kUsageError;
    const char *rawLog = nullptr;
    ORV_GetLog(&rawLog);
    const std::string log = logForDisplay(rawLog ? rawLog : "", texts);
    const std::optional<std::string> cause = status != 0 && status != 2 ? failureCause(log) : std::nullopt;

    if (call.json && dialogResult) {
        // For scripts: the meaning stays English whatever --lang says.
        std::string object = "{\"result\":" + std::to_string(status) +
                             ",\"meaning\":" + jsonString(resultMeaning(status, ToolLanguage::English)) +
                             ",\"value\":" + (status == 0 ? answer.json : "null");
        if (cause)
            object += ",\"cause\":" + jsonString(*cause);
        std::printf("%s}\n", object.c_str());
    } else if (status == 0) {
        std::fputs(answer.printed.c_str(), stdout);
    }
    std::fflush(stdout);
    if (status != 0 && dialogResult) {
        std::fputs("orvel-dialogs: ", stderr);
        std::fprintf(stderr, texts.result, static_cast<long>(status), resultMeaning(status, language).c_str());
        std::fputs("\n", stderr);
        if (cause && !call.log) {
            std::fputs("orvel-dialogs: ", stderr);
            std::fprintf(stderr, texts.cause, cause->c_str());
            std::fputs("\n", stderr);
        }
    }
    if (call.log) {
        std::fputs(log.empty() ? texts.emptyLog : log.c_str(), stderr);
        if (log.empty() || log.back() != '\n')
            std::fputs("\n", stderr);
    }
    if (call.answerStatus && status == 0 && answer.positive)
        return *answer.positive ? 0 : 1;
    return status;
}

} // namespace

int main(int argc, char **argv)
{
    Invocation call;
    if (const auto status = parseCommandLine(argc, argv, call))
        return *status;
    const ToolLanguage language = toolLanguage(call.lang);
    if (call.parentWindow && ORV_SetParentWindow(call.parentWindow->c_str()) != 0)
        return usageError("--parent-window: not a window handle (a control character, or over 1024 bytes): " +
                          escapeForTerminal(*call.parentWindow));

    std::optional<std::string> app = call.app ? call.app : defaultApp();
    if (!app) {
        std::fprintf(stderr, "orvel-dialogs: the reference GUI application was not found next to this tool; "
                             "give --app PATH\n");
        return kInputError;
    }
    // The library hands the language to every window, those without "-lang"
    // on their command line too.
    if (call.lang)
        ORV_SetLanguage(*call.lang == "cs" ? 0 : *call.lang == "sk" ? 1 : 2);
    ORV_SetAppPath(app->c_str());
    // The log keeps the PKCS#12 password masked unless it is asked to show it.
    ORV_SetMaskSecrets(call.log && call.showPassword ? 0 : 1);

    Answer answer;
    const int status = Dialogs(call, toolTexts(language)).run(answer);
    return report(call, language, status, answer);
}
