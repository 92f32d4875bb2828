// A GUI application stand-in for the tests, scripted through the FAKEGUI_*
// environment variables that support/FakeGui.hpp sets (the library's child
// inherits the test's environment). In this order it records its arguments,
// environment, open descriptors, signal state and the value files that
// ORVEL_GUI_VALUE_FILES announces in FAKEGUI_RECORD_DIR, waits for
// FAKEGUI_GATE_FILE, reads and records its input (FAKEGUI_READ_STDIN), writes
// its reply (the file FAKEGUI_REPLY_FILE or the text FAKEGUI_REPLY, then
// FAKEGUI_FILL_BYTES of FAKEGUI_FILL_CHAR, then FAKEGUI_REPLY_SUFFIX), leaves a
// grandchild holding its stdout, closes stdout, sleeps, and dies by
// FAKEGUI_SIGNAL or exits with FAKEGUI_EXIT.
#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>

namespace {

std::string env(const char *name)
{
    const char *value = std::getenv(name);
    return value ? value : "";
}

long envNumber(const char *name)
{
    return std::strtol(env(name).c_str(), nullptr, 10);
}

void writeAll(int fd, std::string_view bytes)
{
    for (ssize_t n; !bytes.empty(); bytes.remove_prefix(static_cast<size_t>(n)))
        if ((n = ::write(fd, bytes.data(), bytes.size())) < 0 && (n = 0, errno != EINTR))
            return;
}

std::string readFile(const std::string &path)
{
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}

// Each open descriptor but the directory's own, one a line.
std::string openDescriptors()
{
    std::ostringstream list;
    DIR *dir = opendir("/proc/self/fd");
    for (const dirent *entry; dir != nullptr && (entry = readdir(dir)) != nullptr;)
        if (entry->d_name[0] != '.' && std::atoi(entry->d_name) != dirfd(dir))
            list << entry->d_name << '\n';
    if (dir != nullptr)
        closedir(dir);
    return list.str();
}

std::string signalState()
{
    std::ifstream status("/proc/self/status");
    std::string state;
    for (std::string line; std::getline(status, line);)
        if (line.rfind("SigBlk:", 0) == 0 || line.rfind("SigIgn:", 0) == 0)
            state += line + '\n';
    return state;
}

// For each file that ORVEL_GUI_VALUE_FILES names a line "<option> <seals>
// <bytes>" in "valuefiles", and what the file holds in "value<option>".
template <typename Record>
void recordValueFiles(const Record &record)
{
    const char *announced = std::getenv("ORVEL_GUI_VALUE_FILES");
    std::istringstream entries(announced ? announced : "");
    std::string lines;
    for (std::string entry; std::getline(entries, entry, ',');) {
        const std::string option = entry.substr(0, entry.find(':'));
        const int fd = std::atoi(entry.c_str() + option.size() + 1);
        struct stat status{};
        fstat(fd, &status);
        lines += option + ' ' + std::to_string(fcntl(fd, F_GET_SEALS)) + ' ' + std::to_string(status.st_size) + '\n';
        record(("value" + option).c_str(), readFile("/proc/self/fd/" + std::to_string(fd)));
    }
    record("valuefiles", lines);
}

} // namespace

int main(int argc, char **argv)
{
    const std::string recordDir = env("FAKEGUI_RECORD_DIR");
    const auto record = [&](const char *name, const std::string &bytes) {
        if (!recordDir.empty())
            std::ofstream(recordDir + "/" + name, std::ios::binary) << bytes;
    };
    std::string arguments;
    for (int i = 1; i < argc; ++i)
        arguments += std::string(argv[i]) + '\0';
    record("argv", arguments);
    std::string environment;
    for (char **entry = environ; *entry != nullptr; ++entry)
        environment += std::string(*entry) + '\0';
    record("environ", environment);
    record("fds", openDescriptors());
    record("signals", signalState());
    recordValueFiles(record);

    const std::string gate = env("FAKEGUI_GATE_FILE");
    while (!gate.empty() && access(gate.c_str(), F_OK) != 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    if (env("FAKEGUI_READ_STDIN") == "1")
        record("stdin", readFile("/dev/stdin"));

    const std::string replyFile = env("FAKEGUI_REPLY_FILE");
    writeAll(STDOUT_FILENO, replyFile.empty() ? env("FAKEGUI_REPLY") : readFile(replyFile));
    const std::string fillChar = env("FAKEGUI_FILL_CHAR");
    const std::string chunk(1 << 20, fillChar.empty() ? 'Q' : fillChar[0]);
    for (long fill = envNumber("FAKEGUI_FILL_BYTES"); fill > 0; fill -= static_cast<long>(chunk.size()))
        writeAll(STDOUT_FILENO, std::string_view(chunk).substr(0, static_cast<size_t>(fill)));
    writeAll(STDOUT_FILENO, env("FAKEGUI_REPLY_SUFFIX"));

    const long grandchildMs = envNumber("FAKEGUI_GRANDCHILD_MS");
    if (grandchildMs > 0 && fork() == 0) {
        // Only stdout stays held: a test runner waits for stderr to close.
        dup2(open("/dev/null", O_WRONLY), STDERR_FILENO);
        std::this_thread::sleep_for(std::chrono::milliseconds(grandchildMs));
        _exit(0);
    }
    if (env("FAKEGUI_CLOSE_STDOUT") == "1")
        close(STDOUT_FILENO);
    std::this_thread::sleep_for(std::chrono::milliseconds(envNumber("FAKEGUI_SLEEP_MS")));

    if (const int signalNumber = static_cast<int>(envNumber("FAKEGUI_SIGNAL")); signalNumber > 0) {
        signal(signalNumber, SIG_DFL);
        raise(signalNumber);
    }
    return static_cast<int>(envNumber("FAKEGUI_EXIT"));
}
