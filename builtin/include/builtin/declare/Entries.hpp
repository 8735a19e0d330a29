// The typed entry of a native function that the library's wrapper family cannot call: one with
// more than two inputs, or with parameter types that are not alternatives of Parameter (views,
// strings, char16_t, borrowed arrays). It is instantiated in the declaring module, once per
// function type, and finds the function in the descriptor's nativeEntry:
//
//   1. Convert each argument to its C++ type, in order; the arrays that arrive are held until
//      the function returns (or a conversion fails), whatever the function's parameters are.
//   2. Call the function by its convention.
//   3. Turn the result into a Parameter.
//
// A conversion that fails throws, as a wrapper's fetch does; under CanThrow it is reported
// through the environment instead, as the function itself would report.
#pragma once

#include <exception>
#include <tuple>
#include <type_traits>
#include <utility>

#include <builtin/calling/ParameterConversion.hpp>
#include <builtin/declare/Parameters.hpp>
#include <builtin/declare/Signature.hpp>
#include <builtin/variants/BoxingVariants.hpp>

namespace Norvane::builtin::declare::detail {

template <class Fn, class Output, class... Inputs, std::size_t... I>
Parameter callConverted(OrroFunctionDescriptor* descriptor, IOrroBuiltinEnvironment* environment,
                        bool& pending, const ParameterList& arguments, std::index_sequence<I...>) {
    constexpr JIT_CALLING_CONVENTION convention = Signature<Fn>::convention;
    const auto fn = reinterpret_cast<Fn>(descriptor->nativeEntry);
    CallHolders holders;
    // Braces convert the arguments in order, left to right.
    std::tuple<Inputs...> values{ParameterTraits<Inputs>::from(arguments[I], holders)...};
    (handOver<Inputs>(std::get<I>(values)), ...);
    if constexpr (convention == JIT_CALLING_CONVENTION::CanThrow) {
        if constexpr (std::is_void_v<Output>) {
            pending = fn(std::get<I>(values)..., nullptr, environment, descriptor);
            return Parameter();
        } else {
            Output out{};
            pending = fn(std::get<I>(values)..., &out, environment, descriptor);
            return ParameterTraits<Output>::toParameter(std::move(out));
        }
    } else {
        const auto call = [&] {
            if constexpr (convention == JIT_CALLING_CONVENTION::DirectWithDescriptor) {
                return fn(std::get<I>(values)..., descriptor);
            } else {
                return fn(std::get<I>(values)...);
            }
        };
        if constexpr (std::is_void_v<Output>) {
            call();
            return Parameter();
        } else {
            return ParameterTraits<Output>::toParameter(call());
        }
    }
}

template <class Fn, class Output, class... Inputs>
Parameter convertingEntry(OrroFunctionDescriptor* descriptor, IOrroBuiltinEnvironment* environment,
                          bool& pending, const ParameterList& arguments) {
    pending = false;
    if (descriptor->nativeEntry == nullptr) return Parameter();
    if constexpr (Signature<Fn>::convention == JIT_CALLING_CONVENTION::CanThrow) {
        try {
            return callConverted<Fn, Output, Inputs...>(descriptor, environment, pending, arguments,
                                                        std::index_sequence_for<Inputs...>());
        } catch (...) {
            builtinreg::detail::handleBoxingException(pending, environment);
            return Parameter();
        }
    } else {
        return callConverted<Fn, Output, Inputs...>(descriptor, environment, pending, arguments,
                                                    std::index_sequence_for<Inputs...>());
    }
}

// A value of the engine's type B, made into what a parameter of type A arrives as: a number
// boxed into a 1-by-1 array (a new reference, kept by `created`) where A takes arrays,
// otherwise the value as it came.
template <class B, class A>
Parameter boxedArgument(const Parameter& argument, CallHolders& created) {
    if constexpr (std::is_same_v<typename ParameterTraits<A>::Arrives, kaArray_tag*> &&
                  !std::is_same_v<B, kaArray_tag*>) {
        kaArray_tag* array = nullptr;
        builtinreg::detail::parameterConversionImpl(&array, boost::get<B>(argument));
        created.emplace_back(array);
        matrix::takeReference(array);  // the reference that the conversion's holders take over
        return Parameter(array);
    } else {
        return argument;
    }
}

// The typed entry of a boxing variant: box each argument, then call as the converting entry
// does. Nothing escapes it: a failure is reported as a CanThrow function reports.
template <class Fn, class Output, class Inputs, class Boxed>
struct BoxingEntry;

template <class Fn, class Output, class... Inputs, class... Boxed>
struct BoxingEntry<Fn, Output, TypeList<Inputs...>, TypeList<Boxed...>> {
    static_assert(sizeof...(Inputs) == sizeof...(Boxed),
                  "a boxing declaration names one type per input");

    static Parameter entry(OrroFunctionDescriptor* descriptor, IOrroBuiltinEnvironment* environment,
                           bool& pending, const ParameterList& arguments) {
        pending = false;
        try {
            CallHolders created;
            ParameterList boxedArguments =
                convert(arguments, created, std::index_sequence_for<Inputs...>());
            return callConverted<Fn, Output, Inputs...>(descriptor, environment, pending,
                                                        boxedArguments,
                                                        std::index_sequence_for<Inputs...>());
        } catch (...) {
            builtinreg::detail::handleBoxingException(pending, environment);
            return Parameter();
        }
    }

    template <std::size_t... I>
    static ParameterList convert(const ParameterList& arguments, CallHolders& created,
                                 std::index_sequence<I...>) {
        ParameterList converted;
        (converted.push_back(boxedArgument<Boxed, Inputs>(arguments[I], created)), ...);
        return converted;
    }
};

template <class Fn, class Output, class Inputs>
struct ConvertingEntry;

template <class Fn, class Output, class... Inputs>
struct ConvertingEntry<Fn, Output, TypeList<Inputs...>> {
    static constexpr TypedEntry entry = &convertingEntry<Fn, Output, Inputs...>;
};

}  // namespace Norvane::builtin::declare::detail
