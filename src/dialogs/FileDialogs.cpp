// File open and file save choosers: the chosen path comes back in the host's
// buffer.
#include "dialogs/DialogExchange.hpp"
#include "dialogs/ReplyValues.hpp"
#include "launcher/ReplyTokens.hpp"
#include "state/Language.hpp"

#include <cstring>

namespace OrvelDialogs {

using namespace Dialogs;

namespace {

enum class Chooser { Open, Save };

long displayFileDialog(Chooser chooser, const char *message, const char *fileName, char *outPath,
                       unsigned int outPathSize, const char *fileFilter)
{
    State::resolveLanguage();
    if (!appPathIsSet())
        return kPathNotSet;
    if (outPath == nullptr || outPathSize == 0)
        return kBadArgument;
    // The last byte stays as the host left it.
    std::memset(outPath, 0, outPathSize - 1);

    return withExceptionPath([&]() -> long {
        const OptionalText messageText = hostText(message);
        const std::string language = languageCode();
        const OptionalText filterText = fileFilter ? hostText(fileFilter) : OptionalText("");
        const bool saving = chooser == Chooser::Save;
        const std::string windowName = saving ? "FileSave" : "FileOpen";
        const auto arguments =
            saving ? argumentList({"-window", windowName, "-lang", language, "-message", messageText, "-fileFilter",
                                   filterText, "-filename", fileName ? hostText(fileName) : OptionalText("")})
                   : argumentList({"-window", windowName, "-lang", language, "-message", messageText, "-fileFilter",
                                   filterText});
        const ExchangeResult exchange = runExchange(windowName, arguments, {.logRawReply = saving});
        if (const auto settled = exchange.settledBeforeInterpretation())
            return *settled;
        // The path is the second token whatever it holds, "-log" included.
        std::string path;
        if (!decodeReplyValue(Launcher::tokenAt(exchange.reply, 1), windowName, path))
            return kExchangeFailed;
        return copyToHostBuffer(path, outPath, outPathSize) ? kSuccess : kBufferTooSmall;
    });
}

} // namespace

long Dialog::displayFileOpenDialog(const char *message, const char *fileName, char *outPath, unsigned int outPathSize,
                                   const char *fileFilter)
{
    // The open chooser has no file name to offer; it is accepted and unused.
    (void)fileName;
    return displayFileDialog(Chooser::Open, message, nullptr, outPath, outPathSize, fileFilter);
}

long Dialog::displayFileSaveDialog(const char *message, const char *fileName, char *outPath, unsigned int outPathSize,
                                   const char *fileFilter)
{
    return displayFileDialog(Chooser::Save, message, fileName, outPath, outPathSize, fileFilter);
}

} // namespace OrvelDialogs

extern "C" {

long ORV_FileOpenDialog(const char *message, const char *fileName, char *outPath, unsigned int outPathSize,
                        const char *fileFilter)
{
    return OrvelDialogs::Dialogs::callFromC([&] {
        return OrvelDialogs::Dialog::displayFileOpenDialog(message, fileName, outPath, outPathSize, fileFilter);
    });
}

long ORV_FileSaveDialog(const char *message, const char *fileName, char *outPath, unsigned int outPathSize,
                        const char *fileFilter)
{
    return OrvelDialogs::Dialogs::callFromC([&] {
        return OrvelDialogs::Dialog::displayFileSaveDialog(message, fileName, outPath, outPathSize, fileFilter);
    });
}

} // extern "C"
