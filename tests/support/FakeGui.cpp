#include "support/FakeGui.hpp"

#include "support/TempDir.hpp"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace OrvelTest {
namespace {

constexpr const char *kVariables[] = {
    "FAKEGUI_RECORD_DIR", "FAKEGUI_READ_STDIN", "FAKEGUI_REPLY_FILE", "FAKEGUI_REPLY",
    "FAKEGUI_FILL_BYTES", "FAKEGUI_FILL_CHAR", "FAKEGUI_REPLY_SUFFIX", "FAKEGUI_CLOSE_STDOUT",
    "FAKEGUI_GRANDCHILD_MS", "FAKEGUI_SLEEP_MS", "FAKEGUI_SIGNAL", "FAKEGUI_EXIT", "FAKEGUI_GATE_FILE"};

std::string readFile(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

void set(const char *name, const std::string &value)
{
    setenv(name, value.c_str(), 1);
}

} // namespace

FakeGui::FakeGui() : recordDir_(makeTempDir())
{
    replyFile_ = recordDir_ + "/reply-script";
    clear();
}

FakeGui &FakeGui::clear()
{
    for (const char *name : kVariables)
        unsetenv(name);
    set("FAKEGUI_RECORD_DIR", recordDir_);
    return *this;
}

FakeGui::~FakeGui()
{
    for (const char *name : kVariables)
        unsetenv(name);
    removeTree(recordDir_);
}

std::string FakeGui::bundlePath()
{
    return ORVEL_FAKE_GUI_BUNDLE;
}

FakeGui &FakeGui::reply(std::string_view bytes)
{
    std::ofstream(replyFile_, std::ios::binary | std::ios::trunc).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    set("FAKEGUI_REPLY_FILE", replyFile_);
    return *this;
}

FakeGui &FakeGui::fill(size_t count, char fill, std::string_view suffix)
{
    set("FAKEGUI_FILL_BYTES", std::to_string(count));
    set("FAKEGUI_FILL_CHAR", std::string(1, fill));
    set("FAKEGUI_REPLY_SUFFIX", std::string(suffix));
    return *this;
}

FakeGui &FakeGui::exitStatus(int status)
{
    set("FAKEGUI_EXIT", std::to_string(status));
    return *this;
}

FakeGui &FakeGui::dieBySignal(int signalNumber)
{
    set("FAKEGUI_SIGNAL", std::to_string(signalNumber));
    return *this;
}

FakeGui &FakeGui::readStdin()
{
    set("FAKEGUI_READ_STDIN", "1");
    return *this;
}

FakeGui &FakeGui::gate(const std::string &path)
{
    set("FAKEGUI_GATE_FILE", path);
    return *this;
}

FakeGui &FakeGui::sleepMs(int milliseconds)
{
    set("FAKEGUI_SLEEP_MS", std::to_string(milliseconds));
    return *this;
}

FakeGui &FakeGui::closeStdoutEarly()
{
    set("FAKEGUI_CLOSE_STDOUT", "1");
    return *this;
}

FakeGui &FakeGui::grandchildHoldingStdout(int milliseconds)
{
    set("FAKEGUI_GRANDCHILD_MS", std::to_string(milliseconds));
    return *this;
}

std::vector<std::string> FakeGui::arguments() const
{
    const std::string bytes = readFile(recordDir_ + "/argv");
    std::vector<std::string> arguments;
    size_t start = 0;
    for (size_t zero; (zero = bytes.find('\0', start)) != std::string::npos; start = zero + 1)
        arguments.push_back(bytes.substr(start, zero - start));
    return arguments;
}

std::string FakeGui::stdinBytes() const
{
    return readFile(recordDir_ + "/stdin");
}

std::vector<int> FakeGui::openDescriptors() const
{
    std::istringstream list(readFile(recordDir_ + "/fds"));
    std::vector<int> fds;
    for (int fd; list >> fd;)
        fds.push_back(fd);
    return fds;
}

std::string FakeGui::signalState() const
{
    return readFile(recordDir_ + "/signals");
}

bool FakeGui::ran() const
{
    return access((recordDir_ + "/argv").c_str(), F_OK) == 0;
}

std::string base64(std::string_view bytes)
{
    static constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    size_t i = 0;
    for (; i + 3 <= bytes.size(); i += 3) {
        const unsigned v = (static_cast<unsigned char>(bytes[i]) << 16) |
                           (static_cast<unsigned char>(bytes[i + 1]) << 8) | static_cast<unsigned char>(bytes[i + 2]);
        for (int shift = 18; shift >= 0; shift -= 6)
            text += alphabet[(v >> shift) & 63];
    }
    if (i < bytes.size()) {
        unsigned v = static_cast<unsigned char>(bytes[i]) << 16;
        if (i + 1 < bytes.size())
            v |= static_cast<unsigned char>(bytes[i + 1]) << 8;
        text += alphabet[(v >> 18) & 63];
        text += alphabet[(v >> 12) & 63];
        text += i + 1 < bytes.size() ? alphabet[(v >> 6) & 63] : '=';
        text += '=';
    }
    return text;
}

std::string replyWithLog(std::string_view head, std::string_view log)
{
    return std::string(head) + " -log " + base64(log);
}

} // namespace OrvelTest
