// The log as a host uses it: one entry appended, then the log read, again
// and again. The time per append at 100,000 entries against that at 1,000
// shows whether the cost grows with the log.
#include "BenchTable.hpp"

#include <OrvelGUIDialogs/LibraryState.hpp>
#include <OrvelGUIDialogs/OrvelDialogs.hpp>
#include <OrvelGUIDialogs/OrvelGUIDialogs.h>

#include <string>

namespace {

void LogAppendAndRead(benchmark::State &state)
{
    const long entries = state.range(0);
    const std::string entry = "log z GUI aplikace: Dialog zobrazen, uživatel potvrdil. ";
    const OrvelBench::FaultCounter faults(state);
    for (auto _ : state) {
        state.PauseTiming();
        g_logBuffer.reset();
        state.ResumeTiming();
        for (long i = 0; i < entries; ++i) {
            logMsg(entry);
            const char *log = nullptr;
            ORV_GetLog(&log);
            benchmark::DoNotOptimize(log[0]);
        }
    }
    state.counters["entries"] = static_cast<double>(entries);
}
BENCHMARK(LogAppendAndRead)->Arg(1000)->Arg(100000)->UseRealTime();

} // namespace

int main(int argc, char **argv)
{
    return OrvelBench::runAndReport(argc, argv, [](const OrvelBench::Results &results, OrvelBench::Table &table) {
        const auto &small = OrvelBench::find(results, "LogAppendAndRead/1000/");
        const auto &large = OrvelBench::find(results, "LogAppendAndRead/100000/");
        const auto perAppend = [](const OrvelBench::Result &result, double entries) {
            return result.seconds / entries;
        };
        const double ratio = perAppend(large, 1e5) / perAppend(small, 1e3);
        table.row("100,000 log appends, the log read after each: time per append",
                  OrvelBench::nanoseconds(perAppend(large, 1e5)) + " at 100,000 entries" + OrvelBench::faults(large),
                  OrvelBench::nanoseconds(perAppend(small, 1e3)) + " at 1,000 entries" + OrvelBench::faults(small),
                  OrvelBench::fixed(ratio), "ratio <= 2.0 (no quadratic growth)", ratio <= 2.0);
    });
}
