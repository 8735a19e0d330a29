// The templates behind the family of typed wrappers. Each member turns a list of Parameters
// into a call of a native function of known signature: output R (void for none), inputs A0
// and A1 where it has them. It is the hot path of every typed call, so it stays plain: one
// branch on the convention, a tag test per argument, one indirect call, one store, and no try
// block: exceptions of a fetch or of a convention 0 or 1 function go straight to the caller.
#pragma once

#include <builtin/calling/CallingConvention.hpp>
#include <builtin/calling/OrroFunctionDescriptor.hpp>

#include <type_traits>

namespace Norvane::builtin::builtinreg::detail {

// The native function to call and how, as read once from the descriptor.
struct NativeCall {
    NativeEntry entry;  // null: call nothing and return the default Parameter
    JIT_CALLING_CONVENTION convention;
};

// Steps common to all wrappers, before any argument is fetched: clear the flag, stop on the
// engine's own convention, and call nothing for an unknown convention or a missing native
// function.
inline NativeCall prepareNativeCall(const OrroFunctionDescriptor* descriptor, bool& pending) {
    pending = false;
    const JIT_CALLING_CONVENTION convention = descriptor->callingConvention;
    if (convention > JIT_CALLING_CONVENTION::CanThrow) [[unlikely]] {
        if (convention == JIT_CALLING_CONVENTION::CanThrowOrroInternal) {
            terminateUnexpectedCallingConvention(convention);
        }
        return {nullptr, convention};
    }
    return {descriptor->nativeEntry, convention};
}

// The value of an argument that must hold alternative T exactly, with no conversion between
// alternatives; boost::bad_get otherwise. Instantiated once for the sixteen alternatives in
// FetchArgument.cpp: compiling boost::get into each of the 4641 wrappers would double the
// build time of the family, for a saving of one direct call.
template <class T>
T fetchArgument(const Parameter& argument);

// The native result in the alternative of its own type.
template <class R>
Parameter makeResult(R value) {
    return Parameter(value);
}

// Calls the native function with its inputs fetched; the convention is 0, 1 or 2. The result
// leaves in the alternative of R, unboxed; without an output it is the default Parameter.
template <class R, class... A>
Parameter callNative(OrroFunctionDescriptor* descriptor, IOrroBuiltinEnvironment* environment,
                     bool& pending, NativeCall call, A... a) {
    using enum JIT_CALLING_CONVENTION;
    using Plain = orro::NativeFunction<Direct, R, A...>;
    using WithDescriptor = orro::NativeFunction<DirectWithDescriptor, R, A...>;
    using Reporting = orro::NativeFunction<CanThrow, R, A...>;
    if constexpr (std::is_void_v<R>) {
        switch (call.convention) {
            case Direct: reinterpret_cast<Plain>(call.entry)(a...); break;
            case DirectWithDescriptor:
                reinterpret_cast<WithDescriptor>(call.entry)(a..., descriptor);
                break;
            default:  // CanThrow, with a null out argument
                pending =
                    reinterpret_cast<Reporting>(call.entry)(a..., nullptr, environment, descriptor);
                break;
        }
        return Parameter();
    } else {
        switch (call.convention) {
            case Direct: return makeResult<R>(reinterpret_cast<Plain>(call.entry)(a...));
            case DirectWithDescriptor:
                return makeResult<R>(
                    reinterpret_cast<WithDescriptor>(call.entry)(a..., descriptor));
            default: {  // CanThrow: out is taken whether the function reported or not
                R out{};
                pending =
                    reinterpret_cast<Reporting>(call.entry)(a..., &out, environment, descriptor);
                return makeResult<R>(out);
            }
        }
    }
}

template <class R>
Parameter inlineCWrapper(OrroFunctionDescriptor* descriptor, IOrroBuiltinEnvironment* environment,
                         bool& pending, const ParameterList& /*arguments*/) {
    const NativeCall call = prepareNativeCall(descriptor, pending);
    if (call.entry == nullptr) [[unlikely]] {
        return Parameter();
    }
    return callNative<R>(descriptor, environment, pending, call);
}

template <class R, class A0>
Parameter inlineCWrapper(OrroFunctionDescriptor* descriptor, IOrroBuiltinEnvironment* environment,
                         bool& pending, const ParameterList& arguments) {
    const NativeCall call = prepareNativeCall(descriptor, pending);
    if (call.entry == nullptr) [[unlikely]] {
        return Parameter();
    }
    const A0 a0 = fetchArgument<A0>(arguments[0]);
    return callNative<R, A0>(descriptor, environment, pending, call, a0);
}

// The second input is fetched before the first.
template <class R, class A0, class A1>
Parameter inlineCWrapper(OrroFunctionDescriptor* descriptor, IOrroBuiltinEnvironment* environment,
                         bool& pending, const ParameterList& arguments) {
    const NativeCall call = prepareNativeCall(descriptor, pending);
    if (call.entry == nullptr) [[unlikely]] {
        return Parameter();
    }
    const A1 a1 = fetchArgument<A1>(arguments[1]);
    const A0 a0 = fetchArgument<A0>(arguments[0]);
    return callNative<R, A0, A1>(descriptor, environment, pending, call, a0, a1);
}

}  // namespace Norvane::builtin::builtinreg::detail
