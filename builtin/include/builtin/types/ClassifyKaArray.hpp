// Classification of live arrays: the ArgType that stands for an array of a call, paired with
// the converter that hands the array to a chosen variant as a Parameter. Also the set of class
// ids known to be engine objects, which is what tells an engine object from any other instance
// of a class of the class system.
//
// Classification reads the array, process-wide constants and the service holders; the known
// objects set has its own mutex, held for one find or insert.
#pragma once

#include <utility>

#include <ka/class_id.hpp>

#include <builtin/calling/Parameter.hpp>
#include <builtin/config.hpp>
#include <builtin/types/ArgType.hpp>

struct kaArray_tag;

namespace Norvane::builtin::types {

// Turns an array argument into the Parameter a variant receives. `declared` is the variant's
// ArgType for this input, or null. The result owns whatever reference it carries (alternative
// 13); a scalar unboxed from the array takes no reference.
using Converter = Parameter (*)(kaArray_tag* array, const ArgType* declared);

// The converter of every array that is handed on as it is: takes a reference on the array (which
// also clears its temporary mark) and returns it as alternative 13. `declared` is not read. An
// argument that classifies as UnsupportedArgType, and so has no converter, is handed on this way;
// a null argument stays null.
BUILTIN_API Parameter passThroughConverter(kaArray_tag* array, const ArgType* declared);

// The common core of classification: the type of the array and its converter. The converter is
// null for an UnsupportedArgType. Throws std::invalid_argument for an array of a class or shape
// that no signature can speak of. The array must not be null.
BUILTIN_API std::pair<ArgType, Converter> classifyKaArray(const kaArray_tag* array);

// The type of a live array; UnsupportedArgType for a null pointer or an array that
// classification refuses. Never throws.
BUILTIN_API ArgType getArgTypeOfKaArray(const kaArray_tag* array);

}  // namespace Norvane::builtin::types

namespace Norvane::builtin::builtinreg {

// Adds the class id to the known engine objects; true if it was not there yet.
BUILTIN_API bool addAsKnownOrroObject(const kaClassID& classId);

// Whether the class id has been added as an engine object.
BUILTIN_API bool isAKnownOrroObject(const kaClassID& classId);

}  // namespace Norvane::builtin::builtinreg
