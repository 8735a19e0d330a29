// A console reporter that also keeps the times of each benchmark, so that a program can print
// ratios between benchmarks of the same run after them. A benchmark is named by its function
// and its arguments ("LiftedAdd/threads:2"); with --benchmark_repetitions its figures are the
// medians of the repetitions. runBenchmarks below is the whole start of such a program.
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
        double real = 0;  // per iteration, in the benchmark's time unit
        double cpu = 0;
    };

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            const std::string name = nameOf(run);
            if (run.run_type == Run::RT_Aggregate) {
                if (run.aggregate_name != "median") continue;
                medians_.insert(name);
            } else if (medians_.count(name) != 0) {
                continue;
            }
            times[name] = {run.GetAdjustedRealTime(), run.GetAdjustedCPUTime()};
            counters[name] = run.counters;
        }
        ConsoleReporter::ReportRuns(runs);
    }

    std::map<std::string, Times> times;
    std::map<std::string, benchmark::UserCounters> counters;

private:
    static std::string nameOf(const Run& run) {
        const auto& name = run.run_name;
        return name.args.empty() ? name.function_name : name.function_name + "/" + name.args;
    }

    std::set<std::string> medians_;
};

// Runs the benchmarks that the command line selects, reporting to `reporter`. False if the
// command line has arguments that Google Benchmark does not know.
inline bool runBenchmarks(int argc, char** argv, RecordingReporter& reporter) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return false;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return true;
}

}  // namespace benchsupport
