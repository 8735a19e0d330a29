// Fatal checks on a Parameter or an array of the wrong type, for the templates through which
// modules declare their functions. Reaching one means a declaration and its native function
// disagree, a fault of the program rather than of the data: they stop the process with a text
// that names both types.
#pragma once

#include <typeinfo>

#include <builtin/calling/Parameter.hpp>
#include <builtin/config.hpp>
#include <builtin/types/ArgType.hpp>

struct kaArray_tag;

namespace Norvane::builtin::types::detail {

// Always stops: the array is not of the expected type; the text gives the array's ArgType.
[[noreturn]] BUILTIN_API void assertFromParameterType(const std::type_info& expected,
                                                      const kaArray_tag* const array);

// Always stops: the Parameter does not hold the expected object type.
[[noreturn]] BUILTIN_API void assertOrroObjectFromParameterType(const std::type_info& expected,
                                                                const Parameter& parameter);

// Returns if the active alternative has the expected type. Otherwise stops, unless
// fl_diag_terminate() answers false; then it returns too.
BUILTIN_API void assertParameterContainsType(const std::type_info& expected,
                                             const Parameter& parameter);

// The type of the active alternative.
BUILTIN_API const std::type_info& parameterTypeInfo(const Parameter& parameter);

}  // namespace Norvane::builtin::types::detail

namespace Norvane::builtin::builtinreg::detail {

// Always stops: the Parameter for a native argument holds another type than declared.
[[noreturn]] BUILTIN_API void assertParameterWrongType(const std::type_info& expected,
                                                       const Parameter& parameter,
                                                       const types::ArgType& expectedArgType);

}  // namespace Norvane::builtin::builtinreg::detail
