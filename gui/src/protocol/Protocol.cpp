#include "protocol/Protocol.hpp"

#include "common/PasswordMemory.hpp"
#include "protocol/HostLanguage.hpp"

#include <OrvelGUIDialogs/Certificate.hpp>
#include <OrvelGUIDialogs/LibraryState.hpp>
#include <OrvelGUIDialogs/OrvelDialogs.hpp>
#include <OrvelGUIDialogs/Util.hpp>

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <map>

namespace OrvelGui {
namespace {

struct WindowInfo {
    const char *name;
    Window window;
    std::vector<const char *> required;
    std::vector<const char *> optional;
};

const std::vector<WindowInfo> &windows()
{
    static const std::vector<WindowInfo> table = {
        {"MessageBox", Window::MessageBox, {"-message"}, {"-info", "-icon", "-lang"}},
        {"YesNoDialog", Window::YesNoDialog, {"-message"}, {"-info", "-button", "-lang"}},
        {"FileOpen", Window::FileOpen, {"-message"}, {"-fileFilter", "-lang"}},
        {"FileSave", Window::FileSave, {"-message"}, {"-fileFilter", "-filename", "-lang"}},
        {"ReinsertCard", Window::ReinsertCard, {"-message"}, {"-lang"}},
        {"DisplayCert", Window::DisplayCert, {"-cert"}, {"-lang"}},
        {"CertificateSelect", Window::CertificateSelect, {"-certs"}, {"-selectedCert", "-lang"}},
        {"SignatureConfirm", Window::SignatureConfirm, {"-certs", "-version", "-data", "-hashAlg", "-hashVal"},
         {"-selectedCert", "-rtf", "-lang"}},
        {"SelectPKCS12", Window::SelectPKCS12, {}, {"-filename", "-lang"}},
    };
    return table;
}

// A whole decimal number without sign, or nothing.
std::optional<unsigned> parseNumber(const std::string &text)
{
    unsigned value = 0;
    const char *end = text.data() + text.size();
    const auto [ptr, ec] = std::from_chars(text.data(), end, value);
    if (text.empty() || ec != std::errc() || ptr != end)
        return std::nullopt;
    return value;
}

class Parser {
public:
    Parser(const std::vector<std::string> &arguments, GuiLog &log) : arguments_(arguments), log_(log) {}

    ParseResult run()
    {
        ParseResult result;
        if (!collectOptions()) {
            result.windowName = windowNameGiven();
            return result;
        }
        result.windowName = windowNameGiven();
        const auto windowIt = options_.find("-window");
        if (windowIt == options_.end())
            return fail(result, "Missing option -window.");
        const auto info = std::find_if(windows().begin(), windows().end(),
                                       [&](const WindowInfo &w) { return windowIt->second == w.name; });
        if (info == windows().end())
            return fail(result, "Unknown window: " + windowIt->second);
        for (const char *name : info->required)
            if (!options_.count(name))
                return fail(result, std::string("Missing option ") + name + " for " + info->name + ".");
        for (const auto &[name, value] : options_) {
            (void)value;
            const auto known = [&](const std::vector<const char *> &names) {
                return std::any_of(names.begin(), names.end(), [&](const char *n) { return name == n; });
            };
            if (name != "-window" && !known(info->required) && !known(info->optional))
                log_.add("Ignored option " + name + " unknown to " + info->name + ".");
        }

        Request request;
        request.window = info->window;
        request.windowName = info->name;
        if (!fill(request))
            return result;
        log_.add(std::string("Window ") + info->name + " requested.");
        result.request = std::move(request);
        return result;
    }

private:
    bool collectOptions()
    {
        if (arguments_.size() % 2 != 0) {
            // Still remember the window for the reply when it was given.
            for (std::size_t i = 0; i + 1 < arguments_.size(); i += 2)
                if (arguments_[i] == "-window")
                    windowName_ = arguments_[i + 1];
            log_.add("Bad command line: option " + arguments_.back() + " has no value.");
            return false;
        }
        for (std::size_t i = 0; i < arguments_.size(); i += 2) {
            const std::string &name = arguments_[i];
            if (name == "-window")
                windowName_ = arguments_[i + 1];
            if (name.size() < 2 || name[0] != '-') {
                log_.add("Bad command line: " + name + " is not an option name.");
                return false;
            }
            if (!options_.emplace(name, arguments_[i + 1]).second) {
                log_.add("Bad command line: option " + name + " given twice.");
                return false;
            }
        }
        return true;
    }

