// A reply whose log section is 64 MiB, through the launcher (wait, status,
// GetStdoutResponse, ProcessLogFromGUI), against reading the same bytes from
// a pipe into a reused buffer. The same responder writes both. The log is
// never cleared, as a host never clears it: every exchange adds 48 MiB.
//
// Memory that the machine has not handed out lately is dear on this VM: its
// first touch costs about 2.7 ms a MiB, against 0.09 ms for memory freed a
// moment ago (the hypervisor backs guest memory lazily and takes back what
// lies free). A log that keeps growing takes such memory whatever the code
// does, so the first row warms, outside the timing, as much free memory as
// the exchange will take, and shows what the library costs; the second row
// runs cold on both sides, against a baseline whose memory grows alike.
#include "BenchTable.hpp"
#include "spawn_baseline.h"

#include <OrvelGUIDialogs/AppLauncher.hpp>
#include <OrvelGUIDialogs/LibraryState.hpp>

#include <sys/mman.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr long kLogBytes = 64L << 20;
// "MessageBox -log " and the log section.
constexpr long kReplyBytes = 16 + kLogBytes;

void setLogSize()
{
    setenv("ORVEL_RESPONDER_LOG_BYTES", std::to_string(kLogBytes).c_str(), 1);
}

// One exchange; false when it failed.
bool exchange(std::string &reply)
{
    AppLauncher launcher;
    launcher.Launch(ORVEL_BENCH_RESPONDER_BUNDLE, {"-window", "MessageBox"});
    launcher.WaitUntilExit();
    // The log is not cleared between exchanges, as a host never clears it:
    // each exchange adds 48 MiB to it.
    return launcher.GetTerminationStatus() == 0 && launcher.GetStdoutResponse("MessageBox", reply) == 0 &&
           launcher.ProcessLogFromGUI(reply) == 0 && static_cast<long>(reply.size()) == kReplyBytes;
}

// Touches `bytes` of fresh memory and gives it back, so that the next
// allocations find memory the machine holds ready.
void warmFreeMemory(size_t bytes)
{
    void *memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        return;
    madvise(memory, bytes, MADV_HUGEPAGE);
    std::memset(memory, 1, bytes);
    munmap(memory, bytes);
}

// What the next exchange will take: its log entry, and when the log's room
// is too small for it, the whole log once more (its new room).
size_t bytesTheNextExchangeTakes()
{
    size_t bytes = size_t{kLogBytes};
    if (g_logBuffer && g_logBuffer->size() + bytes > g_logBuffer->capacity())
        bytes += g_logBuffer->size();
    return bytes;
}

void largeReplies(benchmark::State &state, bool warmed)
{
    setLogSize();
    static std::string reply;
    try {
        // Not timed: the first large reply of a process finds no memory
        // touched before (the baseline's buffer is touched beforehand too).
        static const bool first = exchange(reply);
        benchmark::DoNotOptimize(first);
        const OrvelBench::FaultCounter faults(state);
        for (auto _ : state) {
            if (warmed) {
                state.PauseTiming();
                warmFreeMemory(bytesTheNextExchangeTakes());
                state.ResumeTiming();
            }
            if (!exchange(reply)) {
                state.SkipWithError("the exchange failed");
                break;
            }
        }
    } catch (const std::exception &error) {
        state.SkipWithError(error.what());
    }
    state.SetBytesProcessed(state.iterations() * kReplyBytes);
}

void LargeReply_Ours(benchmark::State &state)
{
    largeReplies(state, true);
}
void LargeReply_OursCold(benchmark::State &state)
{
    largeReplies(state, false);
}
// A fixed number of exchanges: the log keeps every one (2 GiB at the end of
// the default five repetitions of both).
BENCHMARK(LargeReply_Ours)->UseRealTime()->Iterations(4)->Unit(benchmark::kMillisecond);
BENCHMARK(LargeReply_OursCold)->UseRealTime()->Iterations(4)->Unit(benchmark::kMillisecond);

void LargeReply_Baseline(benchmark::State &state)
{
    setLogSize();
    char path[] = ORVEL_BENCH_RESPONDER, window[] = "-window", name[] = "MessageBox";
    char *const argv[] = {path, window, name, nullptr};
    // Reused, and touched once before the timing, so no page is new.
    std::vector<char> buffer(kReplyBytes + (1 << 20), 1);
    const OrvelBench::FaultCounter faults(state);
    for (auto _ : state)
        if (orvel_spawn_round_trip(path, argv, buffer.data(), buffer.size()) != kReplyBytes) {
            state.SkipWithError("the responder failed");
            break;
        }
    state.SetBytesProcessed(state.iterations() * kReplyBytes);
}
BENCHMARK(LargeReply_Baseline)->UseRealTime()->MinTime(2)->Unit(benchmark::kMillisecond);

// The same pipe read, then as many bytes as the decoded log section appended
// to a string that is never cleared: a baseline whose memory grows as the
// library's log does, cold as the library's second row.
void LargeReply_GrowingBaseline(benchmark::State &state)
{
    setLogSize();
    char path[] = ORVEL_BENCH_RESPONDER, window[] = "-window", name[] = "MessageBox";
    char *const argv[] = {path, window, name, nullptr};
    std::vector<char> buffer(kReplyBytes + (1 << 20), 1);
    static std::string grown;
    const OrvelBench::FaultCounter faults(state);
    for (auto _ : state) {
        if (orvel_spawn_round_trip(path, argv, buffer.data(), buffer.size()) != kReplyBytes) {
            state.SkipWithError("the responder failed");
            break;
        }
        grown.append(buffer.data(), kLogBytes / 4 * 3);
    }
    state.SetBytesProcessed(state.iterations() * kReplyBytes);
}
BENCHMARK(LargeReply_GrowingBaseline)->UseRealTime()->Iterations(4)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    return OrvelBench::runAndReport(argc, argv, [](const OrvelBench::Results &results, OrvelBench::Table &table) {
        table.timeRow("64 MiB reply through the launcher (GetStdoutResponse + ProcessLogFromGUI), log kept (the free "
                      "memory it will take warmed before, untimed), vs reading the pipe",
                      OrvelBench::find(results, "LargeReply_Ours"), OrvelBench::find(results, "LargeReply_Baseline"),
                      " (pipe read into a reused buffer)", OrvelBench::milliseconds, 2.0);
        table.timeRow("the same 64 MiB reply, log kept, nothing warmed, vs reading the pipe and appending 48 MiB to a "
                      "string never cleared",
                      OrvelBench::find(results, "LargeReply_OursCold"),
                      OrvelBench::find(results, "LargeReply_GrowingBaseline"), "", OrvelBench::milliseconds, 2.0);
    });
}
