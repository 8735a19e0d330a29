// The block kernels of the elementary functions with AVX2 vectors; compiled for AVX2 alone and
// called only on a CPU that has it.
#define SAMPLE_ELEMENTARY_UNIT
#include <sleef.h>

#include "ElementaryRuns.hpp"

namespace sample::elementary {

namespace {

struct Doubles {
    using Element = double;
    using Vector = __m256d;
    static constexpr std::size_t width = sizeof(Vector) / sizeof(double);
    static Vector load(const double* p) { return _mm256_loadu_pd(p); }
    static void store(double* p, Vector v) { _mm256_storeu_pd(p, v); }
};

struct Floats {
    using Element = float;
    using Vector = __m256;
    static constexpr std::size_t width = sizeof(Vector) / sizeof(float);
    static Vector load(const float* p) { return _mm256_loadu_ps(p); }
    static void store(float* p, Vector v) { _mm256_storeu_ps(p, v); }
};

}  // namespace

const RunTable avx2Runs = {{run<Doubles, Sleef_expd4_u10avx2>, run<Doubles, Sleef_logd4_u10avx2>,
                            run<Doubles, Sleef_sind4_u10avx2>, run<Doubles, Sleef_cosd4_u10avx2>,
                            run<Doubles, Sleef_tanhd4_u10avx2>},
                           {run<Floats, Sleef_expf8_u10avx2>, run<Floats, Sleef_logf8_u10avx2>,
                            run<Floats, Sleef_sinf8_u10avx2>, run<Floats, Sleef_cosf8_u10avx2>,
                            run<Floats, Sleef_tanhf8_u10avx2>}};

}  // namespace sample::elementary
