// Calling a native function of known signature with its argument values, by the convention its
// descriptor gives: the one step that every typed wrapper and the scalar road of a lifted
// kernel share. Plain on purpose, as the hot path of every typed call: one branch on the
// convention, one indirect call, no try block (exceptions of a convention 0 or 1 function go
// straight to the caller).
#pragma once

#include <type_traits>

#include <builtin/calling/CallingConvention.hpp>
#include <builtin/calling/OrroFunctionDescriptor.hpp>

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

}  // namespace Norvane::builtin::builtinreg::detail
