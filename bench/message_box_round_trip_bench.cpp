// ORV_MessageBox with a minimal responder bundle, against the least a dialog
// can cost: the same responder started with bare posix_spawn, two pipes, a
// read to the end and waitpid.
#include "BenchTable.hpp"
#include "spawn_baseline.h"

#include <OrvelGUIDialogs/OrvelGUIDialogs.h>

namespace {

void MessageBoxRoundTrip_Ours(benchmark::State &state)
{
    ORV_SetAppPath(ORVEL_BENCH_RESPONDER_BUNDLE);
    const OrvelBench::FaultCounter faults(state);
    for (auto _ : state)
        if (ORV_MessageBox("m", nullptr, 0) != 0) {
            state.SkipWithError("the dialog failed");
            break;
        }
}
// A target 5 % above the baseline is closer than one repetition's noise on a
// shared machine: the median of many short repetitions, interleaved with the
// baseline's, is what the row compares.
constexpr int kRepetitions = 15;
BENCHMARK(MessageBoxRoundTrip_Ours)->UseRealTime()->Repetitions(kRepetitions)->MinTime(0.3);

void MessageBoxRoundTrip_Baseline(benchmark::State &state)
{
    // The argument vector the library passes.
    char path[] = ORVEL_BENCH_RESPONDER, window[] = "-window", name[] = "MessageBox", message[] = "-message",
         text[] = "m", icon[] = "-icon", zero[] = "0";
    char *const argv[] = {path, window, name, message, text, icon, zero, nullptr};
    char buffer[4096];
    const OrvelBench::FaultCounter faults(state);
    for (auto _ : state)
        if (orvel_spawn_round_trip(path, argv, buffer, sizeof buffer) <= 0) {
            state.SkipWithError("the responder failed");
            break;
        }
}
BENCHMARK(MessageBoxRoundTrip_Baseline)->UseRealTime()->Repetitions(kRepetitions)->MinTime(0.3);

} // namespace

int main(int argc, char **argv)
{
    return OrvelBench::runAndReport(argc, argv, [](const OrvelBench::Results &results, OrvelBench::Table &table) {
        table.timeRow("ORV_MessageBox round trip, minimal responder bundle, vs the same responder started bare",
                      OrvelBench::find(results, "MessageBoxRoundTrip_Ours"),
                      OrvelBench::find(results, "MessageBoxRoundTrip_Baseline"),
                      " (posix_spawn + pipes + read + waitpid)", OrvelBench::microseconds, 1.05, 3);
    });
}
