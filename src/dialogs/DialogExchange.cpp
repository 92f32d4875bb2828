#include "dialogs/DialogExchange.hpp"

#include <OrvelGUIDialogs/AppLauncher.hpp>
#include <OrvelGUIDialogs/LibraryState.hpp>

#include "launcher/ReplyBuffer.hpp"
#include "platform/ChildSignalBlock.hpp"
#include "platform/HostText.hpp"
#include "platform/Task.hpp"
#include "state/LauncherSlot.hpp"
#include "state/Log.hpp"
#include "state/SecretMasking.hpp"

#include <algorithm>
#include <limits>

namespace OrvelDialogs::Dialogs {

bool appPathIsSet()
{
    return g_appPath && !g_appPath->empty();
}

OptionalText hostText(const char *text)
{
    return Platform::textFromHost(text);
}

std::string hostTextOrEmpty(const char *text)
{
    return Platform::textFromHost(text).value_or(std::string());
}

std::string decimal(long long value)
{
    return std::to_string(value);
}

std::string languageCode()
{
    return decimal(g_appLanguage);
}

ExchangeResult::~ExchangeResult()
{
    Launcher::keepReplyBuffer(std::move(reply));
}

std::optional<long> ExchangeResult::settledBeforeInterpretation() const
{
    if (status != 0)
        return status;
    if (response != 0)
        return response;
    if (logResult != 0)
        return kSuccess;
    return std::nullopt;
}

long resultIgnoringReply(const ExchangeResult &exchange)
{
    return exchange.status != 0 ? exchange.status : exchange.response;
}

PipesClosedOnReturn::~PipesClosedOnReturn()
{
    State::closePipes(launcher);
}

namespace {

// `reply` with its token at `index` replaced by asterisks; unchanged when it
// has no such token, or when that token is empty or "-log", which hide
// nothing and keep the log section readable. The reply's closing line feed
// stays.
std::string withTokenMasked(std::string_view reply, size_t index)
{
    size_t start = 0;
    for (size_t i = 0; i < index; ++i) {
        const size_t space = reply.find(' ', start);
        if (space == std::string_view::npos)
            return std::string(reply);
        start = space + 1;
    }
    size_t end = std::min(reply.find(' ', start), reply.size());
    if (end == reply.size() && end > start && reply[end - 1] == '\n')
        --end;
    const std::string_view token = reply.substr(start, end - start);
    if (token.empty() || token == "-log")
        return std::string(reply);
    std::string masked(reply.substr(0, start));
    masked += "********";
    masked += reply.substr(end);
    return masked;
}

void logRawReply(const std::string &reply, std::optional<size_t> secretToken)
{
    if (!secretToken)
        logMsg(reply);
    else if (State::maskSecrets())
        logMsg(withTokenMasked(reply, *secretToken));
    else
        State::logSecretEntry(reply);
}

} // namespace

ExchangeResult runExchange(const std::string &windowName, const std::vector<std::string> &arguments,
                           ExchangeOptions options)
{
    // From before the start to the reaping, so that no handler of the host
    // on this thread reaps the child first.
    const Platform::ChildSignalBlock childSignalBlocked;
    AppLauncher &launcher = State::installLauncher(std::make_unique<AppLauncher>());
    const PipesClosedOnReturn pipesClosed{launcher};
    launcher.Launch(*g_appPath, arguments);
    launcher.WaitUntilExit();

    ExchangeResult exchange;
    // A status another waiter took is 7 even here: there is none to pass on.
    const bool statusTaken = launcher.guiTask()->statusLoss() == Platform::Task::StatusLoss::TakenByHost;
    exchange.status = options.rawStatus && !statusTaken ? launcher.guiTask()->terminationStatus()
                                                        : launcher.GetTerminationStatus();
    exchange.response = launcher.GetStdoutResponse(windowName, exchange.reply);
    // When the reply failed there is nothing to log as the raw reply; the log
    // step still runs and finds no log section in the empty reply.
    if (options.logRawReply && exchange.response == 0)
        logRawReply(exchange.reply, options.secretToken);
    exchange.logResult = launcher.ProcessLogFromGUI(exchange.reply);
    return exchange;
}

long long integerValue(std::string_view token)
{
    size_t i = 0;
    auto isSpace = [](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\v' || c == '\f'; };
    while (i < token.size() && isSpace(token[i]))
        ++i;
    bool negative = false;
    if (i < token.size() && (token[i] == '+' || token[i] == '-')) {
        negative = token[i] == '-';
        ++i;
    }
    constexpr long long kMax = std::numeric_limits<long long>::max();
    constexpr long long kMin = std::numeric_limits<long long>::min();
    long long value = 0;
    for (; i < token.size() && token[i] >= '0' && token[i] <= '9'; ++i) {
        const int digit = token[i] - '0';
        if (!negative) {
            if (value > (kMax - digit) / 10)
                return kMax;
            value = value * 10 + digit;
        } else {
            if (value < (kMin + digit) / 10)
                return kMin;
            value = value * 10 - digit;
        }
    }
    return value;
}

} // namespace OrvelDialogs::Dialogs
