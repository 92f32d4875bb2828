// The user chooses a PKCS#12 file; the reply carries its path and a second
// value (its password), each copied into its own host buffer.
#include "dialogs/DialogExchange.hpp"
#include "dialogs/ReplyValues.hpp"
#include "launcher/ReplyTokens.hpp"
#include "state/Language.hpp"
#include "util/SecretMemory.hpp"

#include <cstring>

namespace OrvelDialogs {

using namespace Dialogs;

long Dialog::displaySelectPKCS12Dialog(const char *fileName, char *outPath, unsigned int outPathSize, char *outValue,
                                       unsigned int outValueSize)
{
    State::resolveLanguage();
    if (!appPathIsSet())
        return kPathNotSet;
    if (outPath == nullptr || outPathSize == 0 || outValue == nullptr || outValueSize == 0)
        return kBadArgument;
    // Copied before the buffers are cleared: the name may lie in outPath.
    const OptionalText fileNameText = fileName ? hostText(fileName) : OptionalText("");
    std::memset(outPath, 0, outPathSize);
    std::memset(outValue, 0, outValueSize);

    return withExceptionPath([&]() -> long {
        // The second value is the file's password: every byte of memory that
        // held the reply or a value decoded from it is wiped before it is
        // freed or kept, and the log masks it when the host asked for that.
        const SecretMemory::Scope secretReply;
        const auto arguments =
            argumentList({"-window", "SelectPKCS12", "-lang", languageCode(), "-filename", fileNameText});
        const ExchangeResult exchange =
            runExchange("SelectPKCS12", arguments, {.logRawReply = true, .secretToken = 2});
        if (const auto settled = exchange.settledBeforeInterpretation())
            return *settled;
        // Both tokens are taken before either is decoded, whatever they hold.
        const std::string_view pathToken = Launcher::tokenAt(exchange.reply, 1);
        const std::string_view valueToken = Launcher::tokenAt(exchange.reply, 2);
        std::string path, value;
        const SecretMemory::WipedOnExit pathWiped(path), valueWiped(value);
        if (!decodeReplyValue(pathToken, "SelectPKCS12", path) || !decodeReplyValue(valueToken, "SelectPKCS12", value))
            return kExchangeFailed;
        if (!copyToHostBuffer(path, outPath, outPathSize))
            return kBufferTooSmall;
        return copyToHostBuffer(value, outValue, outValueSize) ? kSuccess : kBufferTooSmall;
    });
}

} // namespace OrvelDialogs

extern "C" long ORV_SelectPKCS12(char *path, unsigned int pathSize, char *outValue, unsigned int outValueSize)
{
    return OrvelDialogs::Dialogs::callFromC([&] {
        // The buffer is both the starting name and the answer. A name that
        // fills the buffer without a terminating zero is read only within it.
        std::string boundedName;
        const char *fileName = path;
        if (path != nullptr && pathSize > 0 && std::memchr(path, '\0', pathSize) == nullptr) {
            boundedName.assign(path, pathSize);
            fileName = boundedName.c_str();
        }
        return OrvelDialogs::Dialog::displaySelectPKCS12Dialog(fileName, path, pathSize, outValue, outValueSize);
    });
}
