// What lifting a scalar kernel over arrays costs, against NumPy and plain C++ loops timed in the
// same run. Arrays hold 10^7 doubles uniform in [-1, 1] unless a name says otherwise;
// /threads:N is the oneTBB thread limit of the run.
//
//   DeclaredAdd          double add(double, double) declared element-wise as a callable (its
//                        loops call it inline), called through its typed entry on two arrays
//                        that the caller keeps, so that the output is a new array each call
//   DeclaredAddInPlace   the same with the first input a temporary: it is overwritten and comes
//                        back as the result, which is the next call's input
//   DeclaredBroadcast    add of 1000-by-1 with 1-by-10000, the general broadcast path
//   DeclaredClamp        double clamp(double, double, double) over three arrays
//   PointerAdd           add through the library's entry for kernels known only at run time,
//                        which calls it through a pointer for each element
//   SampleExp, SampleSin the sample module's exp and sin through BuiltinFcn::invoke: SLEEF's
//                        vector functions, a run at a time
//   SamplePlus100        the sample module's plus of two 100-by-1 doubles through invoke
//   PlainLoopAdd         a plain loop calling add through a function pointer, into a new array;
//                        PlainLoopAddInline the same with the addition inlined
//
// After the runs numpy_elementwise.py times NumPy's ufuncs on the same sizes, and the ratios
// that the goals are stated in are printed. Times are real (wall-clock) times.
#include <benchmark/benchmark.h>

#include <oneapi/tbb/global_control.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <vector>

#include <boost/variant/get.hpp>

#include <builtin/calling/ElementWise.hpp>
#include <builtin/declare/declare.hpp>
#include <ka/ka.hpp>

#include "RecordingReporter.hpp"
#include "SampleModules.hpp"

