// The message box and the yes/no question.
#include "dialogs/DialogExchange.hpp"
#include "state/Language.hpp"

namespace OrvelDialogs {

using namespace Dialogs;

long Dialog::displayMessage(const char *message, const char *info, int icon)
{
    if (message == nullptr)
        return kBadArgument;
    if (static_cast<unsigned int>(icon) > 2)
        return kBadArgument;
    if (!appPathIsSet())
        return kPathNotSet;

    const OptionalText messageText = hostText(message);
    const std::string infoText = hostTextOrEmpty(info);
    const std::string iconText = decimal(icon);

    return withExceptionPath([&] {
        const auto arguments =
            infoText.empty()
                ? argumentList({"-window", "MessageBox", "-message", messageText, "-icon", iconText})
                : argumentList({"-window", "MessageBox", "-message", messageText, "-info", infoText, "-icon", iconText});
        return resultIgnoringReply(runExchange("MessageBox", arguments));
    });
}

long Dialog::displayConfirmDialog(const char *message, const char *info, int button, bool *result)
{
    State::resolveLanguage();
    if (!appPathIsSet())
        return kPathNotSet;
    if (message == nullptr || static_cast<unsigned int>(button) > 1 || result == nullptr)
        return kBadArgument;

    const std::string language = languageCode();
    const std::string infoText = hostTextOrEmpty(info);
    const OptionalText messageText = hostText(message);
    const std::string buttonText = decimal(button);

    return withExceptionPath([&] {
        const auto arguments =
            infoText.empty()
                ? argumentList({"-window", "YesNoDialog", "-lang", language, "-message", messageText, "-button",
                                buttonText})
                : argumentList({"-window", "YesNoDialog", "-lang", language, "-message", messageText, "-info",
                                infoText, "-button", buttonText});
        const ExchangeResult exchange = runExchange("YesNoDialog", arguments);
        if (const auto settled = exchange.settledBeforeInterpretation())
            return *settled;
        if (exchange.reply.starts_with("YesNoDialog yes")) {
            *result = true;
            return kSuccess;
        }
        if (exchange.reply.starts_with("YesNoDialog no")) {
            *result = false;
            return kSuccess;
        }
        logMsg("Wrong YesNoDialog response!");
        return kExchangeFailed;
    });
}

} // namespace OrvelDialogs

extern "C" {

long ORV_MessageBox(const char *message, const char *info, int icon)
{
    return OrvelDialogs::Dialogs::callFromC([&] { return OrvelDialogs::Dialog::displayMessage(message, info, icon); });
}

long ORV_YesNoDialog(const char *message, const char *info, int button, bool *result)
{
    return OrvelDialogs::Dialogs::callFromC(
        [&] { return OrvelDialogs::Dialog::displayConfirmDialog(message, info, button, result); });
}

} // extern "C"
