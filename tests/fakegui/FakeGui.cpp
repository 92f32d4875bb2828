// A GUI application stand-in for the tests, scripted through environment
// variables (the library's child inherits the test's environment):
//
//   FAKEGUI_RECORD_DIR    write argv (NUL-separated), the open descriptors,
//                         the signal mask and ignored signals, and what was
//                         read from stdin into files in this directory
//   FAKEGUI_GATE_FILE     first wait until this file exists
//   FAKEGUI_READ_STDIN    1: read stdin to its end before replying
//   FAKEGUI_REPLY_FILE    write this file's bytes as the reply
//   FAKEGUI_REPLY         or write this text as the reply
//   FAKEGUI_FILL_BYTES    then write this many FAKEGUI_FILL_CHAR bytes ('Q')
//   FAKEGUI_REPLY_SUFFIX  then write this text
//   FAKEGUI_CLOSE_STDOUT  1: close stdout after the reply
//   FAKEGUI_GRANDCHILD_MS leave a grandchild holding stdout for this long
//   FAKEGUI_SLEEP_MS      sleep this long before exiting
//   FAKEGUI_SIGNAL        die by this signal
//   FAKEGUI_EXIT          exit with this status (default 0)
#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

namespace {

std::string env(const char *name)
{
    const char *value = std::getenv(name);
    return value ? value : "";
}

long envNumber(const char *name, long fallback)
{
    const std::string value = env(name);
    return value.empty() ? fallback : std::strtol(value.c_str(), nullptr, 10);
}

void writeAll(int fd, const char *data, size_t size)
{
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            return;
        }
        data += n;
        size -= static_cast<size_t>(n);
    }
}

void writeFile(const std::string &path, const std::string &bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string openDescriptors()
{
    std::ostringstream list;
    DIR *dir = opendir("/proc/self/fd");
    if (dir == nullptr)
        return list.str();
    const int own = dirfd(dir);
    while (const dirent *entry = readdir(dir)) {
        if (entry->d_name[0] == '.')
            continue;
        const int fd = std::atoi(entry->d_name);
        if (fd != own)
            list << fd << '\n';
    }
    closedir(dir);
    return list.str();
}

std::string signalState()
{
    std::ifstream status("/proc/self/status");
    std::ostringstream state;
    for (std::string line; std::getline(status, line);)
        if (line.rfind("SigBlk:", 0) == 0 || line.rfind("SigIgn:", 0) == 0)
            state << line << '\n';
    return state.str();
}

std::string readToEnd(int fd)
{
    std::string bytes;
    char buffer[65536];
    for (;;) {
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n > 0)
            bytes.append(buffer, static_cast<size_t>(n));
        else if (n == 0 || errno != EINTR)
            return bytes;
    }
}

void sleepMilliseconds(long ms)
{
    if (ms > 0)
        usleep(static_cast<useconds_t>(ms) * 1000);
}

} // namespace

int main(int argc, char **argv)
{
    const std::string recordDir = env("FAKEGUI_RECORD_DIR");
    if (!recordDir.empty()) {
        std::string arguments;
        for (int i = 1; i < argc; ++i) {
            arguments += argv[i];
            arguments.push_back('\0');
        }
        writeFile(recordDir + "/argv", arguments);
        writeFile(recordDir + "/fds", openDescriptors());
        writeFile(recordDir + "/signals", signalState());
    }

    const std::string gate = env("FAKEGUI_GATE_FILE");
    while (!gate.empty() && access(gate.c_str(), F_OK) != 0)
        sleepMilliseconds(2);

    if (env("FAKEGUI_READ_STDIN") == "1") {
        const std::string input = readToEnd(STDIN_FILENO);
        if (!recordDir.empty())
            writeFile(recordDir + "/stdin", input);
    }

    const std::string replyFile = env("FAKEGUI_REPLY_FILE");
    if (!replyFile.empty()) {
        std::ifstream file(replyFile, std::ios::binary);
        std::ostringstream bytes;
        bytes << file.rdbuf();
        const std::string reply = bytes.str();
        writeAll(STDOUT_FILENO, reply.data(), reply.size());
    } else {
        const std::string reply = env("FAKEGUI_REPLY");
        writeAll(STDOUT_FILENO, reply.data(), reply.size());
    }
    long fill = envNumber("FAKEGUI_FILL_BYTES", 0);
    if (fill > 0) {
        const std::string fillChar = env("FAKEGUI_FILL_CHAR");
        const std::string chunk(1 << 20, fillChar.empty() ? 'Q' : fillChar[0]);
        while (fill > 0) {
            const size_t n = static_cast<size_t>(std::min<long>(fill, static_cast<long>(chunk.size())));
            writeAll(STDOUT_FILENO, chunk.data(), n);
            fill -= static_cast<long>(n);
        }
    }
    const std::string suffix = env("FAKEGUI_REPLY_SUFFIX");
    writeAll(STDOUT_FILENO, suffix.data(), suffix.size());

    const long grandchildMs = envNumber("FAKEGUI_GRANDCHILD_MS", 0);
    if (grandchildMs > 0 && fork() == 0) {
        // Only stdout stays held: a test runner waits for stderr to close.
        const int null = open("/dev/null", O_WRONLY);
        dup2(null, STDERR_FILENO);
        if (null > STDERR_FILENO)
            close(null);
        sleepMilliseconds(grandchildMs);
        _exit(0);
    }
    if (env("FAKEGUI_CLOSE_STDOUT") == "1")
        close(STDOUT_FILENO);
    sleepMilliseconds(envNumber("FAKEGUI_SLEEP_MS", 0));

    const long signalNumber = envNumber("FAKEGUI_SIGNAL", 0);
    if (signalNumber > 0) {
        signal(static_cast<int>(signalNumber), SIG_DFL);
        raise(static_cast<int>(signalNumber));
    }
    return static_cast<int>(envNumber("FAKEGUI_EXIT", 0));
}
