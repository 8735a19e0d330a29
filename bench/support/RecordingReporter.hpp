// A console reporter that also keeps each benchmark's time per iteration and counters, so that
// a benchmark program can print ratios against a baseline measured in the same run. With
// --benchmark_repetitions the median of the repetitions is kept, else the single run.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace benchsupport {

class RecordingReporter : public benchmark::ConsoleReporter {
public:
    struct Times {
        double real = 0;
        double cpu = 0;
    };

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            const std::string key = keyOf(run);
            if (run.run_type == Run::RT_Aggregate) {
                if (run.aggregate_name != "median") continue;
                medians_.insert(key);
            } else if (medians_.count(key) != 0) {
                continue;
            }
            times[key] = {run.GetAdjustedRealTime(), run.GetAdjustedCPUTime()};
            counters[key] = run.counters;
        }
        ConsoleReporter::ReportRuns(runs);
    }

    // The benchmark's function name with its arguments: "InterpretedCall", "BuildLists/200".
    static std::string keyOf(const Run& run) {
        const std::string& args = run.run_name.args;
        return args.empty() ? run.run_name.function_name : run.run_name.function_name + "/" + args;
    }

    // Keyed by keyOf.
    std::map<std::string, Times> times;
    std::map<std::string, benchmark::UserCounters> counters;

private:
    std::set<std::string> medians_;
};

// Runs the benchmarks that the command line selects, recording them. False (after a message)
// if the command line has arguments that the benchmark library does not know.
inline bool runRecorded(int& argc, char** argv, RecordingReporter& reporter) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return false;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return true;
}

}  // namespace benchsupport
