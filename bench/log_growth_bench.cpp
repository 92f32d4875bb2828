// The log as a host uses it: one entry appended, then the log read, again
// and again. Each count runs in a fresh process, so that both start cold:
// no memory that an earlier run touched, as in a host's first dialogs. The
// time per append at 100,000 entries against that at 1,000 shows whether the
// cost grows with the log (a quadratic log, or one that faults its room in
// afresh on every growth).
#include "BenchTable.hpp"

#include <OrvelGUIDialogs/OrvelDialogs.hpp>
#include <OrvelGUIDialogs/OrvelGUIDialogs.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <unistd.h>

namespace {

constexpr char kChildFlag[] = "--append-entries=";

// In the fresh process: the appends, timed, and the seconds printed.
int appendAndReport(long entries)
{
    const std::string entry = "log z GUI aplikace: Dialog zobrazen, uživatel potvrdil. ";
    const auto start = std::chrono::steady_clock::now();
    for (long i = 0; i < entries; ++i) {
        logMsg(entry);
        const char *log = nullptr;
        ORV_GetLog(&log);
        benchmark::DoNotOptimize(log[0]);
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    std::printf("%.9f\n", elapsed.count());
    return 0;
}

void LogAppendFreshProcess(benchmark::State &state)
{
    // This program again (popen's shell would read /proc/self/exe as itself).
    char self[4096] = {};
    if (readlink("/proc/self/exe", self, sizeof self - 1) <= 0) {
        state.SkipWithError("no path to this program");
        return;
    }
    const std::string command = std::string(self) + " " + kChildFlag + std::to_string(state.range(0));
    for (auto _ : state) {
        FILE *child = popen(command.c_str(), "r");
        double seconds = -1;
        if (child == nullptr || std::fscanf(child, "%lf", &seconds) != 1 || pclose(child) != 0 || seconds < 0) {
            state.SkipWithError("the appending process failed");
            break;
        }
        state.SetIterationTime(seconds);
    }
}
BENCHMARK(LogAppendFreshProcess)->Arg(1000)->Arg(100000)->UseManualTime()->Iterations(20);

} // namespace

int main(int argc, char **argv)
{
    if (argc == 2 && std::strncmp(argv[1], kChildFlag, sizeof kChildFlag - 1) == 0)
        return appendAndReport(std::atol(argv[1] + sizeof kChildFlag - 1));
    return OrvelBench::runAndReport(argc, argv, [](const OrvelBench::Results &results, OrvelBench::Table &table) {
        const auto &small = OrvelBench::find(results, "LogAppendFreshProcess/1000/");
        const auto &large = OrvelBench::find(results, "LogAppendFreshProcess/100000/");
        const double perSmall = small.seconds / 1e3, perLarge = large.seconds / 1e5;
        const double ratio = perLarge / perSmall;
        table.row("log append with the log read after each, fresh process: time per append, 100,000 vs 1,000 entries",
                  OrvelBench::nanoseconds(perLarge) + " at 100,000 entries",
                  OrvelBench::nanoseconds(perSmall) + " at 1,000 entries", OrvelBench::fixed(ratio),
                  "ratio <= 2.0 (no growth with the log)", ratio <= 2.0);
    });
}
