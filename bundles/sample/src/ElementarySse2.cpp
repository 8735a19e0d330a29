// The block kernels of the elementary functions with SSE2 vectors; compiled for SSE2 alone and
// called only on a CPU that has it.
#define SAMPLE_ELEMENTARY_UNIT
#include <sleef.h>

#include "ElementaryRuns.hpp"

namespace sample::elementary {

namespace {

struct Doubles {
    using Element = double;
    using Vector = __m128d;
    static constexpr std::size_t width = sizeof(Vector) / sizeof(double);
    static Vector load(const double* p) { return _mm_loadu_pd(p); }
    static void store(double* p, Vector v) { _mm_storeu_pd(p, v); }
};

struct Floats {
    using Element = float;
    using Vector = __m128;
    static constexpr std::size_t width = sizeof(Vector) / sizeof(float);
    static Vector load(const float* p) { return _mm_loadu_ps(p); }
    static void store(float* p, Vector v) { _mm_storeu_ps(p, v); }
};

}  // namespace

const RunTable sse2Runs = {{run<Doubles, Sleef_expd2_u10sse2>, run<Doubles, Sleef_logd2_u10sse2>,
                            run<Doubles, Sleef_sind2_u10sse2>, run<Doubles, Sleef_cosd2_u10sse2>,
                            run<Doubles, Sleef_tanhd2_u10sse2>},
                           {run<Floats, Sleef_expf4_u10sse2>, run<Floats, Sleef_logf4_u10sse2>,
                            run<Floats, Sleef_sinf4_u10sse2>, run<Floats, Sleef_cosf4_u10sse2>,
                            run<Floats, Sleef_tanhf4_u10sse2>}};

}  // namespace sample::elementary
