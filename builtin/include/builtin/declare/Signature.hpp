// What the C++ type of a native function says about it: its calling convention, its inputs
// and its output. A noexcept function is read as the same function without it, and an input
// taken by const reference as the value it refers to. A stateless callable (a lambda without
// captures, a functor) is read through its call operator. The convention is read off the trailing
// parameters:
//
//   R f(A...)                                                          Direct
//   R f(A..., OrroFunctionDescriptor*)                                 DirectWithDescriptor
//   bool f(A..., R* out, IOrroBuiltinEnvironment*, OrroFunctionDescriptor*)   CanThrow
//   bool f(A..., void* out, IOrroBuiltinEnvironment*, OrroFunctionDescriptor*) CanThrow, no output
#pragma once

#include <cstddef>
#include <tuple>
#include <type_traits>
#include <utility>

#include <builtin/calling/CallingConvention.hpp>
#include <builtin/calling/OrroBuiltinEnvironment.hpp>
#include <builtin/calling/OrroFunctionDescriptor.hpp>

namespace Norvane::builtin::declare {

template <class... T>
struct TypeList {
    static constexpr std::size_t size = sizeof...(T);
};

namespace detail {

// An input as the declaration sees it: the value that a const reference refers to. Any other
// reference is left as it is, for the check of declarable types to name.
template <class A>
using Taken =
    std::conditional_t<std::is_lvalue_reference_v<A> && std::is_const_v<std::remove_reference_t<A>>,
                       std::remove_cvref_t<A>, A>;

template <class Tuple, std::size_t... I>
TypeList<Taken<std::tuple_element_t<I, Tuple>>...> firstOf(std::index_sequence<I...>);

// The first N types of the pack, each as it is taken.
template <std::size_t N, class... A>
using First = decltype(firstOf<std::tuple<A...>>(std::make_index_sequence<N>()));

template <class Tuple, std::size_t... I>
constexpr bool anyReference(std::index_sequence<I...>) {
    return (std::is_reference_v<std::tuple_element_t<I, Tuple>> || ...);
}

// The type K places from the end of the pack, K from 1.
template <std::size_t K, class... A>
using FromEnd = std::tuple_element_t<sizeof...(A) - K, std::tuple<A...>>;

template <class R, class... A>
constexpr JIT_CALLING_CONVENTION conventionOf() {
    constexpr std::size_t n = sizeof...(A);
    if constexpr (n >= 3 && std::is_same_v<R, bool>) {
        if constexpr (std::is_same_v<FromEnd<1, A...>, OrroFunctionDescriptor*> &&
                      std::is_same_v<FromEnd<2, A...>, IOrroBuiltinEnvironment*> &&
                      std::is_pointer_v<FromEnd<3, A...>>) {
            return JIT_CALLING_CONVENTION::CanThrow;
        }
    }
    if constexpr (n >= 1) {
        if constexpr (std::is_same_v<FromEnd<1, A...>, OrroFunctionDescriptor*>) {
            return JIT_CALLING_CONVENTION::DirectWithDescriptor;
        }
    }
    return JIT_CALLING_CONVENTION::Direct;
}

// The result of the function, or what its out parameter points at under CanThrow.
template <JIT_CALLING_CONVENTION C, class R, class... A>
struct OutputOf {
    using type = R;
};
template <class R, class... A>
struct OutputOf<JIT_CALLING_CONVENTION::CanThrow, R, A...> {
    using type = std::remove_pointer_t<FromEnd<3, A...>>;
};

}  // namespace detail

template <class F>
struct Signature;

template <class R, class... A>
struct Signature<R (*)(A...)> {
    static constexpr JIT_CALLING_CONVENTION convention = detail::conventionOf<R, A...>();
    static constexpr std::size_t trailing = convention == JIT_CALLING_CONVENTION::CanThrow ? 3
                                            : convention == JIT_CALLING_CONVENTION::Direct ? 0
                                                                                           : 1;
    using Inputs = detail::First<sizeof...(A) - trailing, A...>;
    using Output = typename detail::OutputOf<convention, R, A...>::type;
    using Function = R (*)(A...);
    // Whether an input is a reference, which only an entry that knows the function's own type
    // can pass; the library's ready-made entries pass values.
    static constexpr bool takesReferences =
        detail::anyReference<std::tuple<A...>>(std::make_index_sequence<sizeof...(A) - trailing>());
};

template <class R, class... A>
struct Signature<R (*)(A...) noexcept> : Signature<R (*)(A...)> {};

namespace detail {

// The plain function type of a call operator.
template <class M>
struct CallOperator;
template <class C, class R, class... A>
struct CallOperator<R (C::*)(A...)> {
    using type = R (*)(A...);
};
template <class C, class R, class... A>
struct CallOperator<R (C::*)(A...) const> : CallOperator<R (C::*)(A...)> {};
template <class C, class R, class... A>
struct CallOperator<R (C::*)(A...) noexcept> : CallOperator<R (C::*)(A...)> {};
template <class C, class R, class... A>
struct CallOperator<R (C::*)(A...) const noexcept> : CallOperator<R (C::*)(A...)> {};

}  // namespace detail

template <class F>
requires std::is_class_v<F> && requires {
    &F::operator();
}
struct Signature<F> : Signature<typename detail::CallOperator<decltype(&F::operator())>::type> {};

}  // namespace Norvane::builtin::declare
