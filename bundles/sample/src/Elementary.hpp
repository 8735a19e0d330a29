// The elementary functions of the sample module, exp, log, sin, cos and tanh over double and
// single: scalar kernels for scalars and the engine, and block kernels over whole runs of an
// array, from SLEEF's vector functions of at most 1 ULP error. The instruction set is chosen at
// run time for the CPU: AVX-512, else AVX2 with FMA, else SSE2 (every x86-64 has it), unless the
// environment variable KELDOR_SIMD names one (avx512, avx2, sse2) that the CPU has.
//
// SLEEF's functions keep to libm's special values (exp(-Inf) 0, exp(710) Inf, log(0) -Inf,
// sin(-0) -0, NaN in NaN out) and to 1 ULP over the whole double range, large arguments of sin
// and cos included, so the blocks need no fallback; the scalar kernels are SLEEF's too, so that a
// scalar and an element of an array give the same value.
#pragma once

#include <cstddef>
#include <string_view>

namespace sample::elementary {

enum class InstructionSet { SSE2, AVX2, AVX512 };

// The instruction set that the block kernels use now.
InstructionSet instructionSet() noexcept;
// Whether the CPU can run it.
bool supported(InstructionSet set) noexcept;
// Makes the block kernels use `set` from now on; for tests and benchmarks, which compare them.
// Not while calls run. Returns false, changing nothing, if the CPU cannot run it.
bool useInstructionSet(InstructionSet set) noexcept;
std::string_view nameOf(InstructionSet set) noexcept;

enum class Function { EXP, LOG, SIN, COS, TANH };

// One element.
double scalar(Function f, double x) noexcept;
float scalar(Function f, float x) noexcept;
// n elements; `out` may be `in` itself.
void block(Function f, const double* in, double* out, std::size_t n) noexcept;
void block(Function f, const float* in, float* out, std::size_t n) noexcept;

}  // namespace sample::elementary
