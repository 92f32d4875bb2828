#include "CommandLine.hpp"

#include "PrintableText.hpp"
#include "common/SignedData.hpp"

#include <CLI/CLI.hpp>

#include <charconv>
#include <climits>
#include <cstdio>

namespace OrvelTool {
namespace {

// No description, so that help shows a plain TEXT.
const CLI::Validator kUtf8(
    [](std::string &value) { return OrvelGui::isUtf8(value) ? std::string() : std::string("not valid UTF-8"); },
    "");

// A named choice or any int, the number passed on unchecked so that the
// library's own range check can be seen.
CLI::Option *addChoice(CLI::App &command, const char *name, int &target, std::vector<std::string> names,
                       const std::string &description)
{
    std::string list;
    for (const auto &each : names)
        list += (list.empty() ? "" : "|") + each;
    return command
        .add_option_function<std::string>(
            name,
            [&target, names](const std::string &text) {
                for (std::size_t i = 0; i < names.size(); ++i)
                    if (text == names[i]) {
                        target = static_cast<int>(i);
                        return;
                    }
                int number = 0;
                const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
                if (text.empty() || error != std::errc() || end != text.data() + text.size())
                    throw CLI::ValidationError(std::string("is not a name or a number: ") + text);
                target = number;
            },
            description)
        ->type_name(list + "|N");
}

CLI::Option *addText(CLI::App &command, const char *name, std::optional<std::string> &target,
                     const std::string &description, const char *typeName = "TEXT")
{
    return command.add_option(name, target, description)->check(kUtf8)->type_name(typeName);
}

void addRenewalOptions(CLI::App &command, RenewalRules &rules)
{
    command.add_option("--renew-days", rules.renewDays, "renewal deadline N days before the end of validity")
        ->check(CLI::Range(0, 36500))
        ->capture_default_str();
    command.add_option("--warn-days", rules.warnDays, "mark for renewal when fewer than N days remain")
        ->check(CLI::Range(0, 36500000))
        ->capture_default_str();
    command.add_option("--force-days", rules.forceDays, "require renewal when fewer than N days remain")
        ->check(CLI::Range(0, 36500000))
        ->capture_default_str();
}

void addBufferSize(CLI::App &command, unsigned &size, unsigned minimum)
{
    command.add_option("--buffer-size", size, "bytes of the host's buffer for the value, its terminating zero included")
        ->check(CLI::Range(minimum, 1u << 20))
        ->capture_default_str();
}

void addCertificateFiles(CLI::App &command, Invocation &call, const char *description)
{
    command.add_option("FILE", call.files, description)->required()->type_name("FILE");
}

const char *const kCommonFooter = "Common options (see 'orvel-dialogs --help') go before or after the command.";

std::string usageText(const std::string &message)
{
    return "orvel-dialogs: " + message + "\nRun with --help for more information.\n";
}

} // namespace

int usageError(const std::string &message)
{
    std::fputs(usageText(message).c_str(), stderr);
    return kUsageError;
}

std::optional<int> parseCommandLine(int argc, char **argv, Invocation &call)
{
    CLI::App app("Shows a dialog of libOrvelGUIDialogs, prints its value to stdout and exits with the "
                 "dialog's result code.",
                 "orvel-dialogs");
    app.set_version_flag("--version,-V", "orvel-dialogs " ORVEL_VERSION, "print the version and exit");
    app.set_help_all_flag("--help-all", "describe every command");
    app.require_subcommand(0, 1);
    // One wording for every usage error, the parser's and the tool's.
    app.failure_message([](const CLI::App *, const CLI::Error &error) { return usageText(error.what()); });
    // Common options may also follow the command.
    app.fallthrough();
    app.footer("Exit status: the dialog's result code (0 success, 1 bad argument, 2 cancelled, 3 no dialog to "
               "switch or close, 4 no certificate data, 5 the GUI application refused its command line, 6 no "
               "user interface, 7 the exchange failed, 8 the GUI application failed, 9 no GUI application path, "
               "11 a buffer too small); 64 a bad command line, 65 a bad command on reinsert's stdin, 66 an input "
               "file that cannot be read or holds no certificate. With --answer-status, 1 also means no or "
               "declined. A failure is explained in one line on stderr.\n\n"
               "'orvel-dialogs COMMAND --help' describes one command.");
    app.add_option("--app", call.app,
                   "the GUI application bundle (default: the reference OrvelGUI.app next to this tool, in the "
                   "build tree or installed)")
        ->check(kUtf8)
        ->type_name("PATH");
    app.add_option("--lang", call.lang,
                   "language of the dialogs and of the tool's messages (default: the dialogs' language is left to "
                   "the library, which starts as Czech; the messages follow the locale)")
        ->check(CLI::IsMember({"cs", "sk", "en"}));
    app.add_option("--parent-window", call.parentWindow,
                   "the window the dialogs stay above: x11:ID (from a terminal emulator that sets it: "
                   "x11:$WINDOWID) or wayland:HANDLE (xdg-foreign)")
        ->check(kUtf8)
        ->type_name("HANDLE");
    app.add_flag("--log", call.log,
                 "print the library's diagnostic log to stderr at the end, control characters escaped and the "
                 "PKCS#12 password masked (unless pkcs12 --show-password)");
    app.add_flag("--json", call.json, "print one JSON object with result, meaning and value to stdout");
    app.add_flag("--answer-status", call.answerStatus, "exit with 1 when the answer is no or declined");

    CLI::App *message = app.add_subcommand("message", "show a message box");
    CLI::App *yesno = app.add_subcommand("yesno", "ask a yes/no question; prints yes or no");
    CLI::App *open = app.add_subcommand("open", "choose a file to open; prints its path");
    CLI::App *save = app.add_subcommand("save", "choose where to save a file; prints the path");
    CLI::App *reinsert = app.add_subcommand("reinsert", "show the reinsert-card notice, steered from stdin");
    CLI::App *showCert = app.add_subcommand("show-cert", "show one certificate");
    CLI::App *selectCert =
        app.add_subcommand("select-cert", "choose one of some certificates; prints its index, counted from 0");
    CLI::App *confirm = app.add_subcommand("confirm-signature",
                                           "ask to confirm a signature; prints confirmed|declined INDEX");
    CLI::App *pkcs12 = app.add_subcommand("pkcs12", "choose a PKCS#12 file and its password; prints the path");
    for (CLI::App *command : app.get_subcommands({}))
        command->footer(kCommonFooter);

    for (CLI::App *command : {message, yesno, open, save, reinsert}) {
        const bool required = command == message || command == yesno || command == reinsert;
        CLI::Option *text = addText(*command, "--message", call.message,
                                    required ? "the message (or --message-file)" : "the message");
        command->add_option("--message-file", call.messageFile, "read the message from FILE ('-': stdin)")
            ->type_name("FILE")
            ->excludes(text);
    }
    for (CLI::App *command : {message, yesno})
        addText(*command, "--info", call.info, "further text");
    addChoice(*message, "--icon", call.icon, {"info", "warning", "error"}, "the icon (default info)");
    addChoice(*yesno, "--button", call.button, {"yes", "no"}, "the answer chosen at first (default yes)");
    for (CLI::App *command : {open, save}) {
        addText(*command, "--filter", call.filter, "file types, e.g. \"Documents (pdf,doc)|Text (txt)\"", "FILTER");
        addBufferSize(*command, call.bufferSize, 0);
    }
    addText(*save, "--filename", call.filename, "the file name to start from", "NAME");
    reinsert->footer("Reads one command a line from stdin (a pipe or a file, since the notice itself uses the "
                     "terminal): insert, remove, close, or \"wait SECONDS\"; empty lines and lines starting with # "
                     "are skipped. The end of input closes the notice. Exit status: the notice's, or 65 after a "
                     "line that is no command (the notice is closed).\n" +
                     std::string(kCommonFooter));
    showCert->add_option("FILE", call.files, "the certificate; its bytes are passed as they are (PEM, DER, anything)")
        ->required()
        ->expected(1)
        ->type_name("FILE");
    for (CLI::App *command : {selectCert, confirm}) {
        addCertificateFiles(*command, call, "PEM or DER certificates, index 0 first");
        command->add_option("--selected", call.selected, "the index chosen at first, counted from 0")
            ->capture_default_str();
        addRenewalOptions(*command, call.rules);
    }
    CLI::Option *data = addText(*confirm, "--data", call.data, "the data to be signed (or --data-file)");
    confirm->add_option("--data-file", call.dataFile, "read the data to be signed from FILE ('-': stdin)")
        ->type_name("FILE")
        ->excludes(data);
    addText(*confirm, "--rtf", call.rtf, "the formatted text");
    confirm->add_option("--hash-alg", call.hashAlg, "the hash algorithm")->check(kUtf8)->capture_default_str();
    addText(*confirm, "--hash-value", call.hashValue, "the hash in hexadecimal (default: computed here from the data)",
            "HEX");
    addText(*confirm, "--sign-version", call.signVersion,
            "version text of the signing application (default " ORVEL_VERSION ")");
    addText(*pkcs12, "--filename", call.filename, "the file to start from", "PATH");
    addBufferSize(*pkcs12, call.bufferSize, 1);
    pkcs12->add_flag("--show-password", call.showPassword,
                     "print the password as a second line (without it: only its length, on stderr); with --log "
                     "the log shows it too");

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        const int status = app.exit(error);
        return status == 0 ? 0 : kUsageError;
    }
    if (app.get_subcommands().empty())
        return usageError("a command is required");
    call.command = app.get_subcommands().front()->get_name();
    if ((call.command == "message" || call.command == "yesno" || call.command == "reinsert") && !call.message &&
        !call.messageFile)
        return usageError("--message or --message-file is required");
    if (call.command == "confirm-signature" && !call.data && !call.dataFile)
        return usageError("--data or --data-file is required");
    if ((call.command == "select-cert" || call.command == "confirm-signature") && call.selected >= call.files.size())
        return usageError("--selected: " + std::to_string(call.selected) +
                          " is not below the number of certificates (" + std::to_string(call.files.size()) + ")");
    if (call.command == "reinsert" && call.messageFile == "-")
        return usageError("--message-file: reinsert reads its commands from stdin; give a file");
    return std::nullopt;
}

} // namespace OrvelTool
