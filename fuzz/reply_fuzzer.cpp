// Everything a modal dialog does after its GUI application has exited: the
// exit status, the beginning test, the log section and the dialog's reading
// of its result tokens; and the reinsert-card commands to a GUI application
// that is gone. No process is started: the launcher's scripted child stands
// in. Input: one byte picks the dialog, one the exit status, one the size of
// the host's buffers; the rest is what the GUI application wrote.
#include "FuzzCheck.hpp"

#include <OrvelGUIDialogs/LibraryState.hpp>
#include <OrvelGUIDialogs/OrvelGUIDialogs.h>

#include "launcher/ScriptedChild.hpp"
#include "platform/HostText.hpp"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <memory>
#include <vector>

namespace {

using OrvelDialogs::Launcher::ScriptedChild;

enum Dialog {
    kMessageBox,
    kYesNo,
    kFileOpen,
    kFileSave,
    kDisplayCertificate,
    kSelectCertificate,
    kConfirmSignature,
    kSelectPKCS12,
    kReinsertCard,
    kDialogCount
};

// Mostly 0, so that most inputs reach the reply; else a status of each kind:
// the GUI application's own codes, unknown ones, signal deaths, a negative one.
int statusFrom(uint8_t byte)
{
    static constexpr int kStatuses[] = {1, 2, 3, 7, 8, 9, 12, 128 + 9, 128 + 15, 255, -1};
    return byte < 160 ? 0 : kStatuses[byte % std::size(kStatuses)];
}

// A host buffer of exactly `size` bytes, so that AddressSanitizer sees one
// byte written too many.
struct HostBuffer {
    explicit HostBuffer(unsigned size) : size(size), bytes(new char[size]) { std::memset(bytes.get(), 'x', size); }
    // The value the dialog copied: terminated inside the buffer, valid UTF-8.
    bool holdsText() const
    {
        const void *zero = std::memchr(bytes.get(), 0, size);
        return zero != nullptr && OrvelDialogs::Platform::isValidUtf8(bytes.get());
    }
    unsigned size;
    std::unique_ptr<char[]> bytes;
};

struct Records {
    Records()
    {
        for (int i = 0; i < 2; ++i)
            records.push_back({data.data(), static_cast<unsigned>(data.size()), subject.data(), date.data(),
                               date.data(), 30 - i, i == 0, i == 1});
    }
    std::string data = "0\x82\x01\x0a", subject = "CN=Fuzz", date = "2030-01-01";
    std::vector<ORV_Certificate> records;
};

void setUpOnce()
{
    static bool done = false;
    if (done)
        return;
    done = true;
    ORV_SetAppPath("/fuzz/GUI.app");
    ORV_SetOrvelSignVersion("1.0");
    ORV_SetLanguage(2);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 3)
        return 0;
    setUpOnce();
    const Dialog dialog = static_cast<Dialog>(data[0] % kDialogCount);
    static ScriptedChild child;
    child.status = statusFrom(data[1]);
    child.output = OrvelFuzz::bytesOf(data + 3, size - 3);
    OrvelDialogs::Launcher::setScriptedChild(&child);
    const unsigned bufferSize = 1 + data[2] % 64;

    // A non-zero status decides over the reply: 1 to 8 pass, anything else
    // is 7; the signature confirmation passes every status unchanged. Only
    // the exception path (a reply ending in "-log", say) overrides it, with 7.
    const long mapped = child.status >= 1 && child.status <= 8 ? child.status : 7;
    const bool statusDecides = child.status != 0;
    const auto byStatus = [&](long result, long expected) {
        const bool exception = g_logBuffer && g_logBuffer->find("Exception occured:\n") != std::string::npos;
        return result == expected || (result == 7 && exception);
    };
    long result = -1;
    static Records records;
    switch (dialog) {
    case kMessageBox:
        result = ORV_MessageBox("m", nullptr, 0);
        FUZZ_CHECK(statusDecides ? byStatus(result, mapped) : result == 0 || result == 7);
        break;
    case kYesNo: {
        bool answer = false;
        result = ORV_YesNoDialog("m", "i", 1, &answer);
        FUZZ_CHECK(statusDecides ? byStatus(result, mapped) : result == 0 || result == 7);
        break;
    }
    case kFileOpen:
    case kFileSave: {
        HostBuffer path(bufferSize);
        result = dialog == kFileOpen ? ORV_FileOpenDialog("m", "a.pdf", path.bytes.get(), path.size, "PDF (pdf)")
                                     : ORV_FileSaveDialog("m", "a.pdf", path.bytes.get(), path.size, nullptr);
        FUZZ_CHECK(statusDecides ? byStatus(result, mapped) : result == 0 || result == 7 || result == 11);
        // A one-byte buffer is never cleared, and a reply without a log
        // section leaves it as the host set it.
        if (result == 0)
            FUZZ_CHECK(path.size == 1 || path.holdsText());
        break;
    }
    case kDisplayCertificate: {
        unsigned char certificate[] = {0x30, 0x03, 0x02, 0x01, 0x01};
        result = ORV_DisplayCertificate(certificate, sizeof certificate);
        FUZZ_CHECK(statusDecides ? byStatus(result, mapped) : result == 0 || result == 7);
        break;
    }
    case kSelectCertificate: {
        unsigned selected = 1;
        result = ORV_SelectCertificate(records.records.data(), 2, &selected);
        FUZZ_CHECK(statusDecides ? byStatus(result, mapped) : result == 0 || result == 7);
        FUZZ_CHECK(selected < 2);
        break;
    }
    case kConfirmSignature: {
        unsigned selected = 0;
        bool confirmed = false;
        result = ORV_ConfirmSignature(records.records.data(), 2, &selected, "data", data[2] & 1 ? "{\\rtf1}" : nullptr,
                                      "SHA-256", "0A1B", &confirmed);
        FUZZ_CHECK(statusDecides ? byStatus(result, child.status) : result == 0 || result == 7);
        FUZZ_CHECK(selected < 2);
        break;
    }
    case kSelectPKCS12: {
        HostBuffer path(bufferSize), value(1 + data[2] / 4 % 64);
        std::strcpy(path.bytes.get(), "");
        result = ORV_SelectPKCS12(path.bytes.get(), path.size, value.bytes.get(), value.size);
        FUZZ_CHECK(statusDecides ? byStatus(result, mapped) : result == 0 || result == 7 || result == 11);
        if (result == 0)
            FUZZ_CHECK(path.holdsText() && value.holdsText());
        break;
    }
    case kReinsertCard:
        // The stand-in has exited before anything was written: show starts
        // it, switch finds nobody reading, close gives its exit status.
        FUZZ_CHECK(ORV_ReinsertCardShow("m") == 0);
        FUZZ_CHECK(ORV_ReinsertCardSwitchText(data[2] & 1) == 7);
        FUZZ_CHECK(ORV_ReinsertCardClose() == (statusDecides ? mapped : 0));
        break;
    case kDialogCount:
        break;
    }

    // Whatever the GUI application wrote, the log stays text.
    if (g_logBuffer) {
        FUZZ_CHECK(OrvelDialogs::Platform::isValidUtf8(*g_logBuffer));
        // The log only grows; a run of millions of inputs starts each afresh.
        g_logBuffer.reset();
    }
    return 0;
}
