#include "support/FakeGui.hpp"

#include "support/Host.hpp"

#include <unistd.h>

#include <cstdlib>
#include <sstream>

namespace OrvelTest {
namespace {

constexpr const char *kVariables[] = {
    "FAKEGUI_RECORD_DIR", "FAKEGUI_READ_STDIN", "FAKEGUI_REPLY_FILE", "FAKEGUI_REPLY",
    "FAKEGUI_FILL_BYTES", "FAKEGUI_FILL_CHAR", "FAKEGUI_REPLY_SUFFIX", "FAKEGUI_CLOSE_STDOUT",
    "FAKEGUI_GRANDCHILD_MS", "FAKEGUI_SLEEP_MS", "FAKEGUI_SIGNAL", "FAKEGUI_EXIT", "FAKEGUI_GATE_FILE"};

std::vector<std::string> zeroTerminated(const std::string &bytes)
{
    std::vector<std::string> texts;
    size_t start = 0;
    for (size_t zero; (zero = bytes.find('\0', start)) != std::string::npos; start = zero + 1)
        texts.push_back(bytes.substr(start, zero - start));
    return texts;
}

} // namespace

FakeGui::FakeGui() : recordDir_(makeTempDir())
{
    clear();
}

FakeGui::~FakeGui()
{
    for (const char *name : kVariables)
        unsetenv(name);
    removeTree(recordDir_);
}

FakeGui &FakeGui::set(const char *name, const std::string &value)
{
    setenv(name, value.c_str(), 1);
    return *this;
}

FakeGui &FakeGui::clear()
{
    for (const char *name : kVariables)
        unsetenv(name);
    return set("FAKEGUI_RECORD_DIR", recordDir_);
}

FakeGui &FakeGui::reply(std::string_view bytes)
{
    return replyFile(writeFile(recordDir_ + "/reply-script", bytes));
}

FakeGui &FakeGui::fill(size_t count, char fill, std::string_view suffix)
{
    set("FAKEGUI_FILL_BYTES", std::to_string(count)).set("FAKEGUI_FILL_CHAR", std::string(1, fill));
    return set("FAKEGUI_REPLY_SUFFIX", std::string(suffix));
}

std::vector<std::string> FakeGui::arguments() const
{
    return zeroTerminated(readFile(recordDir_ + "/argv"));
}

std::vector<std::string> FakeGui::environment() const
{
    return zeroTerminated(readFile(recordDir_ + "/environ"));
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
    return recorded("signals");
}

std::string FakeGui::announcement() const
{
    constexpr std::string_view kName = "ORVEL_GUI_VALUE_FILES=";
    for (const std::string &entry : environment())
        if (entry.starts_with(kName))
            return entry.substr(kName.size());
    return "(none)";
}

std::string FakeGui::recorded(const std::string &name) const
{
    return readFile(recordDir_ + "/" + name);
}

bool FakeGui::ran() const
{
    return access((recordDir_ + "/argv").c_str(), F_OK) == 0;
}

std::string base64(std::string_view bytes, char mask)
{
    static constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (size_t i = 0; i < bytes.size(); i += 3) {
        unsigned v = 0;
        for (size_t k = 0; k < 3; ++k)
            v = v << 8 | (i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k] ^ mask) : 0u);
        for (size_t k = 0; k < 4; ++k)
            text += static_cast<char>((k <= bytes.size() - i ? alphabet[(v >> (18 - 6 * k)) & 63] : '=') ^ mask);
    }
    return text;
}

std::string replyWithLog(std::string_view head, std::string_view log)
{
    return std::string(head) + " -log " + base64(log);
}

} // namespace OrvelTest
