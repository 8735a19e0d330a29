// Native functions as the declaration templates take them: a pointer known only at run time, or
// a function known at compile time as a stateless callable type (a lambda without captures, a
// functor, or a function named as a template argument through Function<&f>). A callable type lets
// the lifted loops call the function directly, so that the compiler can inline and vectorise it.
//
// The engine calls every native function through a plain function pointer, so a callable gets
// one: NativeOf<F>::call, a function of F's own form that calls F{}. A function that warns with
// the one-call reports of warn() gets a function of the reporting form instead, which calls it
// inside a ReportingScope and reports what it throws.
#pragma once

#include <type_traits>
#include <utility>

#include <builtin/calling/ReportingScope.hpp>
#include <builtin/declare/Signature.hpp>
#include <builtin/variants/BuiltinVariant.hpp>

namespace Norvane::builtin::declare {

// A function named as a template argument, as a callable type: def<&f>(...) is def(Function<&f>(),
// ...).
template <auto Fn, class = decltype(Fn)>
struct Function;
template <auto Fn, class R, class... A>
struct Function<Fn, R (*)(A...)> {
    static constexpr auto pointer = Fn;
    R operator()(A... a) const { return Fn(std::forward<A>(a)...); }
};
template <auto Fn, class R, class... A>
struct Function<Fn, R (*)(A...) noexcept> {
    static constexpr auto pointer = Fn;
    R operator()(A... a) const noexcept { return Fn(std::forward<A>(a)...); }
};

namespace detail {

template <class F>
constexpr bool isFunctionPointer =
    std::is_pointer_v<F>&& std::is_function_v<std::remove_pointer_t<F>>;

template <class F>
constexpr bool isStatelessCallable =
    std::is_class_v<F>&& std::is_empty_v<F>&& std::is_default_constructible_v<F>&& requires {
    &F::operator();
};

// The developer's own function, as the variant records it: the function itself where there is
// one, else the native function made for a lambda or functor.
template <class F, class Stored>
void* developerFunctionOf(F fn, Stored stored) {
    if constexpr (isFunctionPointer<F>) {
        return reinterpret_cast<void*>(fn);
    } else if constexpr (requires { F::pointer; }) {
        return reinterpret_cast<void*>(F::pointer);
    } else {
        return reinterpret_cast<void*>(stored);
    }
}

// The plain function of a callable's own form that the engine and the wrappers call.
template <class F, class Fn = typename Signature<F>::Function>
struct NativeOf;
template <class F, class R, class... A>
struct NativeOf<F, R (*)(A...)> {
    static R call(A... a) { return F{}(std::forward<A>(a)...); }
};

// How a reporting function reaches the function it reports for: a callable type is made
// anew; a pointer is the developer function of the variant that the descriptor belongs to.
template <class F>
struct Callee {
    static F of(OrroFunctionDescriptor*) { return F{}; }
};
template <class R, class... A>
struct Callee<R (*)(A...)> {
    static R (*of(OrroFunctionDescriptor* descriptor))(A...) {
        return reinterpret_cast<R (*)(A...)>(enclosingVariant(descriptor).developerFunction);
    }
};
template <class R, class... A>
struct Callee<R (*)(A...) noexcept> : Callee<R (*)(A...)> {};

// The function of the reporting form for a function F of form Direct or DirectWithDescriptor
// that warns through warn(): it calls F in a scope of the environment it is given, and reports
// an exception that F throws as the call's error.
template <class F, class S = Signature<F>, class Inputs = typename S::Inputs>
struct ReportingOf;
template <class F, class S, class... A>
struct ReportingOf<F, S, TypeList<A...>> {
    using R = typename S::Output;
    using Out = std::conditional_t<std::is_void_v<R>, void*, R*>;
    using Form = bool (*)(A..., Out, IOrroBuiltinEnvironment*, OrroFunctionDescriptor*);

    static bool call(A... a, Out out, IOrroBuiltinEnvironment* environment,
                     OrroFunctionDescriptor* descriptor) {
        const builtinreg::detail::ReportingScope scope(environment);
        try {
            if constexpr (std::is_void_v<R>) {
                invoke(descriptor, std::forward<A>(a)...);
            } else {
                *out = invoke(descriptor, std::forward<A>(a)...);
            }
            return scope.reported();
        } catch (...) {
            return builtinreg::detail::reportCurrentException(environment);
        }
    }

private:
    static R invoke(OrroFunctionDescriptor* descriptor, A... a) {
        const auto callee = Callee<F>::of(descriptor);
        if constexpr (S::convention == JIT_CALLING_CONVENTION::DirectWithDescriptor) {
            return callee(std::forward<A>(a)..., descriptor);
        } else {
            return callee(std::forward<A>(a)...);
        }
    }
};

}  // namespace detail

}  // namespace Norvane::builtin::declare
