// What a declaration's options say of a native function, as the record of its variants: the
// four behaviour flags and the three names. Declared functions and default implementations
// both start from it.
#pragma once

#include <string>

#include <builtin/declare/Options.hpp>
#include <builtin/variants/BuiltinVariant.hpp>

namespace Norvane::builtin::declare::detail {

// Where the author said nothing, the safe answer: the function may call back and have side
// effects, and it may warn and fail exactly if it can report, which a function of the reporting
// form and an array function can.
VariantDeclaration declarationOf(const std::string& name, const Options& options, bool canReport);

}  // namespace Norvane::builtin::declare::detail
