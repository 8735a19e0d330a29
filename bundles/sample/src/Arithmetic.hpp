// The kernels of the sample module's arithmetic: plus, minus and times of double, single,
// int32 (saturating at its limits, as the language does) and complex double, with a real and a
// complex argument promoting to complex.
#pragma once

#include <algorithm>
#include <complex>
#include <cstdint>
#include <limits>

namespace sample {

// The language's integer arithmetic: the exact result, saturated at the class's limits.
inline std::int32_t saturate(std::int64_t exact) {
    constexpr std::int64_t low = std::numeric_limits<std::int32_t>::min();
    constexpr std::int64_t high = std::numeric_limits<std::int32_t>::max();
    return static_cast<std::int32_t>(std::clamp(exact, low, high));
}

template <class T>
T add(T a, T b) {
    if constexpr (std::is_same_v<T, std::int32_t>) {
        return saturate(std::int64_t{a} + b);
    } else {
        return a + b;
    }
}

template <class T>
T subtract(T a, T b) {
    if constexpr (std::is_same_v<T, std::int32_t>) {
        return saturate(std::int64_t{a} - b);
    } else {
        return a - b;
    }
}

template <class T>
T multiply(T a, T b) {
    if constexpr (std::is_same_v<T, std::int32_t>) {
        return saturate(std::int64_t{a} * b);
    } else {
        return a * b;
    }
}

// A real argument beside a complex one becomes complex, as the language promotes.
template <std::complex<double> (*Op)(std::complex<double>, std::complex<double>)>
std::complex<double> complexReal(std::complex<double> a, double b) {
    return Op(a, b);
}
template <std::complex<double> (*Op)(std::complex<double>, std::complex<double>)>
std::complex<double> realComplex(double a, std::complex<double> b) {
    return Op(a, b);
}

}  // namespace sample
