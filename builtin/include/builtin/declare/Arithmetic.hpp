// Binary arithmetic under the class rules that users of array languages expect, declared in one
// line for every pair of the numeric classes, logical and char:
//
//   template <class T> struct Add { static T apply(T a, T b) { return a + b; } };
//   arithmetic::declareBinary<Add>(module.builtin("plus"));
//
// Op<T>::apply is the operation in T, for T double, float, std::complex<double> and
// std::complex<float>. Each pair of classes becomes an element-wise kernel over scalars and
// arrays with broadcasting, whose result class is:
//
//   - two values of one class: that class; logical with logical and char with char: double;
//   - double with an integer class or single: that class; double, logical and char with each
//     other: double;
//   - single with an integer class: the integer class; single with logical or char: single;
//   - an integer class with logical or char: the integer class;
//   - complex double and complex single with the real classes as their real parts do: complex
//     single with double is complex single, complex double with logical is complex double.
//
// An integer result is computed in double, rounded half away from zero and saturated to its class;
// NaN becomes 0. A single result is computed in single. Two different integer classes, and complex
// with an integer class, are refused by the builtin's fallback, which this sets, with an error
// that names both classes; any other call that no kernel takes fails as such a call does.
#pragma once

#include <cmath>
#include <complex>
#include <cstdint>
#include <limits>
#include <type_traits>

#include <builtin/config.hpp>
#include <builtin/declare/Builtin.hpp>
#include <builtin/declare/Options.hpp>

namespace Norvane::builtin::declare::arithmetic {

using Classes = TypeList<double, float, bool, char16_t, std::int8_t, std::int16_t, std::int32_t,
                         std::int64_t, std::uint8_t, std::uint16_t, std::uint32_t, std::uint64_t,
                         std::complex<double>, std::complex<float>>;

namespace detail {

template <class T>
constexpr bool isInteger =
    std::is_integral_v<T> && !std::is_same_v<T, bool> && !std::is_same_v<T, char16_t>;

template <class T>
constexpr bool isComplex =
    std::is_same_v<T, std::complex<double>> || std::is_same_v<T, std::complex<float>>;

template <class T>
struct RealPart {
    using type = T;
};
template <class T>
struct RealPart<std::complex<T>> {
    using type = T;
};

// The result class of L with R, or void where the pair is refused.
template <class L, class R>
constexpr auto resultOf() {
    if constexpr (isInteger<L> && isInteger<R>) {
        if constexpr (std::is_same_v<L, R>) {
            return std::type_identity<L>();
        } else {
            return std::type_identity<void>();
        }
    } else if constexpr (isInteger<L> || isInteger<R>) {
        using I = std::conditional_t<isInteger<L>, L, R>;
        using Other = std::conditional_t<isInteger<L>, R, L>;
        if constexpr (isComplex<Other>) {
            return std::type_identity<void>();
        } else {
            return std::type_identity<I>();
        }
    } else if constexpr (isComplex<L> || isComplex<R>) {
        using Real = typename decltype(resultOf<typename RealPart<L>::type,
                                                typename RealPart<R>::type>())::type;
        return std::type_identity<std::complex<Real>>();
    } else if constexpr (std::is_same_v<L, float> || std::is_same_v<R, float>) {
        return std::type_identity<float>();
    } else {
        return std::type_identity<double>();
    }
}

// NaN to 0, then the nearest value of I within its range.
template <class I>
I saturate(double x) {
    if (std::isnan(x)) return 0;
    if (x <= static_cast<double>(std::numeric_limits<I>::min())) {
        return std::numeric_limits<I>::min();
    }
    if (x >= static_cast<double>(std::numeric_limits<I>::max())) {
        return std::numeric_limits<I>::max();
    }
    return static_cast<I>(x);
}

template <class To, class From>
To convert(From value) {
    if constexpr (isComplex<To> && isComplex<From>) {
        return static_cast<To>(value);
    } else if constexpr (isComplex<To>) {
        return To(static_cast<typename To::value_type>(value));
    } else {
        return static_cast<To>(value);
    }
}

}  // namespace detail

template <class L, class R>
using Result = typename decltype(detail::resultOf<L, R>())::type;

template <class L, class R>
inline constexpr bool combines = !std::is_void_v<Result<L, R>>;

// The kernel of Op for one pair of classes.
template <template <class> class Op, class L, class R>
struct Kernel {
    using Out = Result<L, R>;
    Out operator()(L a, R b) const {
        if constexpr (detail::isInteger<Out>) {
            return detail::saturate<Out>(
                std::round(Op<double>::apply(static_cast<double>(a), static_cast<double>(b))));
        } else {
            return Op<Out>::apply(detail::convert<Out>(a), detail::convert<Out>(b));
        }
    }
};

// The fallback of a binary arithmetic builtin: names the refused pair of classes, or fails as a
// call that nothing takes.
BUILTIN_API void refuseClasses(int nlhs, kaArray_tag** plhs, int nrhs, kaArray_tag** prhs,
                               OrroFunctionDescriptor* descriptor);

// Declares Op over every pair of classes that combine, and the fallback that refuses the rest.
template <template <class> class Op>
void declareBinary(Builtin& builtin) {
    [&]<class... C>(TypeList<C...>) {
        (
            [&]<class L>() {
                (
                    [&]<class R>() {
                        if constexpr (combines<L, R>) {
                            builtin.def(Kernel<Op, L, R>(), pure, elementwise);
                        }
                    }.template operator()<C>(),
                    ...);
            }.template operator()<C>(),
            ...);
    }(Classes());
    builtin.fallback(&refuseClasses, pure, noWarnings);
}

}  // namespace Norvane::builtin::declare::arithmetic
