// Making the variants of a declaration. The declaring templates compute the signatures
// (ArgTypes.hpp) and the flags, and hand them here; everything that is the same for all
// declarations happens in the library: one BuiltinVariant per signature, unsupported ones
// dropped, literal flags put in, the whole vector sorted.
//
// The usual order for one declaration: getArgTypes, sortFlags, appendNewVariants with the two
// fields of the ArgTypes. A declaration with flags appends to a fresh vector, since the flags
// go into every variant of the vector; overloads are joined with appendVariants.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <builtin/calling/OrroFunctionDescriptor.hpp>
#include <builtin/config.hpp>
#include <builtin/variants/BuiltinVariant.hpp>

namespace Norvane::builtin::builtinreg::detail {

// Literal flags: the position in the final input list, and the flag's text in UTF-8.
using FlagList = std::vector<std::pair<std::size_t, std::string>>;

// Appends one variant per signature of `inputs` (each moved out), each the `prototype` with
// those inputs, then removes the unsupported variants of the whole vector, inserts `flags` into
// every variant of it and sorts it. Throws what the flags' UTF-8 conversion throws.
BUILTIN_API void appendNewVariants(std::vector<BuiltinVariant>& variants,
                                   const VariantDeclaration& prototype, const FlagList& flags,
                                   std::vector<std::vector<ArgType>>&& inputs);

// The same from the declaration's parts in the order that modules built against it pass them.
BUILTIN_API void appendNewVariants(
    std::vector<BuiltinVariant>& variants, void* developerFunction,
    BuiltinVariant::CallsIntoKeldor mayCallIntoKeldor,
    BuiltinVariant::HasSideEffects mayHaveSideEffects, std::string_view cppFunctionName,
    std::string_view keldorFunctionName, std::string_view dominantClass, const FlagList& flags,
    BuiltinVariant::HasExceptions mayThrowErrors, const OrroFunctionDescriptor& descriptor,
    BuiltinVariant::IsElementWise isElementWise, BuiltinVariant::HasWarnings mayRaiseWarnings,
    std::vector<ArgType>&& outputs, std::vector<std::vector<ArgType>>&& inputs);

// `first` followed by `second`, unsorted; an empty one hands the other on untouched.
BUILTIN_API std::vector<BuiltinVariant> appendVariants(std::vector<BuiltinVariant>&& first,
                                                       std::vector<BuiltinVariant>&& second);

// Inserts each flag at its position, in list order, into the input types and their texts.
// Positions count in the final input list, so the list must be sorted (sortFlags), and no
// position may exceed the input count at its turn.
BUILTIN_API void addFlagInputTypes(BuiltinVariant& variant, const FlagList& flags);
BUILTIN_API void addFlagInputTypes(std::vector<BuiltinVariant>& variants, const FlagList& flags);

// By position, ascending; the order of two flags at one position is not defined.
BUILTIN_API void sortFlags(FlagList& flags);

// In the total order of variants, which the search of a call relies on.
BUILTIN_API void sortVariants(std::vector<BuiltinVariant>& variants);

// Removes every variant with an UnsupportedArgType among its inputs or outputs; the others
// keep their order.
BUILTIN_API void removeUnsupportedVariants(std::vector<BuiltinVariant>& variants);

BUILTIN_API bool isUnsupportedBuiltinVariant(const BuiltinVariant& variant);

// The last variant whose level is one of `levels`; null if none is.
BUILTIN_API const BuiltinVariant* findLastVariantWithSupportLevel(
    const std::vector<BuiltinVariant>& variants,
    const std::initializer_list<OrroSupportLevel>& levels);

// Stops the process if a declaration's template and its native function disagree on the
// number of outputs or inputs.
BUILTIN_API void assertNumberOfArgTypes(std::size_t expectedNLhs, std::size_t expectedNRhs,
                                        std::size_t actualNLhs, std::size_t actualNRhs);

}  // namespace Norvane::builtin::builtinreg::detail
