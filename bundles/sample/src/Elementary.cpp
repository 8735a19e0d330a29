// Choosing the instruction set of the elementary functions, and their scalar kernels.
#include "Elementary.hpp"

#include <atomic>
#include <cstdlib>
#include <string>

#include <sleef.h>

#include "ElementaryRuns.hpp"

namespace sample::elementary {

namespace {

bool cpuHas(InstructionSet set) noexcept {
    switch (set) {
        case InstructionSet::AVX512: return __builtin_cpu_supports("avx512f");
        case InstructionSet::AVX2:
            return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma");
        case InstructionSet::SSE2: return true;
    }
    return false;
}

const RunTable& runsOf(InstructionSet set) noexcept {
    switch (set) {
        case InstructionSet::AVX512: return avx512Runs;
        case InstructionSet::AVX2: return avx2Runs;
        case InstructionSet::SSE2: break;
    }
    return sse2Runs;
}

// The best the CPU has, or the one KELDOR_SIMD names if the CPU has that.
InstructionSet initialSet() noexcept {
    const char* const named = std::getenv("KELDOR_SIMD");
    for (const InstructionSet set :
         {InstructionSet::AVX512, InstructionSet::AVX2, InstructionSet::SSE2}) {
        if (named != nullptr && nameOf(set) == named && cpuHas(set)) {
            return set;
        }
    }
    for (const InstructionSet set : {InstructionSet::AVX512, InstructionSet::AVX2}) {
        if (cpuHas(set)) {
            return set;
        }
    }
    return InstructionSet::SSE2;
}

std::atomic<InstructionSet>& current() noexcept {
    static std::atomic<InstructionSet> set{initialSet()};
    return set;
}

std::size_t indexOf(Function f) noexcept {
    return static_cast<std::size_t>(f);
}

}  // namespace

InstructionSet instructionSet() noexcept {
    return current().load(std::memory_order_relaxed);
}

bool supported(InstructionSet set) noexcept {
    return cpuHas(set);
}

bool useInstructionSet(InstructionSet set) noexcept {
    if (!cpuHas(set)) {
        return false;
    }
    current().store(set, std::memory_order_relaxed);
    return true;
}

std::string_view nameOf(InstructionSet set) noexcept {
    switch (set) {
        case InstructionSet::AVX512: return "avx512";
        case InstructionSet::AVX2: return "avx2";
        case InstructionSet::SSE2: break;
    }
    return "sse2";
}

double scalar(Function f, double x) noexcept {
    switch (f) {
        case Function::EXP: return Sleef_exp_u10(x);
        case Function::LOG: return Sleef_log_u10(x);
        case Function::SIN: return Sleef_sin_u10(x);
        case Function::COS: return Sleef_cos_u10(x);
        case Function::TANH: break;
    }
    return Sleef_tanh_u10(x);
}

float scalar(Function f, float x) noexcept {
    switch (f) {
        case Function::EXP: return Sleef_expf_u10(x);
        case Function::LOG: return Sleef_logf_u10(x);
        case Function::SIN: return Sleef_sinf_u10(x);
        case Function::COS: return Sleef_cosf_u10(x);
        case Function::TANH: break;
    }
    return Sleef_tanhf_u10(x);
}

void block(Function f, const double* in, double* out, std::size_t n) noexcept {
    runsOf(instructionSet()).d[indexOf(f)](in, out, n);
}

void block(Function f, const float* in, float* out, std::size_t n) noexcept {
    runsOf(instructionSet()).f[indexOf(f)](in, out, n);
}

}  // namespace sample::elementary
