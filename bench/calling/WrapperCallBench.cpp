// What a typed entry costs on top of the native call it makes: `double f(double)` called
// through its wrapper, against the same function called directly through a pointer that the
// compiler cannot see through. The difference of the two is the wrapper's overhead per call.
#include <builtin/calling/calling.hpp>

#include <benchmark/benchmark.h>

namespace {

using namespace Norvane::builtin;
using builtinreg::detail::getExportedInlineCWrapperFcn;

[[gnu::noinline]] double scale(double x) {
    return x * 1.5 + 0.25;
}

[[gnu::noinline]] bool scaleReporting(double x, double* out, IOrroBuiltinEnvironment*,
                                      OrroFunctionDescriptor*) {
    *out = x * 1.5 + 0.25;
    return false;
}

void BM_DirectCall(benchmark::State& state) {
    double (*volatile native)(double) = &scale;
    double x = 2.0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(x);
        double result = native(x);
        benchmark::DoNotOptimize(result);
    }
}
BENCHMARK(BM_DirectCall);

void callThroughWrapper(benchmark::State& state, JIT_CALLING_CONVENTION convention,
                        NativeEntry native) {
    OrroFunctionDescriptor descriptor{
        getExportedInlineCWrapperFcn(nullptr, parameterIndexOf<double>, parameterIndexOf<double>),
        native, convention};
    const ParameterList arguments{Parameter(2.0)};
    bool pending = false;
    for (auto _ : state) {
        benchmark::DoNotOptimize(descriptor);
        Parameter result = descriptor.typedEntry(&descriptor, nullptr, pending, arguments);
        benchmark::DoNotOptimize(result);
    }
}

void BM_WrapperCall_Direct(benchmark::State& state) {
    callThroughWrapper(state, JIT_CALLING_CONVENTION::Direct,
                       reinterpret_cast<NativeEntry>(&scale));
}
BENCHMARK(BM_WrapperCall_Direct);

void BM_WrapperCall_CanThrow(benchmark::State& state) {
    callThroughWrapper(state, JIT_CALLING_CONVENTION::CanThrow,
                       reinterpret_cast<NativeEntry>(&scaleReporting));
}
BENCHMARK(BM_WrapperCall_CanThrow);

}  // namespace

BENCHMARK_MAIN();
