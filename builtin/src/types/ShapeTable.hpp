// The shape table: how a full array is typed by its dimensions. A 1-by-1 array of a numeric
// class is a scalar with its own converter; every other array keeps its class and complexity
// and is typed by shape, with the pass-through converter.
#pragma once

#include <utility>

#include <ka/class_id.hpp>

#include <builtin/types/classifyKaArray.hpp>

namespace Norvane::builtin::types::detail {

// `element` must be a class of which full arrays exist (cell, struct, logical, char, the
// numeric classes or function handles); the caller has checked it. Completes opaque dimensions.
std::pair<ArgType, Converter> classifyByShape(const kaArray_tag* array, kaClassID element,
                                              bool complex);

// The converter of a full, real 1-by-1 array of a numeric element class, which classifies as
// NumericScalarTypes(stored class, REAL); null for any other array. Such a scalar is the
// argument of most calls, and this answers it without the general classification.
Converter realScalarConverter(const kaArray_tag* array) noexcept;

}  // namespace Norvane::builtin::types::detail
