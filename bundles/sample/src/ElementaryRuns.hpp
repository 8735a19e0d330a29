// The block kernels of the elementary functions for one instruction set. Each unit that
// includes this is compiled for its own instruction set (ElementaryAvx512.cpp with -mavx512f, and
// so on) and defines a Width for double and for float; everything here has internal linkage, so
// that code made for one instruction set is never picked by the linker for another. Include
// nothing but what the vector functions need.
#pragma once

#include <cstddef>

namespace sample::elementary {

using DoubleRun = void (*)(const double* in, double* out, std::size_t n);
using FloatRun = void (*)(const float* in, float* out, std::size_t n);

// exp, log, sin, cos, tanh, in that order.
struct RunTable {
    DoubleRun d[5];
    FloatRun f[5];
};

extern const RunTable sse2Runs;
extern const RunTable avx2Runs;
extern const RunTable avx512Runs;

}  // namespace sample::elementary

#ifdef SAMPLE_ELEMENTARY_UNIT
namespace sample::elementary {
namespace {

// A run of n elements: whole vectors, then the tail through a vector of copies.
template <class W, auto F>
void run(const typename W::Element* in, typename W::Element* out, std::size_t n) {
    using T = typename W::Element;
    std::size_t i = 0;
    for (; i + W::width <= n; i += W::width) {
        W::store(out + i, F(W::load(in + i)));
    }
    if (i == n) {
        return;
    }
    alignas(64) T tailIn[W::width];
    alignas(64) T tailOut[W::width];
    for (std::size_t k = 0; k < W::width; ++k) {
        tailIn[k] = i + k < n ? in[i + k] : T(0);
    }
    W::store(tailOut, F(W::load(tailIn)));
    for (std::size_t k = 0; i + k < n; ++k) {
        out[i + k] = tailOut[k];
    }
}

}  // namespace
}  // namespace sample::elementary
#endif
