// Warnings in one call, for functions declared with `warns`:
//
//   double logOf(double x) {
//       if (x < 0) declare::warn("log of a negative number is NaN");
//       return std::log(x);
//   }
//   module.builtin("log").def<&logOf>(pure, elementwise, warns);
//
// The warning reaches the caller with the call's result; an element-wise call delivers each
// distinct text once. To fail, throw: what the function throws becomes the call's error, with
// the exception's text. warn() from a function not declared with `warns` throws
// std::logic_error, which then becomes the call's error.
#pragma once

#include <string_view>

#include <builtin/calling/ReportingScope.hpp>

namespace Norvane::builtin::declare {

inline void warn(std::u16string_view text) {
    builtinreg::detail::ReportingScope::warn(text);
}
// UTF-8 text.
inline void warn(std::string_view text) {
    builtinreg::detail::ReportingScope::warn(text);
}

}  // namespace Norvane::builtin::declare
