// The array library's costs that every call pays: a scalar's life, and a large fresh output
// written once. Compare the figures with the baselines of the same run:
//   CreateReleaseScalar   against MallocFreeScalar
//   FreshArrayWrite       against TouchedBlockWrite (goal: at most 4x); FreshMallocWrite
//                         shows what a plain fresh block costs without huge pages.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <span>
#include <vector>

#include <ka/ka.hpp>

namespace {

constexpr std::size_t bigCount = 10'000'000;

void fill(double* out, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) out[i] = static_cast<double>(i);
    benchmark::ClobberMemory();
}

void setBytes(benchmark::State& state) {
    state.SetBytesProcessed(state.iterations() *
                            static_cast<std::int64_t>(bigCount * sizeof(double)));
}

void CreateReleaseScalar(benchmark::State& state) {
    const std::size_t dims[] = {1, 1};
    for (auto _ : state) {
        ka::ArrayPtr a = matrix::detail::do_create_uninitnumeric(dims, kaDOUBLE_CLASS, kaREAL);
        *static_cast<double*>(a->data) = 1.0;
        benchmark::DoNotOptimize(a.get());
    }
}
BENCHMARK(CreateReleaseScalar);

void MallocFreeScalar(benchmark::State& state) {
    for (auto _ : state) {
        auto* d = static_cast<double*>(std::malloc(sizeof(double)));
        benchmark::DoNotOptimize(d);
        *d = 1.0;
        std::free(d);
    }
}
BENCHMARK(MallocFreeScalar);

void FreshArrayWrite(benchmark::State& state) {
    const std::size_t dims[] = {bigCount, 1};
    for (auto _ : state) {
        ka::ArrayPtr a = matrix::detail::do_create_uninitnumeric(dims, kaDOUBLE_CLASS, kaREAL);
        fill(static_cast<double*>(a->data), bigCount);
    }
    setBytes(state);
}
BENCHMARK(FreshArrayWrite)->Unit(benchmark::kMillisecond);

void FreshMallocWrite(benchmark::State& state) {
    for (auto _ : state) {
        auto* d = static_cast<double*>(std::malloc(bigCount * sizeof(double)));
        fill(d, bigCount);
        std::free(d);
    }
    setBytes(state);
}
BENCHMARK(FreshMallocWrite)->Unit(benchmark::kMillisecond);

void TouchedBlockWrite(benchmark::State& state) {
    std::vector<double> block(bigCount, 0.0);
    for (auto _ : state) fill(block.data(), bigCount);
    setBytes(state);
}
BENCHMARK(TouchedBlockWrite)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
