#include "BenchTable.hpp"

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

namespace OrvelBench {
namespace {

class CollectingReporter : public benchmark::ConsoleReporter {
public:
    explicit CollectingReporter(Results &results) : results_(results) {}

    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs) {
            const bool median = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
            const bool single = run.run_type == Run::RT_Iteration && run.repetitions <= 1;
            if (run.error_occurred || !(median || single))
                continue;
            Result &result = results_[run.run_name.str()];
            result.seconds = run.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
            for (const auto &[name, counter] : run.counters)
                result.counters[name] = counter.value;
        }
        ConsoleReporter::ReportRuns(runs);
    }

private:
    Results &results_;
};

bool hasFlag(int argc, char **argv, const char *flag)
{
    for (int i = 1; i < argc; ++i)
        if (std::strncmp(argv[i], flag, std::strlen(flag)) == 0)
            return true;
    return false;
}

} // namespace

namespace {

long minorFaults()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_minflt;
}

} // namespace

FaultCounter::FaultCounter(benchmark::State &state) : state_(state), start_(minorFaults()) {}

FaultCounter::~FaultCounter()
{
    const auto iterations = static_cast<double>(std::max<benchmark::IterationCount>(state_.iterations(), 1));
    state_.counters["faults"] = static_cast<double>(minorFaults() - start_) / iterations;
}

std::string faults(const Result &result)
{
    return ", " + fixed(result.counter("faults"), 0) + " page faults";
}

const Result &find(const Results &results, const std::string &prefix)
{
    static const Result none;
    const auto found = results.lower_bound(prefix);
    if (found == results.end() || found->first.compare(0, prefix.size(), prefix) != 0)
        return none;
    return found->second;
}

void Table::row(const std::string &what, const std::string &ours, const std::string &baseline,
                const std::string &ratio, const std::string &target, bool met)
{
    std::printf("\n%s\n  ours %s, baseline %s, ratio %s; target %s: %s\n", what.c_str(), ours.c_str(),
                baseline.c_str(), ratio.c_str(), target.c_str(), met ? "met" : "NOT met");
    std::printf("ROW|%s|%s|%s|%s|%s|%s\n", what.c_str(), ours.c_str(), baseline.c_str(), ratio.c_str(),
                target.c_str(), met ? "met" : "NOT met");
    std::fflush(stdout);
}

void Table::timeRow(const std::string &what, const Result &ours, const Result &baseline,
                    const std::string &baselineNote, std::string (*time)(double seconds), double maximum,
                    int ratioDecimals)
{
    const double ratio = ours.seconds / baseline.seconds;
    row(what, time(ours.seconds) + faults(ours), time(baseline.seconds) + faults(baseline) + baselineNote,
        fixed(ratio, ratioDecimals), "ratio <= " + fixed(maximum, ratioDecimals), ratio <= maximum);
}

int runAndReport(int argc, char **argv, const std::function<void(const Results &, Table &)> &report)
{
    std::vector<char *> arguments(argv, argv + argc);
    std::string repetitions = "--benchmark_repetitions=5";
    std::string interleaving = "--benchmark_enable_random_interleaving=true";
    std::string aggregates = "--benchmark_report_aggregates_only=true";
    if (!hasFlag(argc, argv, "--benchmark_repetitions")) {
        arguments.push_back(repetitions.data());
        arguments.push_back(interleaving.data());
        arguments.push_back(aggregates.data());
    }
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data()))
        return 1;
    Results results;
    CollectingReporter reporter(results);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    Table table;
    report(results, table);
    return 0;
}

std::string fixed(double value, int decimals)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

std::string milliseconds(double seconds)
{
    return fixed(seconds * 1e3) + " ms";
}

std::string microseconds(double seconds)
{
    return fixed(seconds * 1e6, 1) + " µs";
}

std::string nanoseconds(double seconds)
{
    return fixed(seconds * 1e9, 1) + " ns";
}

} // namespace OrvelBench
