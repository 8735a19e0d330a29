// What the interpreter pays for a builtin call on top of the work itself.
//
//   DirectBaseline   reads the element of a 1-by-1 double, calls the native function through a
//                    pointer, and creates the 1-by-1 result with the array library.
//   InterpretedCall  BuiltinFcn::invoke of the same native function, declared double-to-double,
//                    on a list that holds ten variants of other arities and types beside it.
//   InterpretedCallAfterThreeRefusals
//                    the same with three of the ten taking one input and sorting ahead of it,
//                    so that the call tries and refuses them first.
//   InterpretedCallLastOf41
//                    the same native function as the 41st candidate of its arity: 38 option
//                    flags, a logical and a char scalar sort ahead of it and refuse the call.
//   InterpretedCallLastOf41Searched
//                    the same with the memo of accepted variants switched off, so that every
//                    call searches the 41 candidates: what the memo saves.
//
// The builtins remember which variant took a call of the same types, so all but the first call
// of each loop go straight to it. All release their result in the loop. Goals against
// DirectBaseline: InterpretedCall at most 1.3, the calls after refusals at most 1.4; no heap
// allocation on the road besides the result array (the per-call counts must be equal).
// After the runs, NumPy's np.sqrt on a float64 scalar is timed by numpy_sqrt.py and the
// interpreted call is quoted as a fraction of it. Ratios use the medians of the repetitions
// when --benchmark_repetitions is given.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include <builtin/calling/InlineCWrappers.hpp>
#include <builtin/invoke/BuiltinFcn.hpp>
#include <ka/ka.hpp>

#include "../../builtin/src/invoke/VariantMemoSwitch.hpp"
#include "AllocationCounter.hpp"
#include "RecordingReporter.hpp"

