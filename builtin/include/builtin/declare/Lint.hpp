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

// How a signature names its types: as people read them (ReadableTypes.hpp), or as the engine's
// type expressions, which a module author may need to see when the engine is the question.
enum class TypeWording { READABLE, ENGINE };

// A variant as the findings and hosts name it: "cppName(type, type) -> type".
BUILTIN_API std::string signatureText(const BuiltinVariant& variant,
                                      TypeWording wording = TypeWording::READABLE);

BUILTIN_API std::vector<LintFinding> lintVariantLists(const std::string& builtinName,
                                                      const builtinreg::BuiltinVariantLists& lists,
                                                      TypeWording wording = TypeWording::READABLE);

}  // namespace Norvane::builtin::declare
