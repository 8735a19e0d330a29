// The templates behind the family of typed wrappers. Each member turns a list of Parameters
// into a call of a native function of known signature: output R (void for none), inputs A0
// and A1 where it has them. It is the hot path of every typed call, so it stays plain: one
// branch on the convention, a tag test per argument, one indirect call, one store, and no try
// block: exceptions of a fetch or of a convention 0 or 1 function go straight to the caller.
#pragma once

#include <builtin/calling/NativeCall.hpp>

namespace Norvane::builtin::builtinreg::detail {

// The value of an argument that must hold alternative T exactly, with no conversion between
// alternatives; boost::bad_get otherwise. Instantiated once for the sixteen alternatives in
// FetchArgument.cpp: compiling boost::get into each of the 4641 wrappers would double the
// build time of the family, for a saving of one direct call.
template <class T>
T fetchArgument(const Parameter& argument);

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