    std::string windowNameGiven() const { return windowName_; }

    ParseResult &fail(ParseResult &result, const std::string &why)
    {
        log_.add("Bad command line: " + why);
        return result;
    }

    bool bad(const std::string &why)
    {
        log_.add("Bad command line: " + why);
        return false;
    }

    const std::string *option(const char *name) const
    {
        const auto it = options_.find(name);
        return it == options_.end() ? nullptr : &it->second;
    }

    bool number(const char *name, unsigned maximum, unsigned &out)
    {
        const std::string *text = option(name);
        if (!text)
            return true;
        const auto value = parseNumber(*text);
        if (!value || *value > maximum)
            return bad(std::string("value of ") + name + " is not a number from 0 to " + std::to_string(maximum) +
                       ": " + *text);
        out = *value;
        return true;
    }

    bool base64(const char *name, std::string &out)
    {
        const std::string *text = option(name);
        if (!text)
            return true;
        auto bytes = decodeBase64Strict(*text);
        if (!bytes)
            return bad(std::string("value of ") + name + " is not Base64.");
        out = std::move(*bytes);
        return true;
    }

    bool certificates(Request &request)
    {
        const std::string &text = *option("-certs");
        std::vector<Certificate> decoded;
        if (!decodeBase64Strict(text) || Certificate::decodeCertificateArrayFromPropertyList(text, decoded) != 0)
            return bad("value of -certs is not a certificate list.");
        for (const Certificate &c : decoded) {
            CertificateEntry entry;
            entry.data = c.data();
            entry.subject = c.subjectStr().value_or("");
            entry.notAfter = c.notAfterStr().value_or("");
            entry.renewDeadline = c.renewDeadlineStr().value_or("");
            entry.daysRemaining = c.validDaysRemaning();
            entry.forceRenew = c.forceRenew();
            entry.warnRenew = c.warnRenew();
            request.certificates.push_back(std::move(entry));
        }
        unsigned selected = 0;
        const auto count = static_cast<unsigned>(request.certificates.size());
        if (!number("-selectedCert", count - 1, selected))
            return false;
        request.selected = selected;
        log_.add("Certificates: " + std::to_string(count) + ", preselected " + std::to_string(selected) + ".");
        return true;
    }

    bool fill(Request &request)
    {
        if (option("-lang")) {
            unsigned language = 2;
            if (!number("-lang", 2, language))
                return false;
            request.language = language == 0 ? Language::Czech : language == 1 ? Language::Slovak : Language::English;
        } else {
            const auto host = languageFromHost(log_);
            request.language = host ? *host : languageFromEnvironment();
        }
        if (request.window == Window::FileOpen || request.window == Window::FileSave) {
            const std::string *filter = option("-fileFilter");
            if (filter && !filterUnderstood(*filter))
                log_.add("File filter not understood, every file is shown: " + *filter);
        }
        auto text = [&](const char *name, std::string &out) {
            if (const std::string *value = option(name))
                out = *value;
        };
        text("-message", request.message);
        text("-info", request.info);
        text("-fileFilter", request.fileFilter);
        text("-filename", request.fileName);
        text("-version", request.version);
        text("-hashAlg", request.hashAlg);
        text("-hashVal", request.hashVal);
        unsigned icon = 0;
        unsigned button = 0;
        if (!number("-icon", 2, icon) || !number("-button", 1, button))
            return false;
        request.icon = static_cast<int>(icon);
        request.button = static_cast<int>(button);

        switch (request.window) {
        case Window::DisplayCert:
            if (!base64("-cert", request.certificate))
                return false;
            if (request.certificate.empty())
                return bad("value of -cert is empty.");
            return true;
        case Window::CertificateSelect:
            return certificates(request);
        case Window::SignatureConfirm:
            if (!base64("-data", request.data))
                return false;
            if (option("-rtf")) {
                request.rtf.emplace();
                if (!base64("-rtf", *request.rtf))
                    return false;
            }
            return certificates(request);
        default:
            return true;
        }
    }

