#include "CallTimer.hpp"

#include <algorithm>
#include <iomanip>
#include <sstream>
#include <vector>

namespace kcall {

namespace {

using Clock = std::chrono::steady_clock;

double secondsOf(Clock::duration d) {
    return std::chrono::duration<double>(d).count();
}

double median(std::vector<double> values) {
    const std::size_t middle = values.size() / 2;
    std::nth_element(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(middle),
                     values.end());
    const double upper = values[middle];
    if (values.size() % 2 != 0) return upper;
    return (upper + *std::max_element(values.begin(),
                                      values.begin() + static_cast<std::ptrdiff_t>(middle))) /
           2;
}

}  // namespace

CallTiming timeCall(std::string call, const std::function<void()>& once,
                    std::chrono::nanoseconds budget) {
    const Clock::time_point start = Clock::now();
    once();
    const Clock::duration first = Clock::now() - start;
    // A batch lasts about a thousandth of the budget, judged by the first run, which is the
    // slowest if anything; a call slower than that is a batch of its own.
    const Clock::duration batch = std::chrono::duration_cast<Clock::duration>(budget / 1000);
    const std::size_t runsPerBatch =
        first >= batch ? 1 : static_cast<std::size_t>(batch / std::max(first, Clock::duration(1)));
    std::vector<double> perRun;
    while (Clock::now() - start < budget) {
        const Clock::time_point batchStart = Clock::now();
        for (std::size_t i = 0; i < runsPerBatch; ++i) once();
        perRun.push_back(secondsOf(Clock::now() - batchStart) / static_cast<double>(runsPerBatch));
    }
    // A call that alone outlasts the budget is timed by that one run.
    if (perRun.empty()) return {std::move(call), secondsOf(first), 1};
    return {std::move(call), median(perRun), perRun.size() * runsPerBatch};
}

std::string durationText(double seconds) {
    constexpr struct {
        double scale;
        const char* unit;
    } units[] = {{1, "s"}, {1e-3, "ms"}, {1e-6, "µs"}, {1e-9, "ns"}};
    for (const auto& u : units) {
        // 999.7 ms shows as 1.00 s rather than as 1e+03 ms.
        if (seconds >= 0.9995 * u.scale || u.scale == 1e-9) {
            std::ostringstream text;
            text << std::setprecision(3) << seconds / u.scale << ' ' << u.unit;
            return text.str();
        }
    }
    return {};
}

}  // namespace kcall
