// How long one call takes, as kcall --time says it: the call is run again and again for about
// the time given, in batches long enough that reading the clock costs nothing worth counting,
// and the answer is the median batch divided by its runs, which one slow run (a page fault, the
// machine busy elsewhere) does not move. The figure is wall time, as NumPy's timeit measures.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>

namespace kcall {

struct CallTiming {
    std::string call;      // what was timed: "plus(double 1x10000000, double 1x1)"
    double seconds = 0;    // the median time of one run
    std::size_t runs = 0;  // how many runs were timed
};

// Times `once`, which the caller has just run once successfully. What it throws goes through.
CallTiming timeCall(std::string call, const std::function<void()>& once,
                    std::chrono::nanoseconds budget);

// "12.3 ms", "845 ns", "1.02 s": three significant digits and the unit that suits.
std::string durationText(double seconds);

}  // namespace kcall
