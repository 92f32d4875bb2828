// The reference GUI application's cost of starting, answering and exiting:
// OrvelGUI.app's terminal front end, started without a controlling terminal,
// answers a message box at once with the no-user-interface status 6 and its
// reply. Against the trivial responder started the same way with the same
// arguments: what is left is what OrvelGUI.app costs beyond the least a GUI
// application can.
#include "BenchTable.hpp"
#include "spawn_baseline.h"

#include <cstdlib>
#include <cstring>

namespace {

void roundTrips(benchmark::State &state, const char *program, const char *expectedStart)
{
    // The terminal front end even where a display is there.
    setenv("ORVEL_GUI_FRONTEND", "terminal", 1);
    char path[4096];
    std::strncpy(path, program, sizeof path - 1);
    path[sizeof path - 1] = '\0';
    char window[] = "-window", name[] = "MessageBox", message[] = "-message", text[] = "m", icon[] = "-icon",
         zero[] = "0";
    char *const argv[] = {path, window, name, message, text, icon, zero, nullptr};
    char buffer[4096];
    const OrvelBench::FaultCounter faults(state);
    for (auto _ : state) {
        const long read = orvel_spawn_round_trip_without_terminal(path, argv, buffer, sizeof buffer - 1);
        if (read <= 0 || std::strncmp(buffer, expectedStart, std::strlen(expectedStart)) != 0) {
            state.SkipWithError("no reply");
            break;
        }
    }
}

void GuiRoundTrip_Ours(benchmark::State &state)
{
    roundTrips(state, ORVEL_BENCH_GUI, "MessageBox -log ");
}
BENCHMARK(GuiRoundTrip_Ours)->UseRealTime()->Unit(benchmark::kMicrosecond);

void GuiRoundTrip_Baseline(benchmark::State &state)
{
    roundTrips(state, ORVEL_BENCH_RESPONDER, "MessageBox -log ");
}
BENCHMARK(GuiRoundTrip_Baseline)->UseRealTime()->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    return OrvelBench::runAndReport(argc, argv, [](const OrvelBench::Results &results, OrvelBench::Table &table) {
        table.timeRow("round trip through OrvelGUI.app (terminal front end, no terminal: status 6 at once) vs the "
                      "trivial responder",
                      OrvelBench::find(results, "GuiRoundTrip_Ours"), OrvelBench::find(results, "GuiRoundTrip_Baseline"),
                      " (posix_spawn + pipes + read + waitpid, both)", OrvelBench::microseconds, 2.0);
    });
}
