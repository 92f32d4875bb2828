#include "protocol/CommandLine.hpp"

#include "protocol/Base64.hpp"
#include "protocol/FileFilter.hpp"
#include "protocol/HostLanguage.hpp"
#include "protocol/ValueFiles.hpp"

#include <OrvelGUIDialogs/Certificate.hpp>
#include <OrvelGUIDialogs/LibraryState.hpp>
#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "certificate/CertificateBase64.hpp"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <map>
#include <string_view>

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
std::optional<unsigned> parseNumber(std::string_view text)
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
        if (!collectOptions() || !readValueFiles(std::getenv(kValueFilesVariable), options_, files_, log_)) {
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
            return fail(result, "Unknown window: " + std::string(windowIt->second));
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

    const std::string_view *option(const char *name) const
    {
        const auto it = options_.find(name);
        return it == options_.end() ? nullptr : &it->second;
    }

    bool number(const char *name, unsigned maximum, unsigned &out)
    {
        const std::string_view *text = option(name);
        if (!text)
            return true;
        const auto value = parseNumber(*text);
        if (!value || *value > maximum)
            return bad(std::string("value of ") + name + " is not a number from 0 to " + std::to_string(maximum) +
                       ": " + std::string(*text));
        out = *value;
        return true;
    }

    bool base64(const char *name, std::string &out)
    {
        const std::string_view *text = option(name);
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
        // Decoded once: strict Base64 gives the same bytes as the library's
        // lenient decoder.
        const auto list = decodeBase64Strict(*option("-certs"));
        std::vector<Certificate> decoded;
        if (!list || OrvelDialogs::CertificateCodec::decodeList(*list, decoded) != 0)
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
            const std::string_view *filter = option("-fileFilter");
            if (filter && !filterUnderstood(std::string(*filter)))
                log_.add("File filter not understood, every file is shown: " + std::string(*filter));
        }
        auto text = [&](const char *name, std::string &out) {
            if (const std::string_view *value = option(name))
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
    // Views of the arguments, or of the value files that `files_` keeps.
    std::map<std::string, std::string_view> options_;
    std::vector<ValueFile> files_;
    std::string windowName_;
};

} // namespace

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

} // namespace OrvelGui
