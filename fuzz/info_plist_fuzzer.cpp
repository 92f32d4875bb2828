// Info.plist content, XML or binary, as the bundle lookup reads it: what the
// bounds let through, libplist parses and frees without exhausting the
// stack; what they refuse raises the platform exception with a reason.
#include "FuzzCheck.hpp"

#include "platform/PlatformException.hpp"
#include "platform/PropertyListBounds.hpp"
#include "platform/PropertyListFile.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string bytes = OrvelFuzz::bytesOf(data, size);
    try {
        const auto name = OrvelDialogs::Platform::stringFromInfoPlist(bytes, "CFBundleExecutable", "Info.plist");
        FUZZ_CHECK(!OrvelDialogs::Platform::infoPlistRefusal(bytes));
        (void)name;
    } catch (const OrvelDialogs::Platform::PlatformException &refused) {
        FUZZ_CHECK(refused.reason().starts_with("Info.plist is refused: "));
        FUZZ_CHECK(OrvelDialogs::Platform::infoPlistRefusal(bytes).has_value());
    }
    return 0;
}
