// The block kernels of the elementary functions with AVX512 vectors; compiled for AVX512 alone and
// called only on a CPU that has it.
#define SAMPLE_ELEMENTARY_UNIT
#include <sleef.h>

#include "ElementaryRuns.hpp"

namespace sample::elementary {

namespace {

struct Doubles {
    using Element = double;
    using Vector = __m512d;
    static constexpr std::size_t width = sizeof(Vector) / sizeof(double);
    static Vector load(const double* p) { return _mm512_loadu_pd(p); }
    static void store(double* p, Vector v) { _mm512_storeu_pd(p, v); }
};

struct Floats {
    using Element = float;
    using Vector = __m512;
    static constexpr std::size_t width = sizeof(Vector) / sizeof(float);
    static Vector load(const float* p) { return _mm512_loadu_ps(p); }
    static void store(float* p, Vector v) { _mm512_storeu_ps(p, v); }
};

}  // namespace

const RunTable avx512Runs = {
    {run<Doubles, Sleef_expd8_u10avx512f>, run<Doubles, Sleef_logd8_u10avx512f>,
     run<Doubles, Sleef_sind8_u10avx512f>, run<Doubles, Sleef_cosd8_u10avx512f>,
     run<Doubles, Sleef_tanhd8_u10avx512f>},
    {run<Floats, Sleef_expf16_u10avx512f>, run<Floats, Sleef_logf16_u10avx512f>,
     run<Floats, Sleef_sinf16_u10avx512f>, run<Floats, Sleef_cosf16_u10avx512f>,
     run<Floats, Sleef_tanhf16_u10avx512f>}};

}  // namespace sample::elementary
