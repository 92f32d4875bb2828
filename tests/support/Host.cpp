#include "support/Host.hpp"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <thread>

namespace OrvelTest {

std::string makeTempDir()
{
    const char *base = std::getenv("TMPDIR");
    std::string pattern = std::string(base && *base ? base : "/tmp") + "/orvel-test-XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("mkdtemp failed");
    return pattern;
}

void removeTree(const std::string &path)
{
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

std::string readFile(const std::string &path)
{
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return bytes.str();
}

std::string writeFile(const std::string &path, std::string_view bytes, unsigned mode)
{
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
    std::ofstream(path, std::ios::binary | std::ios::trunc).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    std::filesystem::permissions(path, static_cast<std::filesystem::perms>(mode), ignored);
    return path;
}

namespace {

// The state letter of each process whose parent is this one.
std::string childStates()
{
    std::string states;
    std::error_code error;
    for (const auto &entry : std::filesystem::directory_iterator("/proc", error)) {
        std::string line;
        std::getline(std::ifstream(entry.path() / "stat"), line);
        // "pid (comm) state ppid ..." where comm may hold spaces.
        char state = 0;
        long ppid = 0;
        if (const auto close = line.rfind(')'); close != std::string::npos &&
            std::sscanf(line.c_str() + close + 1, " %c %ld", &state, &ppid) == 2 && ppid == getpid())
            states += state;
    }
    return states;
}

} // namespace

int openDescriptorCount()
{
    std::error_code error;
    const auto fds = std::filesystem::directory_iterator("/proc/self/fd", error);
    return error ? -1 : static_cast<int>(std::distance(begin(fds), end(fds))) - 1; // the iterator's own
}

int childProcessCount()
{
    return static_cast<int>(childStates().size());
}

int zombieChildCount()
{
    const std::string states = childStates();
    return static_cast<int>(std::count(states.begin(), states.end(), 'Z'));
}

bool childrenHaveExited()
{
    for (int i = 0; i < 1000 && childProcessCount() != zombieChildCount(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return childProcessCount() == zombieChildCount();
}

} // namespace OrvelTest
