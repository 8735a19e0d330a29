// The shape table: how a full array is typed by its dimensions. The types are the native type
// constants of the array's element, so that a live array and a declared parameter that fits it
// have the same type; the shapes that only live arrays have (1-by-0, 0-by-1, N-d of a known
// count) are copies of those constants with the shape or the count corrected. A 1-by-1 array
// of a numeric class is a scalar with its own converter; every other array has the
// pass-through converter.
#pragma once

#include <utility>

#include <ka/class_id.hpp>

#include <builtin/types/ClassifyKaArray.hpp>

namespace Norvane::builtin::types::detail {

// `element` must be a class of which full arrays of this complexity exist (cell, struct,
// logical, char, function handles or the numeric classes when real; the integer and floating
// classes when complex); the caller has checked it. Completes opaque dimensions.
std::pair<ArgType, Converter> classifyByShape(const kaArray_tag* array, kaClassID element,
                                              bool complex);

// The type of a sparse array of double, single or logical (real only); the caller has checked
// class and dimensions.
const ArgType& sparseTypeOf(kaClassID element, bool complex) noexcept;

// A full, real 1-by-1 array of a numeric element class, answered without the general
// classification: such a scalar is the argument of most calls. `type` is the native constant
// of the class; the converter is null, and the type not to be read, for any other array.
struct RealScalar {
    const NumericScalarTypes* type;
    Converter converter;
};
RealScalar classifyRealScalar(const kaArray_tag* array) noexcept;

}  // namespace Norvane::builtin::types::detail
