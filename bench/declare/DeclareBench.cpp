// What declaring builtins costs, and what a declared builtin costs per call.
//
//   StartSampleModule   stops and starts the sample module's bundle: the whole of its activator,
//                       that is declaring every builtin, building their lists and function
//                       objects, and registering the module's service.
//   HandBuiltPlus       BuiltinFcn::invoke of double plus(double, double), declared by hand as
//                       the README showed before the declaration headers: the library's
//                       wrapper, among variants of other arities and types.
//   DeclaredPlus        the sample module's plus on two 1-by-1 doubles, as a host finds it: an
//                       element-wise kernel among its variants for every pair of classes.
//   DeclaredPlusInt16Double
//                       the same on an int16 and a double, which stand far behind in the list.
//
// Goals: DeclaredPlusInt16Double at most 1.15 x DeclaredPlus; starting the sample module at most
// 5 ms. The program prints the ratios and the number of variants.
#include <benchmark/benchmark.h>

#include <cstdio>

#include <builtin/builtin.hpp>
#include <builtin/declare/declare.hpp>
#include <foundation/cppmicroservices/framework.hpp>

#include "RecordingReporter.hpp"
#include "SampleModules.hpp"

namespace {

using namespace Norvane::builtin;
using namespace Norvane::builtin::types;
using V = BuiltinVariant;

[[gnu::noinline]] double add(double a, double b) {
    return a + b;
}

ArgType scalarOf(kaClassID element) {
    return NumericScalarTypes(element, NumericScalarTypes::Complexity::REAL);
}

// plus(double, double) among variants of other arities and element types, as a module would
// have sorted them by hand.
std::vector<BuiltinVariant> handBuiltPlus() {
    const auto native = reinterpret_cast<NativeEntry>(&add);
    const auto variant = [&](std::vector<ArgType> in, TypedEntry entry) {
        return V({.functionDescriptor = {entry, native, JIT_CALLING_CONVENTION::Direct},
                  .inputArgTypes = std::move(in),
                  .outputArgTypes = {scalarOf(kaDOUBLE_CLASS)},
                  .mayCallIntoKeldor = V::CallsIntoKeldor::NO,
                  .mayRaiseWarnings = V::HasWarnings::NO,
                  .mayThrowErrors = V::HasExceptions::NO,
                  .mayHaveSideEffects = V::HasSideEffects::NO,
                  .cppFunctionName = "add",
                  .keldorFunctionName = "plus",
                  .dominantClass = "double"});
    };
    const TypedEntry binary = builtinreg::detail::getExportedInlineCWrapperFcn(
        nullptr, parameterIndexOf<double>, parameterIndexOf<double>, parameterIndexOf<double>);
    const TypedEntry unary = builtinreg::detail::getExportedInlineCWrapperFcn(
        nullptr, parameterIndexOf<double>, parameterIndexOf<double>);
    std::vector<BuiltinVariant> list = {
        variant({scalarOf(kaDOUBLE_CLASS)}, unary),
        variant({scalarOf(kaDOUBLE_CLASS), scalarOf(kaDOUBLE_CLASS)}, binary),
        variant({scalarOf(kaSINGLE_CLASS), scalarOf(kaSINGLE_CLASS)}, binary),
        variant({scalarOf(kaINT32_CLASS), scalarOf(kaINT32_CLASS)}, binary),
    };
    std::sort(list.begin(), list.end());
    return list;
}

class HandBuilt final : public BuiltinFcn {
public:
    explicit HandBuilt(const std::vector<BuiltinVariant>& list)
        : BuiltinFcn("plus", {},
                     VariantArrays{.all = {list.data(), list.size()},
                                   .searchedByInvokeNoOrro = {list.data(), list.size()}},
                     BuiltinVariant()) {}
    void call(int nlhs, kaArray_tag** plhs, int nrhs, kaArray_tag** prhs) const override {
        invoke(nlhs, plhs, nrhs, prhs, VariantsToConsider::InvokeNoOrro);
    }
    BuiltinFcn* clone() const override { return new HandBuilt(*this); }
};

const declare::ModuleDirectory& modules() {
    return benchsupport::sampleModules();
}

void callPlus(benchmark::State& state, const BuiltinFcn& fcn,
              const ka::ArrayPtr& a = ka::scalar(2.0), const ka::ArrayPtr& b = ka::scalar(3.0)) {
    kaArray_tag* prhs[] = {a.get(), b.get()};
    kaArray_tag* plhs[1] = {nullptr};
    for (auto _ : state) {
        fcn.call(1, plhs, 2, prhs);
        benchmark::DoNotOptimize(plhs[0]);
        matrix::releaseReference(plhs[0]);
    }
}

void HandBuiltPlus(benchmark::State& state) {
    const std::vector<BuiltinVariant> list = handBuiltPlus();
    callPlus(state, HandBuilt(list));
}
BENCHMARK(HandBuiltPlus);

void DeclaredPlus(benchmark::State& state) {
    callPlus(state, *modules().find("plus"));
}
BENCHMARK(DeclaredPlus);

// Under the class rules plus has a variant for each pair of classes; int16 with double stands
// far behind double with double in its list.
void DeclaredPlusInt16Double(benchmark::State& state) {
    callPlus(state, *modules().find("plus"), ka::scalar<std::int16_t>(2), ka::scalar(3.0));
}
BENCHMARK(DeclaredPlusInt16Double);

void StartSampleModule(benchmark::State& state) {
    modules();
    auto context = foundation::cppmicroservices::getFramework()->GetBundleContext();
    cppmicroservices::Bundle sample;
    for (auto& bundle : context.GetBundles()) {
        if (bundle.GetSymbolicName() == "keldor_sample_module") sample = bundle;
    }
    for (auto _ : state) {
        sample.Stop();
        sample.Start();
    }
}
BENCHMARK(StartSampleModule)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
    // Before any call: the first call fills the service holders for good, framework or not.
    modules();
    benchsupport::RecordingReporter reporter;
    if (!benchsupport::runBenchmarks(argc, argv, reporter)) return 1;
    const auto hand = reporter.times["HandBuiltPlus"], declared = reporter.times["DeclaredPlus"];
    if (hand.real > 0 && declared.real > 0) {
        std::printf("\nDeclaredPlus / HandBuiltPlus: %.2f real, %.2f CPU (goal: at most 1.1)\n",
                    declared.real / hand.real, declared.cpu / hand.cpu);
    }
    const auto mixed = reporter.times["DeclaredPlusInt16Double"];
    if (mixed.real > 0 && declared.real > 0) {
        std::printf("DeclaredPlusInt16Double / DeclaredPlus: %.2f real (goal: at most 1.15)\n",
                    mixed.real / declared.real);
    }
    std::size_t variants = 0;
    for (const auto& [name, module] : modules().list())
        variants += modules().lists(name)->all.size();
    const auto start = reporter.times["StartSampleModule"];
    if (start.real > 0) {
        std::printf("Starting the sample module, %zu variants: %.0f us (goal: at most 5000)\n",
                    variants, start.real);
    }
    return 0;
}
