// The constructors of the sample module. Each throws for sizes or bounds it cannot honour, and
// is declared so; one native function per count of arguments, so that a call is matched, and
// refused, by the declarations like any other.
#include "Constructors.hpp"

#include <unistd.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <mutex>
#include <new>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <builtin/declare/declare.hpp>
#include <ka/ka.hpp>

namespace sample {

namespace {

using namespace Norvane::builtin;
using namespace Norvane::builtin::declare;

// Whole numbers up to here are exact in a double, so a size or seed above it was not meant.
constexpr double kLargestWhole = 9007199254740992.0;  // 2^53

// As the language writes numbers: Inf, -Inf and NaN by name.
std::string numberText(double x) {
    if (std::isnan(x)) return "NaN";
    if (std::isinf(x)) return x > 0 ? "Inf" : "-Inf";
    std::ostringstream text;
    text << x;
    return text.str();
}

// Refuses, before anything is allocated, an array that the machine could never hold: asking
// for it would only end in an allocation failure, or under a sanitizer in a stop.
void requireMemoryFor(const char* name, double elements) {
    const double memory = static_cast<double>(::sysconf(_SC_PHYS_PAGES)) *
                          static_cast<double>(::sysconf(_SC_PAGESIZE));
    if (elements * sizeof(double) > memory) {
        throw std::invalid_argument(std::string(name) + ": an array of " + numberText(elements) +
                                    " elements needs more memory than this machine has");
    }
}

// The dimensions that the sizes ask for, checked.
ka::Dims dimensionsOf(const char* name, const std::vector<double>& sizes) {
    double elements = 1;
    ka::Dims dims;
    for (const double size : sizes) {
        if (!(size >= 0 && size <= kLargestWhole && std::floor(size) == size)) {
            throw std::invalid_argument(std::string(name) +
                                        ": sizes are whole numbers of 0 or more, not " +
                                        numberText(size));
        }
        elements *= size;
        dims.push_back(static_cast<std::size_t>(size));
    }
    requireMemoryFor(name, elements);
    return dims;
}

// The generator of rand: one per process, at a fixed seed until rand("seed", k) sets another,
// so that a session's numbers are the same each time it runs.
struct RandomState {
    std::mutex mutex;
    std::mt19937_64 generator{kDefaultSeed};
    static constexpr std::uint64_t kDefaultSeed = 0;
};

RandomState& randomState() {
    static RandomState state;
    return state;
}

enum class Fill { ZEROS, ONES, RANDOM };

constexpr const char* nameOf(Fill fill) {
    return fill == Fill::ZEROS ? "zeros" : fill == Fill::ONES ? "ones" : "rand";
}

template <Fill F>
ka::ArrayPtr filled(const std::vector<double>& sizes) {
    const ka::Dims dims = dimensionsOf(nameOf(F), sizes);
    try {
        if constexpr (F == Fill::ZEROS) return ka::createNumeric(kaDOUBLE_CLASS, dims);
        ka::ArrayPtr array = matrix::detail::do_create_uninitnumeric(dims, kaDOUBLE_CLASS, kaREAL);
        auto* const data = static_cast<double*>(matrix::data(array.get()));
        const std::size_t n = matrix::numberOfElements(array.get());
        if constexpr (F == Fill::ONES) {
            std::fill_n(data, n, 1.0);
        } else {
            RandomState& state = randomState();
            const std::lock_guard lock(state.mutex);
            // The top 53 bits of a draw, scaled: every double of [0, 1) with 53 bits, equally
            // likely.
            for (std::size_t i = 0; i < n; ++i)
                data[i] = static_cast<double>(state.generator() >> 11) * 0x1.0p-53;
        }
        return array;
    } catch (const std::bad_alloc&) {
        throw std::invalid_argument(std::string(nameOf(F)) + ": not enough memory for the array");
    }
}

// One native function per form; n alone is n-by-n, and no size at all is 1-by-1.
template <Fill F>
ka::ArrayPtr filledScalar() {
    return filled<F>({1, 1});
}
template <Fill F>
ka::ArrayPtr filledSquare(double n) {
    return filled<F>({n, n});
}
template <Fill F>
ka::ArrayPtr filled2(double m, double n) {
    return filled<F>({m, n});
}
template <Fill F>
ka::ArrayPtr filled3(double m, double n, double p) {
    return filled<F>({m, n, p});
}
template <Fill F>
ka::ArrayPtr filledOfSize(Row<double> sizes) {
    return filled<F>(std::vector<double>(sizes.begin(), sizes.end()));
}

template <Fill F, class... Option>
void declareFilled(Module& module, const Option&... options) {
    module.builtin(nameOf(F))
        .def(&filledScalar<F>, options..., cppName(nameOf(F)))
        .def(&filledSquare<F>, options..., cppName(nameOf(F)))
        .def(&filled2<F>, options..., cppName(nameOf(F)))
        .def(&filled3<F>, options..., cppName(nameOf(F)))
        .def(&filledOfSize<F>, options..., cppName(nameOf(F)));
}

void seedRandom(double seed) {
    if (!(seed >= 0 && seed <= kLargestWhole && std::floor(seed) == seed)) {
        throw std::invalid_argument("rand: a seed is a whole number from 0 to 2^53, not " +
                                    numberText(seed));
    }
    RandomState& state = randomState();
    const std::lock_guard lock(state.mutex);
    state.generator.seed(static_cast<std::uint64_t>(seed));
}

// --- ranges -----------------------------------------------------------------------------------

// a:s:b as users expect it: the count is that of exact arithmetic, read with a tolerance of a
// few rounding errors, and when b is reached it is the last element exactly. Such a range
// counts up from a in its first half and down from b in its second, so that neither end drifts
// by the rounding of many steps: 0:0.1:1 has 11 elements, the last 1. One that stops short of b
// counts up from a throughout.
ka::ArrayPtr range(double a, double s, double b) {
    if (std::isnan(a) || std::isnan(s) || std::isnan(b))
        throw std::invalid_argument("colon: a range cannot start, step or end at NaN");
    if (s == 0) throw std::invalid_argument("colon: the step of a range cannot be 0");
    const double steps = (b - a) / s;
    if (steps < 0) return ka::createNumeric(kaDOUBLE_CLASS, {1, 0});
    if (!std::isfinite(steps))
        throw std::invalid_argument("colon: a range " + numberText(a) + ":" + numberText(s) + ":" +
                                    numberText(b) + " has no end");
    const double tolerance = 4 * DBL_EPSILON * std::max(1.0, steps);
    const double count = std::floor(steps + tolerance) + 1;
    requireMemoryFor("colon", count);
    const auto n = static_cast<std::size_t>(count);
    // With one element the step is never taken, and may be infinite.
    const double last = n == 1 ? a : a + static_cast<double>(n - 1) * s;
    // An infinite step has one element, a, whatever b is.
    const bool reachesB =
        last == b || (std::isfinite(s) && std::abs(last - b) <= tolerance * std::abs(s));

    ka::ArrayPtr result = matrix::detail::do_create_uninitnumeric(std::vector<std::size_t>{1, n},
                                                                  kaDOUBLE_CLASS, kaREAL);
    auto* const data = static_cast<double*>(matrix::data(result.get()));
    const std::size_t up = reachesB ? n / 2 : n;
    // Counted as i steps from one end; no step is taken at the end itself.
    const auto from = [s](double end, std::size_t i, double direction) {
        return i == 0 ? end : end + direction * static_cast<double>(i) * s;
    };
    for (std::size_t i = 0; i < up; ++i) data[i] = from(a, i, 1);
    for (std::size_t i = up; i < n; ++i) data[i] = from(b, n - 1 - i, -1);
    return result;
}

ka::ArrayPtr rangeByOne(double a, double b) {
    return range(a, 1, b);
}

}  // namespace

void declareConstructors(Module& module) {
    declareFilled<Fill::ZEROS>(module, pure, throws);
    declareFilled<Fill::ONES>(module, pure, throws);
    // rand changes the generator's state: a side effect, which keeps the engine from reordering
    // or dropping its calls.
    declareFilled<Fill::RANDOM>(module, noCallbacks, throws);
    module.builtin("rand").def(&seedRandom, noCallbacks, throws, flag(0, "seed"),
                               cppName("randSeed"));
    module.builtin("colon")
        .def(&rangeByOne, pure, throws, cppName("colon"))
        .def(&range, pure, throws, cppName("colon"));
}

}  // namespace sample
