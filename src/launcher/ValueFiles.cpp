#include "launcher/ValueFiles.hpp"

#include "platform/SealedFile.hpp"
#include "platform/Task.hpp"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>

namespace OrvelDialogs::Launcher {
namespace {

constexpr size_t kPointer = sizeof(char *);
// What a reference and its announcement take at most besides the option's
// name: "@fd:" and a descriptor, ":" + descriptor + ":" + size + ",".
constexpr size_t kReferenceBytes = 4 + 10 + 1;
constexpr size_t kAnnouncementBytes = 1 + 10 + 1 + 20 + 1;

size_t pageSize()
{
    const long page = sysconf(_SC_PAGESIZE);
    return page > 0 ? static_cast<size_t>(page) : 4096;
}

struct ExecLimits {
    size_t argumentBytes = 0; // one argument, with its terminating zero
    size_t totalBytes = 0;    // every argument and environment string, with zeros and pointers
};

// The limits of the system this process runs on (Linux reads the stack limit
// that the child inherits).
ExecLimits execLimits()
{
#ifdef __linux__
    // MAX_ARG_STRLEN; also the least the kernel grants the whole.
    const size_t argumentBytes = 32 * pageSize();
    // A quarter of the stack limit, at most three quarters of the kernel's
    // 8 MiB stack default (since Linux 4.13; the smaller bound holds on
    // older kernels too).
    size_t totalBytes = size_t{6} << 20;
    rlimit stack{};
    if (getrlimit(RLIMIT_STACK, &stack) == 0 && stack.rlim_cur != RLIM_INFINITY)
        totalBytes = std::min<size_t>(totalBytes, static_cast<size_t>(stack.rlim_cur / 4));
    return {argumentBytes, std::max(totalBytes, argumentBytes)};
#else
    // Elsewhere one limit for the whole, which any one argument may take.
    const long maximum = sysconf(_SC_ARG_MAX);
    const size_t totalBytes = maximum > 0 ? static_cast<size_t>(maximum) : size_t{256} << 10;
    return {totalBytes, totalBytes};
#endif
}

// The indices of the values (the arguments after an option name, the window
// name excepted) to move, in argument order: the largest first, until every
// argument fits and the whole, with `otherBytes` for the program's path and
// the environment, does. Empty when everything fits as it is.
std::vector<size_t> valuesToMove(const std::vector<std::string> &arguments, size_t otherBytes,
                                 const ExecLimits &limits)
{
    size_t total = otherBytes;
    for (const std::string &argument : arguments)
        total += argument.size() + 1 + kPointer;
    // Values only: the window name (index 1) stays, and so does every option
    // name. The largest first; of equal ones the earlier.
    std::vector<size_t> candidates;
    for (size_t i = 3; i < arguments.size(); i += 2)
        candidates.push_back(i);
    std::stable_sort(candidates.begin(), candidates.end(),
                     [&](size_t a, size_t b) { return arguments[a].size() > arguments[b].size(); });
    // Sorted so, the longest value kept is the first not moved.
    size_t longestOther = 0;
    for (size_t i = 0; i < arguments.size(); ++i)
        if (i < 3 || i % 2 == 0)
            longestOther = std::max(longestOther, arguments[i].size() + 1);
    const auto longestKept = [&](size_t moved) {
        return moved < candidates.size() ? std::max(longestOther, arguments[candidates[moved]].size() + 1)
                                         : longestOther;
    };

    size_t moved = 0;
    while (moved < candidates.size() && (total > limits.totalBytes || longestKept(moved) > limits.argumentBytes)) {
        const size_t index = candidates[moved];
        if (moved == 0)
            total += std::char_traits<char>::length(kValueFilesVariable) + 2 + kPointer;
        total = total - arguments[index].size() + kReferenceBytes + arguments[index - 1].size() + kAnnouncementBytes;
        ++moved;
    }
    std::vector<size_t> indices(candidates.begin(), candidates.begin() + static_cast<std::ptrdiff_t>(moved));
    std::sort(indices.begin(), indices.end());
    return indices;
}

} // namespace

void giveArgumentsToTask(Platform::Task &task, const std::vector<std::string> &arguments,
                         std::vector<GuiVariable> variables)
{
    // A host's own variable of that name never reaches the child: there a
    // literal value would read as a reference.
    variables.push_back({kValueFilesVariable, std::nullopt});
    std::vector<std::string> environment = childEnvironment(variables);
    size_t environmentBytes = kPointer;
    for (const std::string &entry : environment)
        environmentBytes += entry.size() + 1 + kPointer;
    // The path stands twice (argv[0] and the name of the program run); a few
    // pages for what the kernel adds besides.
    const size_t path = task.launchPath().size() + 1;
    const size_t otherBytes = 2 * path + kPointer + environmentBytes + 4 * pageSize();
    const std::vector<size_t> moved = valuesToMove(arguments, otherBytes, execLimits());
    if (moved.empty()) {
        task.setArguments(arguments);
        task.setEnvironment(std::move(environment));
        return;
    }
    // Only the values that stay are copied; a moved one goes straight from
    // the caller's string into its file.
    std::vector<std::string> passed;
    passed.reserve(arguments.size());
    std::vector<Platform::UniqueFd> files;
    std::string announcement;
    auto next = moved.begin();
    for (size_t i = 0; i < arguments.size(); ++i) {
        if (next == moved.end() || *next != i) {
            passed.push_back(arguments[i]);
            continue;
        }
        ++next;
        const std::string descriptor = std::to_string(Platform::Task::kFirstInheritedFile + files.size());
        files.push_back(Platform::sealedFileHolding(arguments[i]));
        passed.push_back("@fd:" + descriptor);
        announcement += (announcement.empty() ? "" : ",") + arguments[i - 1] + ":" + descriptor + ":" +
                        std::to_string(arguments[i].size());
    }
    task.setArguments(std::move(passed));
    task.setInheritedFiles(std::move(files));
    variables.back().value = std::move(announcement);
    task.setEnvironment(childEnvironment(variables));
}

} // namespace OrvelDialogs::Launcher
