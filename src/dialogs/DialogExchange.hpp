// What every dialog shares: the path test, the run of one GUI application from
// launch to its log, the reading of its result, and the exception path. A
// dialog adds only its checks, its argument list and its reply handling.
#pragma once

#include <OrvelGUIDialogs/AppLauncher.hpp>
#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "launcher/ArgumentList.hpp"
#include "platform/PlatformException.hpp"
#include "state/CBoundary.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace OrvelDialogs::Dialogs {

using Launcher::argumentList;
using Launcher::OptionalText;

inline constexpr long kSuccess = 0;
inline constexpr long kBadArgument = 1;
inline constexpr long kNoLauncher = 3;
inline constexpr long kNoCertificateData = 4;
inline constexpr long kExchangeFailed = 7;
inline constexpr long kPathNotSet = 9;
inline constexpr long kBufferTooSmall = 11;

// True when g_appPath holds a non-empty text.
bool appPathIsSet();

// The host's text, or no value for null or invalid UTF-8.
OptionalText hostText(const char *text);
// A null or invalid text counts as the empty text.
std::string hostTextOrEmpty(const char *text);
std::string decimal(long long value);
std::string languageCode();

struct ExchangeOptions {
    // The signature confirmation takes the exit status as it is, without
    // mapping unknown statuses to 7.
    bool rawStatus = false;
    // The file save and PKCS#12 dialogs log the whole reply before the GUI's
    // own log.
    bool logRawReply = false;
    // The token of the raw reply that holds a secret (the PKCS#12 password):
    // masked in the log when the host asked for that (ORV_SetMaskSecrets).
    std::optional<size_t> secretToken = std::nullopt;
};

struct ExchangeResult {
    ExchangeResult() = default;
    ExchangeResult(ExchangeResult &&) = default;
    ExchangeResult &operator=(ExchangeResult &&) = default;
    // Leaves the reply's room to the next dialog's reply.
    ~ExchangeResult();

    int status = 0;
    int response = 0;
    int logResult = 0;
    std::string reply;

    // The result before the reply is interpreted: the exit status wins, then
    // a failed reply. Without a log section the reply is not interpreted and
    // the dialog ends with 0.
    std::optional<long> settledBeforeInterpretation() const;
};

// Puts a new launcher into appLchr, starts the GUI application with
// `arguments`, waits for it, and reads its status, reply and log. Raises the
// platform exception where the launcher does.
ExchangeResult runExchange(const std::string &windowName, const std::vector<std::string> &arguments,
                           ExchangeOptions options = {});

// Closes the library's ends of the launcher's pipes when it goes out of
// scope: a dialog keeps no descriptor once it returns.
struct PipesClosedOnReturn {
    AppLauncher &launcher;
    ~PipesClosedOnReturn();
};

// The result of a dialog that reads nothing of its reply beyond the beginning.
long resultIgnoringReply(const ExchangeResult &exchange);

// Logs "Exception occured:" with the call stack of a platform exception and
// gives 7. Exceptions of any other kind pass.
template <typename Body>
long withExceptionPath(Body body)
{
    try {
        return body();
    } catch (const Platform::PlatformException &exception) {
        logMsg("Exception occured:\n" + exception.callStackDescription());
        return kExchangeFailed;
    }
}

using State::callFromC;

// `integerValue` reading of a reply token: leading white space, an optional
// sign and the digits up to the first other character; anything else reads 0;
// saturates on overflow.
long long integerValue(std::string_view token);

} // namespace OrvelDialogs::Dialogs
