#include "support/ProcessCensus.hpp"

#include <dirent.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <thread>

namespace OrvelTest {
namespace {

// Calls visit(state) for each process whose parent is this one.
template <typename Visit>
void forEachChild(Visit visit)
{
    const pid_t self = getpid();
    DIR *proc = opendir("/proc");
    if (proc == nullptr)
        return;
    while (const dirent *entry = readdir(proc)) {
        const char *name = entry->d_name;
        if (name[0] < '0' || name[0] > '9')
            continue;
        std::ifstream stat(std::string("/proc/") + name + "/stat");
        std::string line;
        if (!std::getline(stat, line))
            continue;
        // "pid (comm) state ppid ..." where comm may hold spaces.
        const auto close = line.rfind(')');
        if (close == std::string::npos)
            continue;
        std::istringstream rest(line.substr(close + 1));
        char state = 0;
        long ppid = 0;
        rest >> state >> ppid;
        if (ppid == self)
            visit(state);
    }
    closedir(proc);
}

} // namespace

int openDescriptorCount()
{
    int count = 0;
    DIR *dir = opendir("/proc/self/fd");
    if (dir == nullptr)
        return -1;
    while (const dirent *entry = readdir(dir))
        if (entry->d_name[0] != '.')
            ++count;
    closedir(dir);
    return count - 1; // the directory's own descriptor
}

int childProcessCount()
{
    int count = 0;
    forEachChild([&](char) { ++count; });
    return count;
}

int zombieChildCount()
{
    int count = 0;
    forEachChild([&](char state) { count += state == 'Z'; });
    return count;
}

bool childrenHaveExited()
{
    for (int i = 0; i < 1000 && childProcessCount() != zombieChildCount(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return childProcessCount() == zombieChildCount();
}

} // namespace OrvelTest