namespace {

using namespace Norvane::builtin;
using namespace Norvane::builtin::types;
using builtinreg::detail::getExportedInlineCWrapperFcn;
using V = BuiltinVariant;

[[gnu::noinline]] double kernel(double x) {
    return std::sqrt(x);
}

// --- the builtin -------------------------------------------------------------------------------

ArgType scalarOf(kaClassID element) {
    return NumericScalarTypes(element, NumericScalarTypes::Complexity::REAL);
}

BuiltinVariant variant(std::vector<ArgType> in, std::vector<ArgType> out, TypedEntry entry,
                       NativeEntry native, const char* name) {
    return BuiltinVariant({.functionDescriptor = {entry, native, JIT_CALLING_CONVENTION::Direct},
                           .inputArgTypes = std::move(in),
                           .outputArgTypes = std::move(out),
                           .mayCallIntoKeldor = V::CallsIntoKeldor::NO,
                           .mayRaiseWarnings = V::HasWarnings::NO,
                           .mayThrowErrors = V::HasExceptions::NO,
                           .mayHaveSideEffects = V::HasSideEffects::NO,
                           .cppFunctionName = name,
                           .keldorFunctionName = "sqrt",
                           .dominantClass = "double"});
}

// What sorts ahead of the double-to-double variant among those of its arity.
enum class Ahead {
    NONE,
    THREE,  // a flag, a logical and a char scalar
    FORTY,  // 38 flags, a logical and a char scalar
};

// The double-to-double variant among others of other arities and types, sorted as the search
// lists keep them; `ahead` says which take one input and sort ahead of it, so that the call
// tries and refuses them first.
std::vector<BuiltinVariant> makeList(Ahead ahead) {
    const auto native = reinterpret_cast<NativeEntry>(&kernel);
    const TypedEntry unary =
        getExportedInlineCWrapperFcn(nullptr, parameterIndexOf<double>, parameterIndexOf<double>);
    const TypedEntry binary = getExportedInlineCWrapperFcn(
        nullptr, parameterIndexOf<double>, parameterIndexOf<double>, parameterIndexOf<double>);
    const TypedEntry nullary = getExportedInlineCWrapperFcn(nullptr, parameterIndexOf<double>);
    const TypedEntry noOutput =
        getExportedInlineCWrapperFcn(nullptr, noOutputIndex, parameterIndexOf<double>);
    KaArrayTypes anyDoubles(kaDOUBLE_CLASS, KaArrayTypes::Shape::UNKNOWN,
                            KaArrayTypes::Density::FULL, KaArrayTypes::Complexity::NOT_COMPLEX,
                            SIZE_MAX);
    anyDoubles.setSignatureTolerance(SignatureTolerance::RELAXED);
    const ArgType d = scalarOf(kaDOUBLE_CLASS);

    std::vector<BuiltinVariant> list = {
        variant({}, {d}, nullary, native, "nullary"),
        variant({d}, {}, noOutput, native, "noOutput"),
        variant({d}, {d}, unary, native, "target"),
        variant({scalarOf(kaSINGLE_CLASS)}, {d}, unary, native, "single"),
        variant({scalarOf(kaINT8_CLASS)}, {d}, unary, native, "int8"),
        variant({anyDoubles}, {d}, unary, native, "array"),
        variant({d, d}, {d}, binary, native, "binary"),
        variant({d, d, d}, {d}, binary, native, "ternary"),
    };
    if (ahead != Ahead::NONE) {
        const int flags = ahead == Ahead::THREE ? 1 : 38;
        for (int i = 0; i < flags; ++i) {
            const std::string text = "option" + std::to_string(i);
            list.push_back(variant({FlagInputType(text)}, {d}, unary, native, "flag"));
        }
        list.push_back(variant({scalarOf(kaLOGICAL_CLASS)}, {d}, unary, native, "logical"));
        list.push_back(variant({scalarOf(kaCHAR_CLASS)}, {d}, unary, native, "char"));
    } else {
        list.push_back(variant({scalarOf(kaINT32_CLASS)}, {d}, unary, native, "int32"));
        list.push_back(variant({d, anyDoubles}, {d}, binary, native, "binaryArray"));
        list.push_back(variant({d, d, d, d}, {d}, binary, native, "quaternary"));
    }
    std::sort(list.begin(), list.end());
    return list;
}

class BenchFcn final : public BuiltinFcn {
public:
    explicit BenchFcn(const std::vector<BuiltinVariant>& list)
        : BuiltinFcn("sqrt", {},
                     VariantArrays{.all = {list.data(), list.size()},
                                   .searchedByInvokeNoOrro = {list.data(), list.size()}},
                     BuiltinVariant()) {}
    void call(int nlhs, kaArray_tag** plhs, int nrhs, kaArray_tag** prhs) const override {
        invoke(nlhs, plhs, nrhs, prhs, VariantsToConsider::InvokeNoOrro);
    }
    BuiltinFcn* clone() const override { return new BenchFcn(*this); }
};

// --- the two loops ----------------------------------------------------------------------------

void reportAllocations(benchmark::State& state, const allocations::Counts& before) {
    const allocations::Counts after = allocations::now();
    const double calls = static_cast<double>(state.iterations());
    state.counters["news/call"] = static_cast<double>(after.news - before.news) / calls;
    state.counters["mallocs/call"] = static_cast<double>(after.mallocs - before.mallocs) / calls;
}

void DirectBaseline(benchmark::State& state) {
    const ka::ArrayPtr x = ka::scalar(2.0);
    double (*volatile native)(double) = &kernel;
    const std::size_t dims[] = {1, 1};
    const allocations::Counts before = allocations::now();
    for (auto _ : state) {
        const double in = static_cast<const double*>(matrix::data(x.get()))[0];
        ka::ArrayPtr result = matrix::detail::do_create_uninitnumeric(dims, kaDOUBLE_CLASS, kaREAL);
        *static_cast<double*>(matrix::data(result.get())) = native(in);
        benchmark::DoNotOptimize(result.get());
    }
    reportAllocations(state, before);
}
BENCHMARK(DirectBaseline);

void interpretedCall(benchmark::State& state, Ahead ahead) {
    const std::vector<BuiltinVariant> list = makeList(ahead);
    const BenchFcn fcn(list);
    const ka::ArrayPtr x = ka::scalar(2.0);
    kaArray_tag* prhs[] = {x.get()};
    kaArray_tag* plhs[1] = {nullptr};
    fcn.call(1, plhs, 1, prhs);  // the first call starts the services and makes the statics
    matrix::releaseReference(plhs[0]);
    const allocations::Counts before = allocations::now();
    for (auto _ : state) {
        fcn.call(1, plhs, 1, prhs);
        benchmark::DoNotOptimize(plhs[0]);
        matrix::releaseReference(plhs[0]);
    }
    reportAllocations(state, before);
    if (x->refCount != 1) {
        state.SkipWithError("the argument's reference count changed");
    }
}

void InterpretedCall(benchmark::State& state) {
    interpretedCall(state, Ahead::NONE);
}
BENCHMARK(InterpretedCall);

void InterpretedCallAfterThreeRefusals(benchmark::State& state) {
    interpretedCall(state, Ahead::THREE);
}
BENCHMARK(InterpretedCallAfterThreeRefusals);

void InterpretedCallLastOf41(benchmark::State& state) {
    interpretedCall(state, Ahead::FORTY);
}
BENCHMARK(InterpretedCallLastOf41);

void InterpretedCallLastOf41Searched(benchmark::State& state) {
    detail::setVariantMemoEnabled(false);
    interpretedCall(state, Ahead::FORTY);
    detail::setVariantMemoEnabled(true);
}
BENCHMARK(InterpretedCallLastOf41Searched);

// --- ratios -----------------------------------------------------------------------------------

double numpySqrtNanoseconds() {
    const std::string command = std::string(NUMPY_PYTHON) + " " + NUMPY_SQRT_SCRIPT + " 9 200000";
    FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) return 0;
    double value = 0;
    if (std::fscanf(pipe, "%lf", &value) != 1) value = 0;
    ::pclose(pipe);
    return value;
}

}  // namespace

