// The converters that classification pairs with a live array, beside the pass-through converter
// of <builtin/types/ClassifyKaArray.hpp>. Internal: only classification hands them out.
#pragma once

#include <ka/class_id.hpp>

#include <builtin/types/ClassifyKaArray.hpp>

namespace Norvane::builtin::types::detail {

// The converter of a 1-by-1 full array of this element class: unboxes element 0 for a variant
// that declared a NumericScalarTypes and passes the array through otherwise. Complex exists for
// double and single only. Null for a class that has no unboxed scalar.
Converter scalarConverterOf(kaClassID element, bool complex) noexcept;

// A string or an object in an opaque array: the engine object for a variant that declared an
// OrroObjectTypes, the array itself otherwise.
Parameter objectConverter(kaArray_tag* array, const ArgType* declared);

// An object in an array stored as a struct: always the engine object.
Parameter unconditionalObjectConverter(kaArray_tag* array, const ArgType* declared);

}  // namespace Norvane::builtin::types::detail