namespace {

using namespace Norvane::builtin;
using builtinreg::detail::elementWiseEntry;

constexpr std::size_t elements = 10'000'000;

// Called through a pointer, it is never inlined anyway; declared as a callable, the loops inline
// it.
double add(double a, double b) {
    return a + b;
}

double clampBetween(double x, double low, double high) {
    return std::min(std::max(x, low), high);
}

// The element-wise variant of a builtin declared as the README shows, whose kernel may run on
// workers; the lists live as long as the program.
const BuiltinVariant& declaredVariant(declare::Builtin builtin) {
    static std::vector<std::unique_ptr<declare::DeclaredBuiltin>> kept;
    kept.push_back(std::make_unique<declare::DeclaredBuiltin>(std::move(builtin)));
    for (const BuiltinVariant& v : kept.back()->lists().all) {
        if (v.inputArgTypes.size() == 3 || v.isElementWise == BuiltinVariant::IsElementWise::YES) {
            if (v.inputArgTypes.size() != 3 ||
                std::holds_alternative<types::KaArrayTypes>(v.inputArgTypes.back())) {
                return v;
            }
        }
    }
    std::abort();
}

const BuiltinVariant& declaredAdd() {
    static const BuiltinVariant& variant = declaredVariant(
        std::move(declare::Builtin("add").def<&add>(declare::pure, declare::elementwise)));
    return variant;
}

const BuiltinVariant& declaredClamp() {
    static const BuiltinVariant& variant = declaredVariant(std::move(
        declare::Builtin("clamp").def<&clampBetween>(declare::pure, declare::elementwise)));
    return variant;
}

// The library's own entry for a kernel known only at run time.
const BuiltinVariant& pointerAdd() {
    using V = BuiltinVariant;
    static const BuiltinVariant variant(
        {.functionDescriptor = {&elementWiseEntry<double, 2>, reinterpret_cast<NativeEntry>(&add),
                                JIT_CALLING_CONVENTION::Direct},
         .mayCallIntoKeldor = V::CallsIntoKeldor::NO,
         .mayRaiseWarnings = V::HasWarnings::NO,
         .mayThrowErrors = V::HasExceptions::NO,
         .mayHaveSideEffects = V::HasSideEffects::NO,
         .cppFunctionName = "add",
         .keldorFunctionName = "add",
         .dominantClass = "double",
         .isElementWise = V::IsElementWise::YES});
    return variant;
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

ka::ArrayPtr callEntry(const BuiltinVariant& variant, const ParameterList& arguments) {
    bool pending = false;
    auto* descriptor = const_cast<OrroFunctionDescriptor*>(&variant.functionDescriptor);
    const Parameter result = descriptor->typedEntry(descriptor, nullptr, pending, arguments);
    return ka::ArrayPtr(boost::get<kaArray_tag*>(result));
}

tbb::global_control threadLimit(const benchmark::State& state) {
    return tbb::global_control(tbb::global_control::max_allowed_parallelism,
                               static_cast<std::size_t>(state.range(0)));
}

void setElements(benchmark::State& state, std::size_t perCall) {
    state.SetItemsProcessed(state.iterations() * static_cast<benchmark::IterationCount>(perCall));
}

// --- typed entries -----------------------------------------------------------------------------

void fresh(benchmark::State& state, const BuiltinVariant& variant,
           const std::vector<ka::Dims>& shapes, std::size_t count) {
    const auto limit = threadLimit(state);
    std::vector<ka::ArrayPtr> inputs;
    for (const ka::Dims& dims : shapes) inputs.push_back(randomArray(dims));
    for (auto _ : state) {
        ParameterList arguments;
        for (const ka::ArrayPtr& input : inputs) arguments.push_back(shared(input));
        ka::ArrayPtr result = callEntry(variant, arguments);
        benchmark::DoNotOptimize(result.get());
    }
    setElements(state, count);
}

void DeclaredAdd(benchmark::State& state) {
    fresh(state, declaredAdd(), {{elements, 1}, {elements, 1}}, elements);
}

void DeclaredBroadcast(benchmark::State& state) {
    fresh(state, declaredAdd(), {{1000, 1}, {1, 10000}}, elements);
}

void DeclaredClamp(benchmark::State& state) {
    fresh(state, declaredClamp(), {{elements, 1}, {elements, 1}, {elements, 1}}, elements);
}

void PointerAdd(benchmark::State& state) {
    fresh(state, pointerAdd(), {{elements, 1}, {elements, 1}}, elements);
}

void DeclaredAddInPlace(benchmark::State& state) {
    const auto limit = threadLimit(state);
    ka::ArrayPtr x = randomArray({elements, 1});
    const ka::ArrayPtr b = randomArray({elements, 1});
    for (auto _ : state) {
        kaArray_tag* const before = x.get();
        x = callEntry(declaredAdd(), {Parameter(x.release()), shared(b)});
        if (x.get() != before) state.SkipWithError("the temporary input was not reused");
    }
    setElements(state, elements);
}

// --- the sample module through invoke ----------------------------------------------------------

void sampleCall(benchmark::State& state, const char* name, const std::vector<ka::Dims>& shapes,
                std::size_t count) {
    const auto limit = threadLimit(state);
    const BuiltinFcn& fcn = *benchsupport::sampleModules().find(name);
    std::vector<ka::ArrayPtr> inputs;
    std::vector<kaArray_tag*> prhs;
    for (const ka::Dims& dims : shapes) {
        inputs.push_back(randomArray(dims));
        prhs.push_back(inputs.back().get());
    }
    kaArray_tag* plhs[1] = {nullptr};
    for (auto _ : state) {
        fcn.call(1, plhs, static_cast<int>(prhs.size()), prhs.data());
        benchmark::DoNotOptimize(plhs[0]);
        matrix::releaseReference(plhs[0]);
    }
    setElements(state, count);
}

void SampleExp(benchmark::State& state) {
    sampleCall(state, "exp", {{elements, 1}}, elements);
}
void SampleSin(benchmark::State& state) {
    sampleCall(state, "sin", {{elements, 1}}, elements);
}
void SamplePlus100(benchmark::State& state) {
    sampleCall(state, "plus", {{100, 1}, {100, 1}}, 100);
}

// --- plain loops -------------------------------------------------------------------------------

template <bool Inline>
void plainLoopAdd(benchmark::State& state) {
    double (*volatile kernel)(double, double) = &add;  // volatile: the compiler cannot see add
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

void withThreads(benchmark::internal::Benchmark* b, std::initializer_list<int> limits) {
    b->ArgName("threads")->UseRealTime()->Unit(benchmark::kMillisecond);
    for (int limit : limits) b->Arg(limit);
}

BENCHMARK(DeclaredAdd)->Apply([](auto* b) { withThreads(b, {1, 2}); });
BENCHMARK(DeclaredAddInPlace)->Apply([](auto* b) { withThreads(b, {1, 2}); });
BENCHMARK(DeclaredBroadcast)->Apply([](auto* b) { withThreads(b, {1, 2}); });
BENCHMARK(DeclaredClamp)->Apply([](auto* b) { withThreads(b, {1}); });
BENCHMARK(PointerAdd)->Apply([](auto* b) { withThreads(b, {1, 2}); });
BENCHMARK(SampleExp)->Apply([](auto* b) { withThreads(b, {1, 2}); });
BENCHMARK(SampleSin)->Apply([](auto* b) { withThreads(b, {1}); });
BENCHMARK(SamplePlus100)->Arg(1)->ArgName("threads")->UseRealTime();
BENCHMARK(PlainLoopAdd)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(PlainLoopAddInline)->UseRealTime()->Unit(benchmark::kMillisecond);

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
    benchsupport::sampleModules();
    benchsupport::RecordingReporter reporter;
    if (!benchsupport::runBenchmarks(argc, argv, reporter)) return 1;

    // Milliseconds, except SamplePlus100, which is in nanoseconds.
    const auto real = [&](const char* name) { return reporter.times[name].real; };
    const std::map<std::string, double> numpy = numpyMilliseconds();
    const auto numpyTime = [&](const char* name) {
        const auto found = numpy.find(name);
        return found == numpy.end() ? 0.0 : found->second;
    };
    std::printf("\nNumPy %s, one thread (median ms per call):", NUMPY_ELEMENTWISE_SCRIPT);
    for (const auto& [name, value] : numpy) std::printf(" %s %.5g", name.c_str(), value);
    std::printf("%s\n\nRatios of real times (medians when repeated):\n",
                numpy.empty() ? " could not be run" : "");
    const Ratio ratios[] = {
        {"DeclaredAdd/threads:1 / np.add(a, b)", real("DeclaredAdd/threads:1"),
         numpyTime("add_fresh"), "at most 1.0"},
        {"DeclaredAdd/threads:2 / np.add(a, b)", real("DeclaredAdd/threads:2"),
         numpyTime("add_fresh"), "at most 0.6"},
        {"DeclaredAddInPlace/threads:1 / np.add(a, b, out=c)", real("DeclaredAddInPlace/threads:1"),
         numpyTime("add_out"), "at most 1.0"},
        {"SampleExp/threads:1 / np.exp(a)", real("SampleExp/threads:1"), numpyTime("exp"),
         "at most 1.0"},
        {"SampleExp/threads:2 / np.exp(a)", real("SampleExp/threads:2"), numpyTime("exp"),
         "at most 0.55"},
        {"SampleSin/threads:1 / np.sin(a)", real("SampleSin/threads:1"), numpyTime("sin"),
         "at most 1.0"},
        {"DeclaredBroadcast/threads:1 / np.add(m, k)", real("DeclaredBroadcast/threads:1"),
         numpyTime("add_broadcast"), "at most 1.0"},
        {"SamplePlus100 / np.add on 100 float64", real("SamplePlus100/threads:1") * 1e-6,
         numpyTime("add_100"), "at most 0.7"},
        {"DeclaredClamp/threads:1 / DeclaredAdd/threads:1", real("DeclaredClamp/threads:1"),
         real("DeclaredAdd/threads:1"), "at most 1.2"},
        {"PointerAdd/threads:1 / PlainLoopAdd", real("PointerAdd/threads:1"), real("PlainLoopAdd"),
         "report; the pointer entry no slower than before"},
        {"DeclaredAdd/threads:1 / PlainLoopAddInline", real("DeclaredAdd/threads:1"),
         real("PlainLoopAddInline"), "report; plain C++ baseline"},
    };
    for (const Ratio& ratio : ratios) printRatio(ratio);
    std::printf(
        "  PointerAdd/threads:1 %.1f ms (the entry before runs read the convention once: "
        "20.9 ms class)\n",
        real("PointerAdd/threads:1"));
    return 0;
}
