// Boxing variants: engine-only variants of a declared variant whose inputs are what the engine
// holds unboxed, with a typed entry that converts each input to the type the developer
// declared. The declaring templates make the prototype (typed entry and originalVariant set)
// and the lists of boxed input types; the library appends the variants, checks them, logs the
// conversions and reports a failed conversion the way a CanThrow function reports.
//
// A boxing variant is never offered to the interpreter: its level is worked out from
// ORRO_ONLY, and cleanup removes those that end at NO_SUPPORT.
#pragma once

#include <functional>
#include <initializer_list>
#include <typeinfo>
#include <vector>

#include <builtin/calling/OrroBuiltinEnvironment.hpp>
#include <builtin/config.hpp>
#include <builtin/variants/BuiltinVariant.hpp>

namespace Norvane::builtin::builtinreg::detail {

// Appends a copy of `prototype` for each list of `boxedInputs`, in order, with that list as its
// inputs (moved in), their type expressions, and a level folded from ORRO_ONLY over its outputs
// and inputs. Throws std::invalid_argument if a level is out of range.
BUILTIN_API void fillBoxedVariants(const BuiltinVariant& prototype,
                                   std::vector<BuiltinVariant>& variants,
                                   std::vector<std::vector<ArgType>>&& boxedInputs);

// Stops the process (where fatal checks are active) unless the boxing variant has as many
// inputs as its source and the same outputs, as texts and as types.
BUILTIN_API void assertBoxingVariantConsistent(const BuiltinVariant& boxingVariant,
                                               const BuiltinVariant& originalVariant);

// One record on "builtin2::Boxing" at severity 4 naming the developer's input types, the boxed
// ones and the variant's type expressions; nothing is formatted when the record is off.
BUILTIN_API void logBoxingInputConversions(
    std::initializer_list<std::reference_wrapper<const std::type_info>> developerInputs,
    std::initializer_list<std::reference_wrapper<const std::type_info>> boxedInputs,
    const BuiltinVariant& variant);

// For the catch handler of a boxing typed entry: sets `pending` and, where the environment
// takes reports, records the exception being handled in it.
BUILTIN_API void handleBoxingException(bool& pending, IOrroBuiltinEnvironment* const environment);

}  // namespace Norvane::builtin::builtinreg::detail
