// What lifting a scalar kernel over arrays costs, against NumPy and plain C++ loops timed in the
// same run. Arrays hold 10^7 doubles unless a name says otherwise; /threads:N is the oneTBB
// thread limit of the run.
//
//   LiftedAddFresh       double add(double, double) through its lifted entry, on two arrays
//                        that the caller keeps, so that the output is a new array each call
//   LiftedAddInPlace     the same with the first input a temporary: it is overwritten and comes
//                        back as the result, which is the next call's input
//   LiftedExp            a compute-bound kernel (libm exp) on one input, fresh output
//   LiftedBroadcast      add of 1000-by-1 with 1-by-10000, the general broadcast path, fresh output
//   PlainLoopAdd         a plain loop calling add through the same function pointer, into a new
//                        array; PlainLoopAddInline the same with the addition inlined, which the
//                        compiler vectorises
//   LiftedAdd100, PlainLoopAdd100, PlainLoopAdd100Fresh
//                        100 elements: the serial path, with its fresh output, against a plain
//                        loop through the same function pointer into a buffer, and the same loop
//                        into a new array
//
// After the runs numpy_elementwise.py times np.add, and the ratios that the goals are stated in
// are printed. Times are real (wall-clock) times: the work runs on several threads.
#include <benchmark/benchmark.h>

#include <oneapi/tbb/global_control.h>

#include <cmath>
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <vector>

#include <boost/variant/get.hpp>

#include <builtin/calling/ElementWise.hpp>
#include <builtin/variants/BuiltinVariant.hpp>
#include <ka/ka.hpp>

#include "RecordingReporter.hpp"