    const std::vector<std::string> &arguments_;
    GuiLog &log_;
    std::map<std::string, std::string> options_;
    std::string windowName_;
};

void addToken(std::string &reply, const std::string &token)
{
    reply.push_back(' ');
    reply.append(token);
}

// The pattern lists of the entries that have one; true when one of them
// says "every file".
bool readFilter(const std::string &filterText, std::vector<std::string> &patterns)
{
    for (const FilterEntry &entry : filterEntries(filterText)) {
        if (entry.allFiles)
            return true;
        patterns.insert(patterns.end(), entry.patterns.begin(), entry.patterns.end());
    }
    return false;
}

} // namespace

std::vector<FilterEntry> filterEntries(const std::string &filterText)
{
    std::vector<FilterEntry> entries;
    std::size_t start = 0;
    while (start <= filterText.size()) {
        std::size_t bar = filterText.find('|', start);
        if (bar == std::string::npos)
            bar = filterText.size();
        const std::string text = filterText.substr(start, bar - start);
        start = bar + 1;
        const std::size_t open = text.find_first_of("()");
        if (open == std::string::npos)
            continue;
        FilterEntry entry;
        entry.name = text.substr(0, open);
        const std::size_t close = text.find_first_of("()", open + 1);
        const std::string list = text.substr(open + 1, close == std::string::npos ? std::string::npos : close - open - 1);
        std::size_t p = 0;
        while (p <= list.size()) {
            std::size_t comma = list.find(',', p);
            if (comma == std::string::npos)
                comma = list.size();
            std::string pattern = list.substr(p, comma - p);
            p = comma + 1;
            const auto first = pattern.find_first_not_of(' ');
            pattern = first == std::string::npos ? "" : pattern.substr(first, pattern.find_last_not_of(' ') - first + 1);
            if (pattern == "*" || pattern == "*.*")
                entry.allFiles = true;
            else if (!pattern.empty())
                entry.patterns.push_back(pattern);
        }
        entries.push_back(std::move(entry));
    }
    return entries;
}

Language languageFromEnvironment()
{
    // The library's own rule, so that the two never disagree. It works on
    // this process's copy of the library's state, which nothing else uses.
    ::SetCurrentOSLanguage();
    return ::g_appLanguage == 0 ? Language::Czech : ::g_appLanguage == 1 ? Language::Slovak : Language::English;
}

ParseResult parseCommandLine(const std::vector<std::string> &arguments, GuiLog &log)
{
    return Parser(arguments, log).run();
}

std::string formatReply(const std::string &windowName, const Request *request, bool answered,
                        const Answer &answer, const GuiLog &log)
{
    std::string reply = windowName;
    // Room for all of it at once: a reply that grew would leave copies of
    // the password behind in the room it gave up.
    reply.reserve(windowName.size() + (answer.path.size() + answer.secondValue.size() + log.text().size()) / 3 * 4 +
                  64);
    if (answered && request) {
        switch (request->window) {
        case Window::YesNoDialog:
            addToken(reply, answer.yes ? "yes" : "no");
            break;
        case Window::FileOpen:
        case Window::FileSave:
            addToken(reply, encodeBase64(answer.path));
            break;
        case Window::CertificateSelect:
            addToken(reply, "-selectedCert");
            addToken(reply, std::to_string(answer.selected));
            break;
        case Window::SignatureConfirm:
            addToken(reply, "-result");
            addToken(reply, answer.confirmed ? "1" : "0");
            addToken(reply, "-selectedCert");
            addToken(reply, std::to_string(answer.selected));
            break;
        case Window::SelectPKCS12: {
            addToken(reply, encodeBase64(answer.path));
            std::string password = encodeBase64(answer.secondValue);
            addToken(reply, password);
            wipeSecret(password);
            break;
        }
        default:
            break;
        }
    }
    addToken(reply, "-log");
    addToken(reply, encodeBase64(log.text()));
    reply.push_back('\n');
    return reply;
}

bool writeReply(const std::string &reply)
{
    std::size_t done = 0;
    while (done < reply.size()) {
        const ssize_t n = ::write(STDOUT_FILENO, reply.data() + done, reply.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        done += static_cast<std::size_t>(n);
    }
    return true;
}

std::optional<std::string> decodeBase64Strict(const std::string &text)
{
    if (text.size() % 4 != 0)
        return std::nullopt;
    std::size_t padding = 0;
    while (padding < 3 && padding < text.size() && text[text.size() - 1 - padding] == '=')
        ++padding;
    if (padding > 2)
        return std::nullopt;
    // The library's decoder may take a byte above 0x7F for a letter, as the
    // locale says; this one never does. One pass that the compiler
    // vectorises.
    unsigned char highBits = 0;
    for (const char c : text)
        highBits |= static_cast<unsigned char>(c);
    if ((highBits & 0x80) != 0)
        return std::nullopt;
    // The library's fast decoder stops at the first "=" or byte outside the
    // alphabet, and every earlier stop yields fewer bytes: the text is strict
    // Base64 exactly when all the bytes its length promises come out.
    std::string bytes = OrvelDialogs::Util::Base64Decode(text);
    if (bytes.size() != text.size() / 4 * 3 - padding)
        return std::nullopt;
    return bytes;
}

std::string encodeBase64(std::string_view bytes)
{
    return OrvelDialogs::Util::Base64Encode(reinterpret_cast<const unsigned char *>(bytes.data()),
                                            static_cast<unsigned int>(bytes.size()));
}

void ReinsertCommandParser::feed(std::string_view bytes, std::vector<ReinsertCommand> &out)
{
    static constexpr std::pair<std::string_view, ReinsertCommand> kCommands[] = {
        {"ReinsertCard insert", ReinsertCommand::Insert},
        {"ReinsertCard remove", ReinsertCommand::Remove},
        {"ReinsertCard close", ReinsertCommand::Close},
    };
    pending_.append(bytes);
    std::size_t pos = 0;
    while (pos < pending_.size()) {
        const std::string_view rest = std::string_view(pending_).substr(pos);
        bool matched = false;
        bool prefix = false;
        for (const auto &[text, command] : kCommands) {
            if (rest.substr(0, text.size()) == text) {
                if (skipped_ != 0)
                    log_.add("Skipped " + std::to_string(skipped_) + " bytes of unknown input.");
                skipped_ = 0;
                out.push_back(command);
                pos += text.size();
                matched = true;
                break;
            }
            if (text.substr(0, rest.size()) == rest)
                prefix = true;
        }
        if (matched)
            continue;
        if (prefix)
            break; // the rest may still become a command
        if (!std::isspace(static_cast<unsigned char>(rest[0])))
            ++skipped_;
        ++pos;
    }
    pending_.erase(0, pos);
}

void ReinsertCommandReader::readAvailable(std::vector<ReinsertCommand> &out)
{
    if (ended_)
        return;
    char buffer[4096];
    ssize_t n = 0;
    do {
        n = ::read(fd_, buffer, sizeof buffer);
    } while (n < 0 && errno == EINTR);
    if (n <= 0) {
        log_.add(n == 0 ? "End of input." : std::string("Reading the input failed: ") + std::strerror(errno));
        ended_ = true;
        out.push_back(ReinsertCommand::Close);
        return;
    }
    parser_.feed(std::string_view(buffer, static_cast<std::size_t>(n)), out);
}

ReinsertCommand ReinsertCommandReader::waitForCommand()
{
    std::vector<ReinsertCommand> commands;
    while (commands.empty())
        readAvailable(commands); // the descriptor blocks until there is input
    // Only the close command matters without a user; the rest is logged.
    for (ReinsertCommand c : commands)
        if (c == ReinsertCommand::Close)
            return c;
    return commands.front();
}

std::vector<std::string> filterPatterns(const std::string &filterText)
{
    std::vector<std::string> patterns;
    if (readFilter(filterText, patterns))
        return {};
    return patterns;
}

bool filterUnderstood(const std::string &filterText)
{
    std::vector<std::string> patterns;
    const bool allFiles = readFilter(filterText, patterns);
    return allFiles || !patterns.empty() || filterText.find_first_not_of(' ') == std::string::npos;
}

bool matchesFilter(const std::string &fileName, const std::vector<std::string> &patterns)
{
    if (patterns.empty())
        return true;
    const auto lower = [](std::string s) {
        for (char &c : s)
            c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        return s;
    };
    const std::string name = lower(fileName);
    for (std::string pattern : patterns) {
        pattern = lower(pattern);
        if (!pattern.empty() && pattern[0] == '*')
            pattern.erase(0, 1);
        if (!pattern.empty() && pattern[0] == '.')
            pattern.erase(0, 1);
        const std::string suffix = "." + pattern;
        if (pattern.empty() ||
            (name.size() > suffix.size() && name.compare(name.size() - suffix.size(), suffix.size(), suffix) == 0))
            return true;
    }
    return false;
}

} // namespace OrvelGui
