// What kcall shows about builtins rather than values: the variant lists of a builtin
// (--describe) and, for one call, every candidate variant in the order invoke tries them with
// the reason each refused and the one that took the call (--explain). Types read as people say
// them ("double row vector", "option word 'log'"), or as the engine's type expressions when a
// module author asks for those (--types).
#pragma once

#include <span>
#include <string>
#include <string_view>

#include <builtin/declare/Lint.hpp>
#include <builtin/invoke/BuiltinFcn.hpp>
#include <builtin/variants/BuiltinVariantLists.hpp>
#include <ka/ka.hpp>

namespace kcall {

using Norvane::builtin::declare::TypeWording;

// "double 2x3", "complex single 1x1", "char 1x5", "Counter 1x1", "sparse double 3x3".
std::string describeValue(const kaArray_tag* value);
// The same, with the text of a short char row or of one string, which decides a call where an
// option word is expected: "'descend' (char 1x7)", "\"even\" (string)", "double 2x3".
std::string describeArgument(const kaArray_tag* value);

// The builtin's lists, one variant a line, and what the registration lint finds.
std::string describeBuiltin(std::string_view name, std::string_view module,
                            const Norvane::builtin::builtinreg::BuiltinVariantLists& lists,
                            TypeWording wording = TypeWording::READABLE);

// How invoke, searching the list it searches without the engine, treats a call of the builtin
// with these arguments asking for nlhs outputs: each candidate with the verdict of the library's
// acceptance rule, up to the one that takes the call.
std::string explainCall(std::string_view name, const Norvane::builtin::BuiltinFcn& fcn,
                        std::span<kaArray_tag* const> arguments, std::size_t nlhs,
                        TypeWording wording = TypeWording::READABLE);

}  // namespace kcall
