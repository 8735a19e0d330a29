// Boxing of one unboxed value into a new array: the way a typed result, or an engine scalar
// handed to a function that takes arrays, becomes a value of the interpreter.
//
// Each overload writes a new array with one reference, owned by the caller, into *out; it never
// reads *out. The numeric ones make a 1-by-1 array of the value's class. String and object
// pointers go through their services; with the service missing, or a null pointer, *out is
// null. A failing array factory or service throws, and *out keeps what it held.
#pragma once

#include <complex>
#include <cstdint>

#include <engine/opaque.hpp>

#include <builtin/config.hpp>

struct kaArray_tag;

namespace Norvane::builtin::builtinreg::detail {

BUILTIN_API void parameterConversionImpl(kaArray_tag** out, signed char value);
BUILTIN_API void parameterConversionImpl(kaArray_tag** out, unsigned char value);
BUILTIN_API void parameterConversionImpl(kaArray_tag** out, short value);
BUILTIN_API void parameterConversionImpl(kaArray_tag** out, unsigned short value);
BUILTIN_API void parameterConversionImpl(kaArray_tag** out, int value);
BUILTIN_API void parameterConversionImpl(kaArray_tag** out, unsigned int value);
BUILTIN_API void parameterConversionImpl(kaArray_tag** out, std::int64_t value);
BUILTIN_API void parameterConversionImpl(kaArray_tag** out, std::uint64_t value);
BUILTIN_API void parameterConversionImpl(kaArray_tag** out, float value);
BUILTIN_API void parameterConversionImpl(kaArray_tag** out, double value);
BUILTIN_API void parameterConversionImpl(kaArray_tag** out, std::complex<float> value);
BUILTIN_API void parameterConversionImpl(kaArray_tag** out, std::complex<double> value);
BUILTIN_API void parameterConversionImpl(kaArray_tag** out, bool value);
// A character: a 1-by-1 char array, where unsigned short gives a uint16 one.
BUILTIN_API void parameterConversionImpl(kaArray_tag** out, char16_t value);
// Through StringSupport::stringToKaArray.
BUILTIN_API void parameterConversionImpl(kaArray_tag** out, Norvane::String::String* value);
// Through the class provider's toKaArray.
BUILTIN_API void parameterConversionImpl(kaArray_tag** out, Norvane::orro::OrroObject* value);

}  // namespace Norvane::builtin::builtinreg::detail
