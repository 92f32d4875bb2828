// From ORV_MessageBox to the desktop window's first paint (offscreen, closed
// right after it), against a bare Qt program that shows one QMessageBox and
// quits after its first paint, started with posix_spawn, pipes and waitpid.
#include "BenchTable.hpp"
#include "spawn_baseline.h"

#include <OrvelGUIDialogs/OrvelGUIDialogs.h>

#include <cstdlib>

namespace {

void DesktopFirstPaint_Ours(benchmark::State &state)
{
    ORV_SetAppPath(ORVEL_GUI_BUNDLE);
    const OrvelBench::FaultCounter faults(state);
    for (auto _ : state)
        if (ORV_MessageBox("m", nullptr, 0) != 0) {
            state.SkipWithError("the dialog failed");
            break;
        }
}
BENCHMARK(DesktopFirstPaint_Ours)->UseRealTime()->Unit(benchmark::kMillisecond)->MinTime(3.0);

void DesktopFirstPaint_BareQt(benchmark::State &state)
{
    char path[] = ORVEL_BENCH_BARE_QT;
    char *const argv[] = {path, nullptr};
    char buffer[4096];
    const OrvelBench::FaultCounter faults(state);
    for (auto _ : state)
        if (orvel_spawn_round_trip(path, argv, buffer, sizeof buffer) < 0) {
            state.SkipWithError("the bare Qt program failed");
            break;
        }
}
BENCHMARK(DesktopFirstPaint_BareQt)->UseRealTime()->Unit(benchmark::kMillisecond)->MinTime(3.0);

} // namespace

int main(int argc, char **argv)
{
    // Both draw offscreen; the GUI application takes the desktop and closes
    // its window once painted.
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    ::setenv("ORVEL_GUI_FRONTEND", "desktop", 1);
    ::setenv("ORVEL_GUI_CLOSE_AFTER_PAINT", "1", 1);
    return OrvelBench::runAndReport(argc, argv, [](const OrvelBench::Results &results, OrvelBench::Table &table) {
        const auto &ours = OrvelBench::find(results, "DesktopFirstPaint_Ours");
        const auto &baseline = OrvelBench::find(results, "DesktopFirstPaint_BareQt");
        const double ratio = ours.seconds / baseline.seconds;
        table.row("ORV_MessageBox to the desktop window's first paint (offscreen)",
                  OrvelBench::microseconds(ours.seconds),
                  OrvelBench::microseconds(baseline.seconds) + " (bare Qt program showing one QMessageBox)",
                  OrvelBench::fixed(ratio, 3), "ratio <= 1.3", ratio <= 1.3);
    });
}
