// What a module load pays to turn a builtin's declared and boxing variants into search lists.
//
//   SortOnly/n    copies n generated variants and sorts them: the least any cleanup must do.
//   BuildLists/n  copies the same variants and builds BuiltinVariantLists from them (sort,
//                 cleanup with its quadratic shadowing stage, distribution), logs off.
//
// The variants mix scalars of every numeric class, arrays of several shapes and tolerances,
// char rows, flags, one to three inputs and zero or one output, with some that call back
// (NO_SUPPORT, so shadowing has work) and a boxing variant for about one in four, some of
// whose boxed signatures repeat others. Goal: at most 10 us per variant at n = 200. The
// program prints the time per variant, its growth from 50 to 800, and BuildLists / SortOnly.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <random>
#include <vector>

#include <builtin/types/NativeArgTypes.hpp>
#include <builtin/variants/BuiltinVariantLists.hpp>

#include "RecordingReporter.hpp"

namespace {

using namespace Norvane::builtin;
using namespace Norvane::builtin::types;
using V = BuiltinVariant;

constexpr kaClassID kNumeric[] = {kaDOUBLE_CLASS, kaSINGLE_CLASS, kaINT8_CLASS,    kaUINT8_CLASS,
                                  kaINT16_CLASS,  kaUINT16_CLASS, kaINT32_CLASS,   kaUINT32_CLASS,
                                  kaINT64_CLASS,  kaUINT64_CLASS, kaLOGICAL_CLASS, kaCHAR_CLASS};

Parameter unusedEntry(OrroFunctionDescriptor*, IOrroBuiltinEnvironment*, bool& pending,
                      const ParameterList&) {
    pending = false;
    return Parameter();
}

class Generator {
public:
    explicit Generator(unsigned seed) : random_(seed) {}

    ArgType type() {
        const kaClassID element = kNumeric[pick(std::size(kNumeric))];
        switch (pick(6)) {
            case 0:
            case 1: return NumericScalarTypes(element, NumericScalarTypes::Complexity::REAL);
            case 2:
                return nativeArgType(NativeElement::DOUBLE,
                                     pick(2) ? NativeShape::ROW : NativeShape::MATRIX);
            case 3: {
                KaArrayTypes any(element, KaArrayTypes::Shape::UNKNOWN, KaArrayTypes::Density::FULL,
                                 KaArrayTypes::Complexity::UNKNOWN, SIZE_MAX);
                any.setSignatureTolerance(SignatureTolerance::RELAXED);
                return any;
            }
            case 4: return nativeStringArgType(1);
            default: return FlagInputType(std::string(pick(2) ? "rows" : "cols"));
        }
    }

    BuiltinVariant variant() {
        std::vector<ArgType> inputs(1 + pick(3));
        for (ArgType& input : inputs) input = type();
        std::vector<ArgType> outputs;
        if (pick(4) != 0)
            outputs.push_back(
                NumericScalarTypes(kaDOUBLE_CLASS, NumericScalarTypes::Complexity::REAL));
        return V(nullptr, {&unusedEntry, nullptr, JIT_CALLING_CONVENTION::Direct},
                 std::move(inputs), std::move(outputs),
                 pick(5) == 0 ? V::CallsIntoKeldor::YES : V::CallsIntoKeldor::NO,
                 V::HasWarnings::NO, V::HasExceptions::NO, V::HasSideEffects::NO, "native", "fn",
                 "double", V::IsElementWise::NO);
    }

    // A boxing variant of `source` taking scalars of its input count.
    BuiltinVariant boxingOf(const std::shared_ptr<const BuiltinVariant>& source) {
        BuiltinVariant boxing = *source;
        boxing.originalVariant = source;
        for (ArgType& input : boxing.inputArgTypes) {
            input = NumericScalarTypes(kNumeric[pick(3)], NumericScalarTypes::Complexity::REAL);
        }
        boxing.orroSupportLevel = OrroSupportLevel::ORRO_ONLY;
        return boxing;
    }

    std::vector<BuiltinVariant> variants(std::size_t n) {
        std::vector<BuiltinVariant> result;
        result.reserve(n);
        while (result.size() < n) {
            auto source = std::make_shared<const BuiltinVariant>(variant());
            result.push_back(*source);
            if (result.size() < n && pick(4) == 0) result.push_back(boxingOf(source));
        }
        return result;
    }

private:
    std::size_t pick(std::size_t n) {
        return std::uniform_int_distribution<std::size_t>(0, n - 1)(random_);
    }
    std::mt19937 random_;
};

void SortOnly(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const std::vector<BuiltinVariant> variants = Generator(42).variants(n);
    for (auto _ : state) {
        std::vector<BuiltinVariant> copy = variants;
        std::sort(copy.begin(), copy.end());
        benchmark::DoNotOptimize(copy.data());
    }
}
BENCHMARK(SortOnly)->Arg(50)->Arg(200)->Arg(800)->Unit(benchmark::kMicrosecond);

void BuildLists(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const std::vector<BuiltinVariant> variants = Generator(42).variants(n);
    std::size_t kept = 0;
    for (auto _ : state) {
        std::vector<BuiltinVariant> copy = variants;
        const builtinreg::BuiltinVariantLists lists(std::move(copy));
        kept = lists.all.size();
        benchmark::DoNotOptimize(lists.all.data());
    }
    state.counters["kept"] = static_cast<double>(kept);
}
BENCHMARK(BuildLists)->Arg(50)->Arg(200)->Arg(800)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
    benchsupport::RecordingReporter reporter;
    if (!benchsupport::runBenchmarks(argc, argv, reporter)) return 1;

    // Times are in microseconds. CPU time is quoted beside real time, since a loaded machine
    // stretches the second and not the first.
    std::printf("\nPer variant (real / CPU time; medians when repeated):\n");
    for (const char* n : {"50", "200", "800"}) {
        const auto build = reporter.times[std::string("BuildLists/") + n];
        const auto sort = reporter.times[std::string("SortOnly/") + n];
        if (build.real <= 0 || sort.real <= 0) continue;
        const double count = std::stod(n);
        std::printf("  n = %3s: %.2f / %.2f us per variant%s; BuildLists / SortOnly %.2f / %.2f\n",
                    n, build.real / count, build.cpu / count,
                    count == 200 ? " (goal: at most 10)" : "", build.real / sort.real,
                    build.cpu / sort.cpu);
    }
    const auto at50 = reporter.times["BuildLists/50"];
    const auto at800 = reporter.times["BuildLists/800"];
    if (at50.real > 0 && at800.real > 0) {
        std::printf(
            "  growth of the time per variant from 50 to 800: %.2f / %.2f "
            "(1 if linear, 16 if quadratic)\n",
            (at800.real / 800) / (at50.real / 50), (at800.cpu / 800) / (at50.cpu / 50));
    }
    return 0;
}
