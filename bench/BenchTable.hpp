// What every benchmark program shares. Ours and the baseline run in the same
// process with their repetitions interleaved at random, so that a machine
// that drifts slows both alike; each row compares the medians.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <map>
#include <string>

namespace OrvelBench {

struct Result {
    double seconds = 0; // real time per iteration, median over the repetitions
    std::map<std::string, double> counters;

    double counter(const std::string &name) const
    {
        const auto found = counters.find(name);
        return found == counters.end() ? 0 : found->second;
    }
};
// By benchmark name, without the aggregate's suffix.
using Results = std::map<std::string, Result>;

// The result whose name begins with `prefix`; one with no time if none ran.
const Result &find(const Results &results, const std::string &prefix);

// Counts the page faults of the benchmark's iterations into its counter
// "faults" (per iteration): on our machines a first-touched page costs about
// as much as reading 30 KiB from a pipe, so faults explain many a figure.
class FaultCounter {
public:
    explicit FaultCounter(benchmark::State &state);
    ~FaultCounter();
    FaultCounter(const FaultCounter &) = delete;
    FaultCounter &operator=(const FaultCounter &) = delete;

private:
    benchmark::State &state_;
    long start_;
};

class Table {
public:
    // One row: what was measured, ours and the baseline as printed, their
    // ratio, the target and whether it is met. Printed at once, and once
    // more as a line starting with "ROW|" for scripts/bench.sh.
    void row(const std::string &what, const std::string &ours, const std::string &baseline, const std::string &ratio,
             const std::string &target, bool met);
    // A row of two times, each printed by `time` with its page faults, and
    // the target that ours take at most `maximum` times the baseline's.
    void timeRow(const std::string &what, const Result &ours, const Result &baseline, const std::string &baselineNote,
                 std::string (*time)(double seconds), double maximum, int ratioDecimals = 2);
};

// Runs the registered benchmarks (5 interleaved repetitions unless the
// command line says otherwise), then lets `report` write the rows.
int runAndReport(int argc, char **argv, const std::function<void(const Results &, Table &)> &report);

std::string milliseconds(double seconds);
std::string microseconds(double seconds);
std::string nanoseconds(double seconds);
std::string fixed(double value, int decimals = 2);
// ", N page faults" from the result's "faults" counter.
std::string faults(const Result &result);

} // namespace OrvelBench
