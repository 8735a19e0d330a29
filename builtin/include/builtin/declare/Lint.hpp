// The registration lint: what a module author should know about a builtin's lists and that no
// compiler tells. It reports, in plain words,
//   - each declared variant that invoke can never reach: one with the signature of a variant
//     ahead of it in the same list, or one every call of which a variant ahead of it accepts;
//   - each declared variant that shadowing lowered to NO_SUPPORT, which the engine therefore
//     never calls although its own declarations would let it.
// A finding is advice, not an error: the lists work as they are.
#pragma once

#include <string>
#include <vector>

#include <builtin/config.hpp>
#include <builtin/variants/BuiltinVariantLists.hpp>

namespace Norvane::builtin::declare {

struct LintFinding {
    enum class Kind { UNREACHABLE, LOWERED };
    Kind kind;
    std::string message;
};

// A variant as the findings and hosts name it: "cppName(type, type) -> type".
BUILTIN_API std::string signatureText(const BuiltinVariant& variant);

BUILTIN_API std::vector<LintFinding> lintVariantLists(const std::string& builtinName,
                                                      const builtinreg::BuiltinVariantLists& lists);

}  // namespace Norvane::builtin::declare
