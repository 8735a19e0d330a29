// The signatures of one declaration. A native function's parameters each stand for one or more
// ArgTypes, handed over by getters; getArgTypes spreads them into every concrete input
// signature (the cross product, first parameter varying fastest) with the declaration's
// tolerance applied, and takes the output's type. appendNewVariants (MakeVariant.hpp) then
// makes one variant of each signature.
//
//   const ArgTypes signatures = builtinreg::getArgTypes(
//       SignatureTolerance::STRICT, {1, 3},
//       {&types::getNativeArgType<double, types::NativeShape::SCALAR>,
//        &types::nativeStringArgType},
//       &types::getNativeArgType<double, types::NativeShape::SCALAR>);
#pragma once

#include <cstddef>
#include <initializer_list>
#include <iosfwd>
#include <vector>

#include <builtin/config.hpp>
#include <builtin/types/ArgType.hpp>
#include <builtin/types/NativeArgTypes.hpp>

namespace Norvane::builtin::builtinreg {

using types::ArgType;
using types::ArgTypeGetter;

struct ArgTypes {
    std::vector<ArgType> outputs;              // empty, or the one output type
    std::vector<std::vector<ArgType>> inputs;  // one element per concrete input signature
};

// The signatures of a declaration: numArgTypes[j] possible types of parameter j, asked from
// getArgType[j] by index; the output's type is index 0 of outputGetArgType (none if null).
// The two lists must have one element per parameter; a mismatch is a fatal fault of the
// declaring template. Throws std::length_error "vector too long" if the product of the counts
// cannot be held, and whatever a getter throws.
BUILTIN_API ArgTypes getArgTypes(types::SignatureTolerance tolerance,
                                 const std::initializer_list<const std::size_t>& numArgTypes,
                                 const std::initializer_list<ArgTypeGetter>& getArgType,
                                 ArgTypeGetter outputGetArgType);

// "outputs: [ t ]\ninputs: [  [ a, b ],\n  [ c, d ]\n]\n"; an empty list prints as "nil".
BUILTIN_API std::ostream& operator<<(std::ostream& os, const ArgTypes& argTypes);

}  // namespace Norvane::builtin::builtinreg
