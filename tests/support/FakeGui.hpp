// Scripts the fake GUI application for one test and reads back what it saw. The
// fake reads its script from environment variables, which the library's child
// inherits; the destructor clears them again.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace OrvelTest {

class FakeGui {
public:
    FakeGui();
    ~FakeGui();
    FakeGui(const FakeGui &) = delete;
    FakeGui &operator=(const FakeGui &) = delete;

    static std::string bundlePath() { return ORVEL_FAKE_GUI_BUNDLE; }

    // Back to the default script (no reply, exit 0) with the same record
    // directory. The C library keeps every distinct environment string it was
    // given for good, so a long run re-scripts one fake with recurring values
    // instead of making a new one per dialog.
    FakeGui &clear();

    // Any bytes, zero bytes and invalid UTF-8 included.
    FakeGui &reply(std::string_view bytes);
    // The reply is the file's content.
    FakeGui &replyFile(const std::string &path) { return set("FAKEGUI_REPLY_FILE", path); }
    // `count` bytes of `fill` after the reply, then `suffix`.
    FakeGui &fill(size_t count, char fill = 'Q', std::string_view suffix = {});
    FakeGui &exitStatus(int status) { return set("FAKEGUI_EXIT", std::to_string(status)); }
    FakeGui &dieBySignal(int signalNumber) { return set("FAKEGUI_SIGNAL", std::to_string(signalNumber)); }
    FakeGui &readStdin() { return set("FAKEGUI_READ_STDIN", "1"); }
    // The child does nothing until `path` exists.
    FakeGui &gate(const std::string &path) { return set("FAKEGUI_GATE_FILE", path); }
    FakeGui &sleepMs(int milliseconds) { return set("FAKEGUI_SLEEP_MS", std::to_string(milliseconds)); }
    FakeGui &closeStdoutEarly() { return set("FAKEGUI_CLOSE_STDOUT", "1"); }
    FakeGui &grandchildHoldingStdout(int ms) { return set("FAKEGUI_GRANDCHILD_MS", std::to_string(ms)); }

    // What the last child recorded.
    std::vector<std::string> arguments() const;
    std::vector<std::string> environment() const; // "NAME=value", in order
    std::string stdinBytes() const;
    std::vector<int> openDescriptors() const;
    std::string signalState() const;
    // ORVEL_GUI_VALUE_FILES as the child saw it, or "(none)"; for each file
    // it names a line "<option> <seals> <bytes>"; what the file of `option`
    // held.
    std::string announcement() const;
    std::string valueFiles() const { return recorded("valuefiles"); }
    std::string valueRead(const std::string &option) const { return recorded("value" + option); }
    bool ran() const;

private:
    FakeGui &set(const char *name, const std::string &value);
    std::string recorded(const std::string &name) const;

    std::string recordDir_;
};

// "<head> -log <Base64 of log>": a well-formed reply.
std::string replyWithLog(std::string_view head, std::string_view log = "hello");

// The test's own encoder, so that no expectation is made by the library. With
// a mask it reads bytes kept XOR `mask` and writes its text XOR `mask`, for a
// secret that the test itself must not hold in clear.
std::string base64(std::string_view bytes, char mask = 0);

} // namespace OrvelTest