int main(int argc, char** argv) {
    benchsupport::RecordingReporter reporter;
    if (!benchsupport::runBenchmarks(argc, argv, reporter)) return 1;

    const auto direct = reporter.times["DirectBaseline"];
    if (direct.real <= 0 || direct.cpu <= 0) return 0;
    const double numpy = numpySqrtNanoseconds();
    std::printf("\nRatios (real time, then CPU time; medians when repeated):\n");
    const struct {
        const char* name;
        const char* goal;
    } measures[] = {{"InterpretedCall", "at most 1.3"},
                    {"InterpretedCallAfterThreeRefusals", "at most 1.4"},
                    {"InterpretedCallLastOf41", "at most 1.4"},
                    {"InterpretedCallLastOf41Searched", "none: no memo, for comparison"}};
    for (const auto& [name, goal] : measures) {
        const auto times = reporter.times[name];
        if (times.real <= 0) continue;
        auto& counters = reporter.counters[name];
        std::printf(
            "  %s / DirectBaseline: %.2f real, %.2f CPU (goal: %s); "
            "allocations per call %.2f new + %.2f malloc\n",
            name, times.real / direct.real, times.cpu / direct.cpu, goal,
            counters["news/call"].value, counters["mallocs/call"].value);
        if (numpy > 0) {  // timeit measures wall time, so the real times compare
            std::printf("  %s / NumPy np.sqrt(float64 scalar) %.1f ns: %.3f (real time)\n", name,
                        numpy, times.real / numpy);
        }
    }
    auto& baseline = reporter.counters["DirectBaseline"];
    std::printf("  DirectBaseline allocations per call: %.2f new + %.2f malloc\n",
                baseline["news/call"].value, baseline["mallocs/call"].value);
    if (numpy <= 0) {
        std::printf("  NumPy could not be timed (%s %s)\n", NUMPY_PYTHON, NUMPY_SQRT_SCRIPT);
    }
    return 0;
}
