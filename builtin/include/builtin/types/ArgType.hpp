// ArgType: the word in which the library speaks about a value without holding one. A declared
// variant has one for each input and output, a live array classifies to one at call time, and
// matching compares the two.
//
// The order of the alternatives is part of the meaning: the index is the first key of the
// order of ArgTypes, and so of the order of variants. Comparison is that of std::variant.
// ArgType as a whole has no hash; each alternative but UnsupportedArgType has a hash() member.
//
// Every operation that visits a valueless ArgType throws std::bad_variant_access.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <variant>
#include <vector>

#include <builtin/config.hpp>
#include <builtin/types/FlagInputType.hpp>
#include <builtin/types/KaArrayTypes.hpp>
#include <builtin/types/KeldorStringType.hpp>
#include <builtin/types/NumericScalarTypes.hpp>
#include <builtin/types/OrroObjectTypes.hpp>
#include <builtin/types/TypeVocabulary.hpp>
#include <builtin/types/UnsupportedArgType.hpp>

namespace Norvane::builtin::types {

using ArgType = std::variant<UnsupportedArgType,    // 0
                             FlagInputType,         // 1
                             NumericScalarTypes,    // 2
                             KeldorStringType,      // 3
                             OrroObjectPlaceTypes,  // 4
                             OrroObjectTypes,       // 5
                             KaArrayTypes>;         // 6

// The type as a type expression; index is the position of the argument in its signature and
// numbers the type variables, so that those of different arguments do not collide.
BUILTIN_API std::string toString(const ArgType& type, ArgTypeDirection direction,
                                 std::size_t index);

// Does the declared type take the candidate? Directional: a declared RELAXED array takes the
// other alternatives through their array form, a STRICT one takes only arrays.
BUILTIN_API bool isAcceptable(const ArgType& declared, const ArgType& candidate);

// isAcceptable between values of the same alternative only, without conversions.
BUILTIN_API bool isAcceptableToOrro(const ArgType& declared, const ArgType& candidate);

// Can both describe the same kind of value, shape and tolerance aside? Symmetric but for
// flags: a string or an object may be compatible with a flag, a flag with neither, and a flag
// is never compatible with an array.
BUILTIN_API bool isCompatible(const ArgType& a, const ArgType& b);

BUILTIN_API OrroSupportLevel getOrroSupportLevel(const ArgType& type, ArgTypeDirection direction);

// The types that a dispatch must try before this one, in the order of the alternative's member.
BUILTIN_API std::vector<ArgType> getGreaterPrecedenceTypes(const ArgType& type);

// True for a flag: the argument is matched but not passed on to the native function.
BUILTIN_API bool skipDuringInvoke(const ArgType& type);

// The type that an element-wise kernel of this type takes: a numeric scalar, or a full
// numeric array of known complexity, becomes a RELAXED array of any shape of that element and
// complexity. Everything else comes back unchanged.
BUILTIN_API ArgType asElementWiseArrayType(const ArgType& type);

// An array type with the tolerance set; any other alternative unchanged.
BUILTIN_API ArgType setSignatureTolerance(ArgType type, SignatureTolerance tolerance);

// The diagnostic form: nothing for an unsupported type, toString() for flags, scalars and
// objects, toString(INPUT, 0) for strings, and the diagnostic form of arrays. Found by
// argument-dependent lookup through the alternatives, whose namespace this is.
BUILTIN_API std::ostream& operator<<(std::ostream& os, const ArgType& type);

}  // namespace Norvane::builtin::types
