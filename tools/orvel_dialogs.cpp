// orvel-dialogs: a command-line host of libOrvelGUIDialogs. Shows any of the
// library's dialogs through a GUI application (by default the reference one
// next to this tool), prints the value to standard output and exits with the
// dialog's result code.
#include "HostCertificates.hpp"

#include <OrvelGUIDialogs/OrvelGUIDialogs.h>

#include <openssl/evp.h>

#include <unistd.h>
#if defined(__APPLE__)
#include <mach-o/dyld.h>
#endif

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace {

using namespace OrvelTool;
namespace fs = std::filesystem;

// The tool's own failures, above every dialog result code.
constexpr int kUsageError = 64;
constexpr int kInputError = 66;

struct Subcommand {
    const char *name;
    const char *summary;
    const char *usage;
    std::set<std::string> values; // options that take a value
    std::set<std::string> flags;
    bool files; // takes certificate files
};

const char *const kCommonHelp = "Common options:\n"
                                "  --app PATH     the GUI application bundle (default: the reference OrvelGUI.app\n"
                                "                 found next to this tool, in the build tree or installed)\n"
                                "  --lang cs|sk|en  language of the dialogs (default: left to the library,\n"
                                "                 whose language starts as Czech)\n"
                                "  --log          print the library's diagnostic log to stderr at the end\n"
                                "  --help         this help\n";

const char *const kRenewalHelp = "  --renew-days N   renewal deadline N days before the end of validity (30)\n"
                                 "  --warn-days N    mark for renewal when fewer than N days remain (30)\n"
                                 "  --force-days N   require renewal when fewer than N days remain (7)\n";

const std::vector<Subcommand> &subcommands()
{
    static const std::vector<Subcommand> table = {
        {"message", "show a message box",
         "orvel-dialogs message --message TEXT [--info TEXT] [--icon info|warning|error]\n", {"--message", "--info", "--icon"}, {}, false},
        {"yesno", "ask a yes/no question; prints yes or no",
         "orvel-dialogs yesno --message TEXT [--info TEXT] [--button yes|no]\n"
         "  --button   the answer chosen at first (default yes)\n",
         {"--message", "--info", "--button"}, {}, false},
        {"open", "choose a file to open; prints its path",
         "orvel-dialogs open [--message TEXT] [--filter FILTER] [--buffer-size N]\n"
         "  --filter   e.g. \"Documents (pdf,doc)|Text (txt)\"\n"
         "  --buffer-size  bytes for the path, its terminating zero included (4096)\n",
         {"--message", "--filter", "--buffer-size"}, {}, false},
        {"save", "choose where to save a file; prints the path",
         "orvel-dialogs save [--message TEXT] [--filename NAME] [--filter FILTER] [--buffer-size N]\n",
         {"--message", "--filename", "--filter", "--buffer-size"}, {}, false},
        {"reinsert", "show the reinsert-card notice, steered from stdin",
         "orvel-dialogs reinsert --message TEXT < COMMANDS\n"
         "  Reads one command a line from stdin (a pipe or a file, since the notice\n"
         "  itself uses the terminal): insert, remove, close, or \"wait SECONDS\".\n"
         "  The end of input closes the notice. Exit status: the notice's.\n",
         {"--message"}, {}, false},
        {"show-cert", "show one certificate",
         "orvel-dialogs show-cert FILE\n"
         "  The file's bytes are passed as they are (PEM, DER, or anything else).\n", {}, {}, true},
        {"select-cert", "choose one of some certificates; prints its index",
         "orvel-dialogs select-cert [--selected N] [renewal options] FILE...\n"
         "  FILE       PEM or DER certificates, index 0 first\n"
         "  --selected the index chosen at first (0)\n",
         {"--selected", "--renew-days", "--warn-days", "--force-days"}, {}, true},
        {"confirm-signature", "ask to confirm a signature; prints confirmed|declined INDEX",
         "orvel-dialogs confirm-signature --data TEXT [--rtf TEXT] [--hash-alg NAME]\n"
         "        [--hash-value HEX] [--sign-version TEXT] [--selected N] [renewal options] FILE...\n"
         "  --hash-alg      default SHA-256\n"
         "  --hash-value    default: the hash of the data, computed here\n"
         "  --sign-version  version text of the signing application (default " ORVEL_VERSION ")\n",
         {"--data", "--rtf", "--hash-alg", "--hash-value", "--sign-version", "--selected", "--renew-days",
          "--warn-days", "--force-days"},
         {},
         true},
        {"pkcs12", "choose a PKCS#12 file and its password; prints the path",
         "orvel-dialogs pkcs12 [--filename PATH] [--buffer-size N] [--show-password]\n"
         "  --show-password  print the password as a second line (off: only its length, to stderr)\n",
         {"--filename", "--buffer-size"}, {"--show-password"}, false},
    };
    return table;
}

void printToolHelp(std::FILE *out)
{
    std::fputs("Usage: orvel-dialogs [common options] COMMAND [options]\n\n"
               "Shows a dialog of libOrvelGUIDialogs, prints its value to stdout and exits\n"
               "with the dialog's result code (64: bad usage, 66: unreadable input file).\n\n"
               "Commands:\n",
               out);
    for (const auto &command : subcommands())
        std::fprintf(out, "  %-18s %s\n", command.name, command.summary);
    std::fputs("\n", out);
    std::fputs(kCommonHelp, out);
    std::fputs("\n'orvel-dialogs COMMAND --help' describes one command.\n", out);
}

void printCommandHelp(const Subcommand &command)
{
    std::printf("Usage: %s", command.usage);
    if (command.values.count("--renew-days"))
        std::fputs(kRenewalHelp, stdout);
    std::fputs("\n", stdout);
    std::fputs(kCommonHelp, stdout);
}

struct Invocation {
    const Subcommand *command = nullptr;
    std::map<std::string, std::string> values;
    std::set<std::string> flags;
    std::vector<std::string> files;
};

int usage(const std::string &message)
{
    std::fprintf(stderr, "orvel-dialogs: %s\nTry 'orvel-dialogs --help'.\n", message.c_str());
    return kUsageError;
}

// Returns 0 and fills `call`, or the exit status.
int parseArguments(int argc, char **argv, Invocation &call)
{
    static const std::set<std::string> commonValues = {"--app", "--lang"};
    static const std::set<std::string> commonFlags = {"--log", "--help"};
    bool optionsEnded = false;
    for (int i = 1; i < argc; ++i) {
        std::string argument = argv[i];
        if (!optionsEnded && argument == "--") {
            optionsEnded = true;
            continue;
        }
        if (!optionsEnded && argument == "-h")
            argument = "--help";
        if (optionsEnded || argument.size() < 2 || argument.compare(0, 2, "--") != 0) {
            if (!call.command) {
                for (const auto &command : subcommands())
                    if (argument == command.name)
                        call.command = &command;
                if (!call.command)
                    return usage("unknown command '" + argument + "'");
            } else if (call.command->files) {
                call.files.push_back(argument);
            } else {
                return usage("unexpected argument '" + argument + "'");
            }
            continue;
        }
        std::string name = argument;
        std::optional<std::string> value;
        if (const auto equals = argument.find('='); equals != std::string::npos) {
            name = argument.substr(0, equals);
            value = argument.substr(equals + 1);
        }
        const bool isFlag = commonFlags.count(name) || (call.command && call.command->flags.count(name));
        const bool takesValue = commonValues.count(name) || (call.command && call.command->values.count(name));
        if (isFlag) {
            if (value)
                return usage("option " + name + " takes no value");
            call.flags.insert(name);
        } else if (takesValue) {
            if (!value) {
                if (i + 1 >= argc)
                    return usage("option " + name + " needs a value");
                value = argv[++i];
            }
            call.values[name] = *value;
        } else {
            return usage("unknown option " + name + (call.command ? std::string(" for ") + call.command->name : ""));
        }
    }
    return 0;
}

std::optional<long> parseInteger(const std::string &text)
{
    long value = 0;
    const char *end = text.data() + text.size();
    const auto [ptr, ec] = std::from_chars(text.data(), end, value);
    if (text.empty() || ec != std::errc() || ptr != end)
        return std::nullopt;
    return value;
}

// A named choice or a number, passed on unchanged so that the library's own
// range check can be seen.
std::optional<int> parseChoice(const std::string &text, const std::vector<std::string> &names)
{
    for (std::size_t i = 0; i < names.size(); ++i)
        if (text == names[i])
            return static_cast<int>(i);
    const auto number = parseInteger(text);
    if (!number || *number < INT_MIN || *number > INT_MAX)
        return std::nullopt;
    return static_cast<int>(*number);
}

std::string executableFolder()
{
#if defined(__APPLE__)
    char path[PATH_MAX];
    uint32_t size = sizeof path;
    if (_NSGetExecutablePath(path, &size) != 0)
        return {};
    return fs::path(path).parent_path().string();
#else
    std::error_code error;
    const fs::path self = fs::read_symlink("/proc/self/exe", error);
    return error ? std::string() : self.parent_path().string();
#endif
}

// The reference GUI application: next to the tool in the build tree, or in
// the installed layout.
std::optional<std::string> defaultApp()
{
    const std::string folder = executableFolder();
    if (folder.empty())
        return std::nullopt;
    for (const char *relative : {ORVEL_GUI_FROM_BUILD_TREE, ORVEL_GUI_FROM_INSTALL}) {
        const fs::path candidate = (fs::path(folder) / relative).lexically_normal();
        std::error_code error;
        if (fs::is_regular_file(candidate / "Contents" / "Info.plist", error))
            return candidate.string();
    }
    return std::nullopt;
}

const char *meaning(long result)
{
    switch (result) {
    case 1:
        return "a bad argument";
    case 2:
        return "cancelled by the user";
    case 3:
        return "no dialog to switch or close";
    case 4:
        return "no certificate data";
    case 5:
        return "the GUI application refused its command line";
    case 6:
        return "the GUI application found no user interface (no terminal)";
    case 7:
        return "the exchange with the GUI application failed";
    case 8:
        return "the GUI application failed";
    case 9:
        return "the GUI application's path is not set";
    case 11:
        return "the buffer is too small for the value";
    default:
        return "see the log (--log)";
    }
}

class Dialogs {
public:
    explicit Dialogs(const Invocation &call) : call_(call) {}

    int run();

private:
    std::string value(const char *name, const std::string &fallback = {}) const
    {
        const auto it = call_.values.find(name);
        return it == call_.values.end() ? fallback : it->second;
    }
    const char *optionalText(const char *name) const
    {
        const auto it = call_.values.find(name);
        return it == call_.values.end() ? nullptr : it->second.c_str();
    }
    bool has(const char *name) const { return call_.values.count(name) != 0; }
    // A whole number option within bounds, or nothing (after a usage message).
    std::optional<long> number(const char *name, long fallback, long minimum, long maximum) const
    {
        if (!has(name))
            return fallback;
        const auto parsed = parseInteger(value(name));
        if (!parsed || *parsed < minimum || *parsed > maximum) {
            usage(std::string("option ") + name + " needs a number from " + std::to_string(minimum) + " to " +
                  std::to_string(maximum));
            return std::nullopt;
        }
        return parsed;
    }
    int loadCertificates(HostCertificates &certificates) const;
    // The certificate files and --selected, shared by the two list dialogs.
    int loadCertificatesAndSelection(HostCertificates &certificates, unsigned &selected) const;

    int message();
    int yesNo();
    int file(bool save);
    int reinsert();
    int showCertificate();
    int selectCertificate();
    int confirmSignature();
    int pkcs12();

    const Invocation &call_;
};

int Dialogs::run()
{
    const std::string name = call_.command->name;
    if (name == "message")
        return message();
    if (name == "yesno")
        return yesNo();
    if (name == "open" || name == "save")
        return file(name == "save");
    if (name == "reinsert")
        return reinsert();
    if (name == "show-cert")
        return showCertificate();
    if (name == "select-cert")
        return selectCertificate();
    if (name == "confirm-signature")
        return confirmSignature();
    return pkcs12();
}

int Dialogs::message()
{
    if (!has("--message"))
        return usage("message needs --message");
    const auto icon = parseChoice(value("--icon", "info"), {"info", "warning", "error"});
    if (!icon)
        return usage("--icon is info, warning, error or a number");
    return static_cast<int>(ORV_MessageBox(value("--message").c_str(), optionalText("--info"), *icon));
}

int Dialogs::yesNo()
{
    if (!has("--message"))
        return usage("yesno needs --message");
    const auto button = parseChoice(value("--button", "yes"), {"yes", "no"});
    if (!button)
        return usage("--button is yes, no or a number");
    bool yes = false;
    const long result = ORV_YesNoDialog(value("--message").c_str(), optionalText("--info"), *button, &yes);
    if (result == 0)
        std::printf("%s\n", yes ? "yes" : "no");
    return static_cast<int>(result);
}

int Dialogs::file(bool save)
{
    const auto size = number("--buffer-size", 4096, 0, 1 << 20);
    if (!size)
        return kUsageError;
    std::vector<char> path(static_cast<std::size_t>(*size) + 1, '\0');
    const auto bufferSize = static_cast<unsigned>(*size);
    const std::string message = value("--message");
    const long result =
        save ? ORV_FileSaveDialog(message.c_str(), optionalText("--filename"), path.data(), bufferSize,
                                  optionalText("--filter"))
             : ORV_FileOpenDialog(message.c_str(), nullptr, path.data(), bufferSize, optionalText("--filter"));
    if (result == 0)
        std::printf("%s\n", path.data());
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

int Dialogs::reinsert()
{
    if (!has("--message"))
        return usage("reinsert needs --message");
    if (::isatty(STDIN_FILENO))
        return usage("reinsert reads its commands from a pipe or a file, not from the terminal "
                     "(the notice uses the terminal); e.g. printf 'remove\\nwait 2\\ninsert\\nclose\\n' | ...");
    const long shown = ORV_ReinsertCardShow(value("--message").c_str());
    if (shown != 0)
        return static_cast<int>(shown);
    std::string buffer;
    std::string line;
    while (readLine(buffer, line)) {
        const auto first = line.find_first_not_of(" \t\r");
        const auto last = line.find_last_not_of(" \t\r");
        line = first == std::string::npos ? "" : line.substr(first, last - first + 1);
        long result = 0;
        if (line.empty() || line[0] == '#')
            continue;
        if (line == "close")
            break;
        if (line == "insert" || line == "remove") {
            result = ORV_ReinsertCardSwitchText(line == "insert" ? 1 : 0);
        } else if (line.compare(0, 5, "wait ") == 0) {
            char *end = nullptr;
            const double seconds = std::strtod(line.c_str() + 5, &end);
            if (*end == '\0' && seconds >= 0 && seconds <= 3600)
                sleepSeconds(seconds);
            else
                std::fprintf(stderr, "orvel-dialogs: bad wait: %s\n", line.c_str());
        } else {
            std::fprintf(stderr, "orvel-dialogs: unknown command '%s' (insert, remove, close, wait SECONDS)\n",
                         line.c_str());
        }
        if (result != 0) {
            std::fprintf(stderr, "orvel-dialogs: switching the text gave %ld\n", result);
            break;
        }
    }
    return static_cast<int>(ORV_ReinsertCardClose());
}

int Dialogs::showCertificate()
{
    if (call_.files.size() != 1)
        return usage("show-cert takes one file");
    std::string bytes;
    if (!readFile(call_.files[0], bytes)) {
        std::fprintf(stderr, "orvel-dialogs: %s: cannot read\n", call_.files[0].c_str());
        return kInputError;
    }
    return static_cast<int>(ORV_DisplayCertificate(reinterpret_cast<unsigned char *>(bytes.data()),
                                                   static_cast<unsigned>(bytes.size())));
}

int Dialogs::loadCertificates(HostCertificates &certificates) const
{
    if (call_.files.empty())
        return usage(std::string(call_.command->name) + " needs at least one certificate file");
    RenewalRules rules;
    const auto renew = number("--renew-days", rules.renewDays, 0, 36500);
    const auto warn = number("--warn-days", rules.warnDays, 0, 36500000);
    const auto force = number("--force-days", rules.forceDays, 0, 36500000);
    if (!renew || !warn || !force)
        return kUsageError;
    rules = {static_cast<int>(*renew), static_cast<int>(*warn), static_cast<int>(*force)};
    std::string error;
    if (!certificates.load(call_.files, rules, error)) {
        std::fprintf(stderr, "orvel-dialogs: %s\n", error.c_str());
        return kInputError;
    }
    return 0;
}

int Dialogs::loadCertificatesAndSelection(HostCertificates &certificates, unsigned &selected) const
{
    if (const int status = loadCertificates(certificates))
        return status;
    const auto selectedOption = number("--selected", 0, 0, UINT_MAX);
    if (!selectedOption)
        return kUsageError;
    selected = static_cast<unsigned>(*selectedOption);
    return 0;
}

int Dialogs::selectCertificate()
{
    HostCertificates certificates;
    unsigned selected = 0;
    if (const int status = loadCertificatesAndSelection(certificates, selected))
        return status;
    const long result = ORV_SelectCertificate(certificates.records(), certificates.count(), &selected);
    if (result == 0)
        std::printf("%u\n", selected);
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

int Dialogs::confirmSignature()
{
    if (!has("--data"))
        return usage("confirm-signature needs --data");
    HostCertificates certificates;
    unsigned selected = 0;
    if (const int status = loadCertificatesAndSelection(certificates, selected))
        return status;
    const std::string data = value("--data");
    const std::string algorithm = value("--hash-alg", "SHA-256");
    std::string hash = value("--hash-value");
    if (!has("--hash-value")) {
        const auto computed = hashOf(algorithm, data);
        if (!computed)
            return usage("unknown hash algorithm '" + algorithm + "'; give --hash-value");
        hash = *computed;
    }
    ORV_SetOrvelSignVersion(value("--sign-version", ORVEL_VERSION).c_str());
    bool confirmed = false;
    const long result = ORV_ConfirmSignature(certificates.records(), certificates.count(), &selected, data.c_str(),
                                             optionalText("--rtf"), algorithm.c_str(), hash.c_str(), &confirmed);
    if (result == 0)
        std::printf("%s %u\n", confirmed ? "confirmed" : "declined", selected);
    return static_cast<int>(result);
}

int Dialogs::pkcs12()
{
    const auto size = number("--buffer-size", 4096, 1, 1 << 20);
    if (!size)
        return kUsageError;
    const std::string start = value("--filename");
    if (start.size() >= static_cast<std::size_t>(*size))
        return usage("--filename does not fit into --buffer-size");
    std::vector<char> path(static_cast<std::size_t>(*size), '\0');
    std::vector<char> password(static_cast<std::size_t>(*size), '\0');
    start.copy(path.data(), start.size());
    const auto bufferSize = static_cast<unsigned>(*size);
    const long result = ORV_SelectPKCS12(path.data(), bufferSize, password.data(), bufferSize);
    if (result == 0) {
        std::printf("%s\n", path.data());
        if (call_.flags.count("--show-password"))
            std::printf("%s\n", password.data());
        else
            std::fprintf(stderr, "orvel-dialogs: password of %zu bytes (--show-password prints it)\n",
                         std::string(password.data()).size());
    }
    return static_cast<int>(result);
}

} // namespace

int main(int argc, char **argv)
{
    Invocation call;
    if (const int status = parseArguments(argc, argv, call))
        return status;
    if (!call.command) {
        if (call.flags.count("--help")) {
            printToolHelp(stdout);
            return 0;
        }
        printToolHelp(stderr);
        return kUsageError;
    }
    if (call.flags.count("--help")) {
        printCommandHelp(*call.command);
        return 0;
    }

    std::optional<std::string> app;
    if (const auto it = call.values.find("--app"); it != call.values.end())
        app = it->second;
    else
        app = defaultApp();
    if (!app) {
        std::fprintf(stderr, "orvel-dialogs: the reference GUI application was not found next to this tool; "
                             "give --app PATH\n");
        return kInputError;
    }
    if (const auto it = call.values.find("--lang"); it != call.values.end()) {
        const std::vector<std::string> languages = {"cs", "sk", "en"};
        const auto language = std::find(languages.begin(), languages.end(), it->second);
        if (language == languages.end())
            return usage("--lang is cs, sk or en");
        ORV_SetLanguage(static_cast<int>(language - languages.begin()));
    }
    ORV_SetAppPath(app->c_str());

    const int result = Dialogs(call).run();
    std::fflush(stdout);
    if (result != 0 && result < kUsageError)
        std::fprintf(stderr, "orvel-dialogs: result %d: %s\n", result, meaning(result));
    if (call.flags.count("--log")) {
        const char *log = nullptr;
        ORV_GetLog(&log);
        if (log)
            std::fputs(log, stderr);
    }
    return result;
}
