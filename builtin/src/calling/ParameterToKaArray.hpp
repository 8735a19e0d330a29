// The way a typed result leaves for the interpreter: a Parameter becomes an array with one
// reference, owned by the caller. Internal to the library; exported only so that tests can
// reach it.
#pragma once

#include <builtin/calling/Parameter.hpp>
#include <builtin/config.hpp>
#include <builtin/variants/BuiltinVariant.hpp>

namespace Norvane::builtin {

// Alternative 13 hands on the reference the result carries, unchanged. Every other alternative
// is boxed into a new array; alternative 9 becomes a char if the variant's first output is the
// char scalar, a uint16 otherwise. A null string or object, or a missing service, gives null.
BUILTIN_API kaArray_tag* parameterToKaArray(const Parameter& result, const BuiltinVariant& variant);

}  // namespace Norvane::builtin
