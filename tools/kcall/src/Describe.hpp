// What kcall shows about builtins rather than values: the variant lists of a builtin
// (--describe) and, for one call, every candidate variant in the order invoke tries them with
// the reason each refused and the one that took the call (--explain).
#pragma once

#include <span>
#include <string>
#include <string_view>

#include <builtin/invoke/BuiltinFcn.hpp>
#include <builtin/variants/BuiltinVariantLists.hpp>
#include <ka/ka.hpp>

namespace kcall {

// "double 2x3", "complex single 1x1", "char 1x5", "Counter 1x1", "sparse double 3x3".
std::string describeValue(const kaArray_tag* value);

// The builtin's lists, one variant a line, and what the registration lint finds.
std::string describeBuiltin(std::string_view name, std::string_view module,
                            const Norvane::builtin::builtinreg::BuiltinVariantLists& lists);

// How invoke, searching the list it searches without the engine, treats a call of the builtin
// with these arguments asking for nlhs outputs: each candidate with the verdict of the library's
// acceptance rule, up to the one that takes the call.
std::string explainCall(std::string_view name, const Norvane::builtin::BuiltinFcn& fcn,
                        std::span<kaArray_tag* const> arguments, std::size_t nlhs);

}  // namespace kcall
