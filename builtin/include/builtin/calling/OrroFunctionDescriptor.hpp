// OrroFunctionDescriptor: the record between a caller that knows no signature and a native
// function that has one. `typedEntry` takes a list of Parameters and calls `nativeEntry` as
// `callingConvention` says.
//
// A descriptor is always the first member of a BuiltinVariant, and typed entries may reach the
// enclosing variant from the descriptor's address: call `typedEntry` with the descriptor of a
// living variant, never with a free-standing copy.
#pragma once

#include <builtin/calling/CallingConvention.hpp>
#include <builtin/calling/OrroBuiltinEnvironment.hpp>
#include <builtin/calling/Parameter.hpp>

namespace Norvane::orro {

struct OrroFunctionDescriptor;

// The type of every typed entry: the inline C wrappers and the lifted element-wise entries.
// It sets `pending` false first; true on return means "look into the environment".
using TypedEntry = Parameter (*)(OrroFunctionDescriptor* descriptor,
                                 IOrroBuiltinEnvironment* environment, bool& pending,
                                 const ParameterList& arguments);

// The untyped form in which a native function is stored; cast to the convention's signature.
using NativeEntry = void (*)();

struct OrroFunctionDescriptor {
    TypedEntry typedEntry = nullptr;    // null for a default implementation
    NativeEntry nativeEntry = nullptr;  // an array function in a default implementation
    JIT_CALLING_CONVENTION callingConvention = JIT_CALLING_CONVENTION::CanThrow;
};

}  // namespace Norvane::orro

namespace Norvane::builtin {
using orro::NativeEntry;
using orro::OrroFunctionDescriptor;
using orro::TypedEntry;
}  // namespace Norvane::builtin