namespace {

using namespace Norvane::builtin;
using builtinreg::detail::elementWiseEntry;

constexpr std::size_t elements = 10'000'000;

[[gnu::noinline]] double add(double a, double b) {
    return a + b;
}
[[gnu::noinline]] double exponential(double x) {
    return std::exp(x);
}

// An element-wise variant whose kernel may run on workers: no flag set.
template <std::size_t Inputs>
BuiltinVariant liftedVariant(NativeEntry kernel) {
    using V = BuiltinVariant;
    return BuiltinVariant({.functionDescriptor = {&elementWiseEntry<double, Inputs>, kernel,
                                                  JIT_CALLING_CONVENTION::Direct},
                           .mayCallIntoKeldor = V::CallsIntoKeldor::NO,
                           .mayRaiseWarnings = V::HasWarnings::NO,
                           .mayThrowErrors = V::HasExceptions::NO,
                           .mayHaveSideEffects = V::HasSideEffects::NO,
                           .cppFunctionName = "kernel",
                           .keldorFunctionName = "kernel",
                           .dominantClass = "double",
                           .isElementWise = V::IsElementWise::YES});
}

ka::ArrayPtr randomArray(const ka::Dims& dims) {
    std::size_t count = 1;
    for (std::size_t size : dims) count *= size;
    std::vector<double> values(count);
    std::mt19937_64 random(count);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    for (double& value : values) value = uniform(random);
    return ka::createFrom<double>(dims, values);
}

// A further reference for an argument: the caller keeps the array, so it is never overwritten.
Parameter shared(const ka::ArrayPtr& array) {
    matrix::takeReference(array.get());
    return Parameter(array.get());
}

ka::ArrayPtr callLifted(BuiltinVariant& variant, const ParameterList& arguments) {
    bool pending = false;
    const Parameter result = variant.functionDescriptor.typedEntry(&variant.functionDescriptor,
                                                                   nullptr, pending, arguments);
    return ka::ArrayPtr(boost::get<kaArray_tag*>(result));
}

tbb::global_control threadLimit(const benchmark::State& state) {
    return tbb::global_control(tbb::global_control::max_allowed_parallelism,
                               static_cast<std::size_t>(state.range(0)));
}

void setElements(benchmark::State& state, std::size_t perCall) {
    state.SetItemsProcessed(state.iterations() * static_cast<benchmark::IterationCount>(perCall));
}

// --- lifted calls ------------------------------------------------------------------------------

void LiftedAddFresh(benchmark::State& state) {
    const auto limit = threadLimit(state);
    BuiltinVariant variant = liftedVariant<2>(reinterpret_cast<NativeEntry>(&add));
    const ka::ArrayPtr a = randomArray({elements, 1});
    const ka::ArrayPtr b = randomArray({elements, 1});
    for (auto _ : state) {
        ka::ArrayPtr result = callLifted(variant, {shared(a), shared(b)});
        benchmark::DoNotOptimize(result.get());
    }
    setElements(state, elements);
}

void LiftedAddInPlace(benchmark::State& state) {
    const auto limit = threadLimit(state);
    BuiltinVariant variant = liftedVariant<2>(reinterpret_cast<NativeEntry>(&add));
    ka::ArrayPtr x = randomArray({elements, 1});
    const ka::ArrayPtr b = randomArray({elements, 1});
    for (auto _ : state) {
        kaArray_tag* const before = x.get();
        x = callLifted(variant, {Parameter(x.release()), shared(b)});
        if (x.get() != before) state.SkipWithError("the temporary input was not reused");
    }
    setElements(state, elements);
}

void LiftedExp(benchmark::State& state) {
    const auto limit = threadLimit(state);
    BuiltinVariant variant = liftedVariant<1>(reinterpret_cast<NativeEntry>(&exponential));
    const ka::ArrayPtr x = randomArray({elements, 1});
    for (auto _ : state) {
        ka::ArrayPtr result = callLifted(variant, {shared(x)});
        benchmark::DoNotOptimize(result.get());
    }
    setElements(state, elements);
}

void LiftedBroadcast(benchmark::State& state) {
    const auto limit = threadLimit(state);
    BuiltinVariant variant = liftedVariant<2>(reinterpret_cast<NativeEntry>(&add));
    const ka::ArrayPtr m = randomArray({1000, 1});
    const ka::ArrayPtr k = randomArray({1, 10000});
    for (auto _ : state) {
        ka::ArrayPtr result = callLifted(variant, {shared(m), shared(k)});
        benchmark::DoNotOptimize(result.get());
    }
    setElements(state, elements);
}

void LiftedAdd100(benchmark::State& state) {
    BuiltinVariant variant = liftedVariant<2>(reinterpret_cast<NativeEntry>(&add));
    const ka::ArrayPtr a = randomArray({100, 1});
    const ka::ArrayPtr b = randomArray({100, 1});
    for (auto _ : state) {
        ka::ArrayPtr result = callLifted(variant, {shared(a), shared(b)});
        benchmark::DoNotOptimize(result.get());
    }
    setElements(state, 100);
}

// --- plain loops -------------------------------------------------------------------------------

template <bool Inline>
void plainLoopAdd(benchmark::State& state) {
    double (*volatile kernel)(double, double) = &add;
    const ka::ArrayPtr a = randomArray({elements, 1});
    const ka::ArrayPtr b = randomArray({elements, 1});
    const std::size_t dims[] = {elements, 1};
    for (auto _ : state) {
        ka::ArrayPtr result = matrix::detail::do_create_uninitnumeric(dims, kaDOUBLE_CLASS, kaREAL);
        const double* x = static_cast<const double*>(matrix::data(a.get()));
        const double* y = static_cast<const double*>(matrix::data(b.get()));
        double* out = static_cast<double*>(matrix::data(result.get()));
        if constexpr (Inline) {
            for (std::size_t i = 0; i < elements; ++i) out[i] = x[i] + y[i];
        } else {
            double (*const function)(double, double) = kernel;
            for (std::size_t i = 0; i < elements; ++i) out[i] = function(x[i], y[i]);
        }
        benchmark::DoNotOptimize(result.get());
    }
    setElements(state, elements);
}

void PlainLoopAdd(benchmark::State& state) {
    plainLoopAdd<false>(state);
}
void PlainLoopAddInline(benchmark::State& state) {
    plainLoopAdd<true>(state);
}

// Fresh: the output is a new 100-by-1 array, as the lifted call's is; otherwise a buffer.
template <bool Fresh>
void plainLoopAdd100(benchmark::State& state) {
    double (*volatile kernel)(double, double) = &add;
    const ka::ArrayPtr a = randomArray({100, 1});
    const ka::ArrayPtr b = randomArray({100, 1});
    const std::size_t dims[] = {100, 1};
    std::vector<double> buffer(100);
    for (auto _ : state) {
        ka::ArrayPtr result;
        double* out = buffer.data();
        if constexpr (Fresh) {
            result = matrix::detail::do_create_uninitnumeric(dims, kaDOUBLE_CLASS, kaREAL);
            out = static_cast<double*>(matrix::data(result.get()));
        }
        const double* x = static_cast<const double*>(matrix::data(a.get()));
        const double* y = static_cast<const double*>(matrix::data(b.get()));
        double (*const function)(double, double) = kernel;
        for (std::size_t i = 0; i < 100; ++i) out[i] = function(x[i], y[i]);
        benchmark::DoNotOptimize(out);
        benchmark::ClobberMemory();
    }
    setElements(state, 100);
}

void PlainLoopAdd100(benchmark::State& state) {
    plainLoopAdd100<false>(state);
}
void PlainLoopAdd100Fresh(benchmark::State& state) {
    plainLoopAdd100<true>(state);
}

void withThreads(benchmark::internal::Benchmark* b, std::initializer_list<int> limits) {
    b->ArgName("threads")->UseRealTime()->Unit(benchmark::kMillisecond);
    for (int limit : limits) b->Arg(limit);
}

BENCHMARK(LiftedAddFresh)->Apply([](auto* b) { withThreads(b, {1, 2}); });
BENCHMARK(LiftedAddInPlace)->Apply([](auto* b) { withThreads(b, {1, 2}); });
BENCHMARK(LiftedExp)->Apply([](auto* b) { withThreads(b, {1, 2}); });
BENCHMARK(LiftedBroadcast)->Apply([](auto* b) { withThreads(b, {1, 2}); });
BENCHMARK(PlainLoopAdd)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(PlainLoopAddInline)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(LiftedAdd100)->UseRealTime();
BENCHMARK(PlainLoopAdd100)->UseRealTime();
BENCHMARK(PlainLoopAdd100Fresh)->UseRealTime();

// --- ratios ------------------------------------------------------------------------------------

// The medians that numpy_elementwise.py prints, in milliseconds; empty if it could not run.
std::map<std::string, double> numpyMilliseconds() {
    std::map<std::string, double> times;
    const std::string command = std::string(NUMPY_PYTHON) + " " + NUMPY_ELEMENTWISE_SCRIPT;
    FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) return times;
    char name[64];
    double value = 0;
    while (std::fscanf(pipe, "%63s %lf", name, &value) == 2) times[name] = value;
    ::pclose(pipe);
    return times;
}

