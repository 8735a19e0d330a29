// Three distinct values of each alternative of Parameter, none of them the default 0, so that a
// wrapper that mixes up, converts or drops a value shows it. Slot 0 and 1 feed the first and the
// second input, slot 2 is what a native function returns.
#pragma once

#include <builtin/calling/Parameter.hpp>

#include <boost/variant/detail/variant_io.hpp>  // lets failures print a Parameter

#include <array>
#include <complex>
#include <cstdint>
#include <limits>

namespace Norvane::builtin::testing {

// Never dereferenced: the wrappers only pass pointers on.
inline char fakeObjects[9];

template <class P>
P fakePointer(int slot) {
  return reinterpret_cast<P>(&fakeObjects[slot]);
}

template <class T>
struct Samples;

#define BUILTIN_TEST_SAMPLES(T, a, b, c) \
  template <>                            \
  struct Samples<T> {                    \
    static inline const std::array<T, 3> values{a, b, c}; \
  }

BUILTIN_TEST_SAMPLES(std::uint64_t, 0xFFFF'FFFF'FFFF'FF01u, 0x8000'0000'0000'0002u, 3u);
BUILTIN_TEST_SAMPLES(double, 2.5, -3.75, 1e300);
BUILTIN_TEST_SAMPLES(float, 1.5f, -0.25f, 3e38f);
BUILTIN_TEST_SAMPLES(bool, true, false, true);
BUILTIN_TEST_SAMPLES(signed char, -7, 100, -128);
BUILTIN_TEST_SAMPLES(short, -300, 30000, -32768);
BUILTIN_TEST_SAMPLES(int, -70000, std::numeric_limits<int>::max(), -5);
BUILTIN_TEST_SAMPLES(std::int64_t, -(std::int64_t{1} << 40), std::int64_t{1} << 62, -3);
BUILTIN_TEST_SAMPLES(unsigned char, 200, 7, 255);
BUILTIN_TEST_SAMPLES(unsigned short, 60000, 1, 65535);
BUILTIN_TEST_SAMPLES(unsigned int, 4000000000u, 3u, 4294967295u);
BUILTIN_TEST_SAMPLES(std::complex<double>, std::complex<double>(1.5, -2.5),
                     std::complex<double>(-0.5, 4.0), std::complex<double>(1e10, -1e-10));
BUILTIN_TEST_SAMPLES(std::complex<float>, std::complex<float>(0.5f, 8.0f),
                     std::complex<float>(-2.0f, -0.125f), std::complex<float>(1e20f, 6.0f));
BUILTIN_TEST_SAMPLES(kaArray_tag*, fakePointer<kaArray_tag*>(0), fakePointer<kaArray_tag*>(1),
                     fakePointer<kaArray_tag*>(2));
BUILTIN_TEST_SAMPLES(Norvane::String::String*, fakePointer<Norvane::String::String*>(3),
                     fakePointer<Norvane::String::String*>(4),
                     fakePointer<Norvane::String::String*>(5));
BUILTIN_TEST_SAMPLES(Norvane::orro::OrroObject*, fakePointer<Norvane::orro::OrroObject*>(6),
                     fakePointer<Norvane::orro::OrroObject*>(7),
                     fakePointer<Norvane::orro::OrroObject*>(8));

#undef BUILTIN_TEST_SAMPLES

template <class T>
T sample(std::size_t slot) {
  return Samples<T>::values[slot];
}

inline constexpr std::size_t resultSlot = 2;

}  // namespace Norvane::builtin::testing