struct Ratio {
    const char* what;
    double numerator;
    double denominator;
    const char* goal;
};

void printRatio(const Ratio& r) {
    if (r.numerator <= 0 || r.denominator <= 0) {
        std::printf("  %-58s not measured in this run\n", r.what);
        return;
    }
    std::printf("  %-58s %6.3f   (goal: %s)\n", r.what, r.numerator / r.denominator, r.goal);
}

}  // namespace

int main(int argc, char** argv) {
    benchsupport::RecordingReporter reporter;
    if (!benchsupport::runBenchmarks(argc, argv, reporter)) return 1;

    const auto real = [&](const char* name) { return reporter.times[name].real; };  // ms, or ns
    const std::map<std::string, double> numpy = numpyMilliseconds();
    const auto numpyTime = [&](const char* name) {
        const auto found = numpy.find(name);
        return found == numpy.end() ? 0.0 : found->second;
    };
    std::printf("\nNumPy %s, one thread (median ms per call):", NUMPY_ELEMENTWISE_SCRIPT);
    for (const auto& [name, value] : numpy) std::printf(" %s %.3f", name.c_str(), value);
    std::printf("%s\n\nRatios of real times (medians when repeated):\n",
                numpy.empty() ? " could not be run" : "");
    const Ratio ratios[] = {
        {"LiftedAddFresh/threads:2 / np.add(a, b)", real("LiftedAddFresh/threads:2"),
         numpyTime("add_fresh"), "at most 1.0"},
        {"LiftedAddInPlace/threads:2 / np.add(a, b, out=c)", real("LiftedAddInPlace/threads:2"),
         numpyTime("add_out"), "at most 1.5"},
        {"LiftedExp/threads:1 / LiftedExp/threads:2 (speed-up)", real("LiftedExp/threads:1"),
         real("LiftedExp/threads:2"), "at least 1.85"},
        {"LiftedBroadcast/threads:2 / LiftedAddFresh/threads:2", real("LiftedBroadcast/threads:2"),
         real("LiftedAddFresh/threads:2"), "at most 1.3"},
        {"LiftedBroadcast/threads:2 / np.add(m, k)", real("LiftedBroadcast/threads:2"),
         numpyTime("add_broadcast"), "at most 1.0"},
        {"LiftedAddFresh/threads:1 / PlainLoopAdd", real("LiftedAddFresh/threads:1"),
         real("PlainLoopAdd"), "none; plain C++ baseline"},
        {"LiftedAddFresh/threads:2 / PlainLoopAddInline", real("LiftedAddFresh/threads:2"),
         real("PlainLoopAddInline"), "none; plain C++ baseline"},
        {"LiftedAdd100 / PlainLoopAdd100", real("LiftedAdd100"), real("PlainLoopAdd100"), "report"},
        {"LiftedAdd100 / PlainLoopAdd100Fresh", real("LiftedAdd100"), real("PlainLoopAdd100Fresh"),
         "report"},
    };
    for (const Ratio& ratio : ratios) printRatio(ratio);
    if (real("LiftedAdd100") > 0 && real("PlainLoopAdd100") > 0) {
        std::printf(
            "  100 elements, ns per element: lifted %.2f, plain loop %.2f, plain loop "
            "with a new output %.2f\n",
            real("LiftedAdd100") / 100, real("PlainLoopAdd100") / 100,
            real("PlainLoopAdd100Fresh") / 100);
    }
    return 0;
}
