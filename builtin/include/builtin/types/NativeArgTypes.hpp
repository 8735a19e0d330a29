// The ArgTypes that native parameter types stand for. A declaration names a native parameter as
// an element type in a shape (a row of doubles, a matrix of complex int8, an unboxed double); the
// library holds one process-wide constant for each such pair, 155 in all, made together at
// first use and never changed afterwards. Classification of live arrays reads the same
// constants, so that a declared type and the type of an array that fits it are the same value.
//
// A getter hands a declaration the possible types of one parameter by index. A native array or
// scalar type has one possible type, so its getter takes index 0 only; a string parameter has
// three (nativeStringArgType). Getters are plain function pointers, made from the templates
// below in the declaring module.
//
// The constants are STRICT; getArgTypes applies a declaration's tolerance to copies.
#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>

#include <ka/views.hpp>

#include <builtin/config.hpp>
#include <builtin/types/ArgType.hpp>

namespace Norvane::builtin::types {

// The possible type of a native parameter at a position among its possible types.
using ArgTypeGetter = const ArgType& (*)(std::size_t index);

// The 25 element types of native array views.
enum class NativeElement : std::uint8_t {
    INT8,
    UINT8,
    INT16,
    UINT16,
    INT32,
    UINT32,
    INT64,
    UINT64,
    SINGLE,
    DOUBLE,
    LOGICAL,
    CHAR,
    COMPLEX_INT8,
    COMPLEX_UINT8,
    COMPLEX_INT16,
    COMPLEX_UINT16,
    COMPLEX_INT32,
    COMPLEX_UINT32,
    COMPLEX_INT64,
    COMPLEX_UINT64,
    COMPLEX_SINGLE,
    COMPLEX_DOUBLE,
    CELL,
    STRUCT,
    FUNCTION_HANDLE,
};
inline constexpr std::size_t nativeElementCount = 25;

// The shapes of a native parameter. SCALAR is the unboxed number for the twelve real numeric
// elements and complex single and double, and a 1-by-1 array for the rest. SPARSE exists only
// for double, single, logical and the two complex floating elements.
enum class NativeShape : std::uint8_t { SCALAR, ROW, COLUMN, MATRIX, EMPTY, ND, SPARSE };
inline constexpr std::size_t nativeShapeCount = 6;  // SPARSE aside
inline constexpr std::size_t nativeSparseCount = 5;

constexpr bool hasSparseView(NativeElement element) noexcept {
    return element == NativeElement::DOUBLE || element == NativeElement::SINGLE ||
           element == NativeElement::LOGICAL || element == NativeElement::COMPLEX_DOUBLE ||
           element == NativeElement::COMPLEX_SINGLE;
}

// The constant of an element in a shape. Throws std::invalid_argument for a sparse shape of an
// element that has no sparse view, or a value outside the enums.
BUILTIN_API const ArgType& nativeArgType(NativeElement element, NativeShape shape);

// The three possible types of a native string parameter: 0 the scalar string of the class
// system (UnsupportedArgType when StringSupport is missing at first use), 1 the char row,
// 2 the empty char array. Throws std::out_of_range "invalid array<T, N> subscript" past 2.
BUILTIN_API const ArgType& nativeStringArgType(std::size_t index);
inline constexpr std::size_t nativeStringArgTypeCount = 3;

// Beyond the table, for declarations that take an array of one element in any shape: a full
// array of the element, every shape and dimension count, relaxed.
BUILTIN_API const ArgType& anyShapeArgType(NativeElement element);

// The possible type of a native kaArray_tag* parameter, any array: every element, shape,
// density and complexity, relaxed. Takes index 0 only.
BUILTIN_API const ArgType& anyArrayArgType(std::size_t index);
// The type of a native kaArray_tag* result: the plain array type, every field zero, which the
// output checks take for any array. Takes index 0 only.
BUILTIN_API const ArgType& plainArrayArgType(std::size_t index);

namespace detail {

// The failure of a getter asked for an index it does not have.
[[noreturn]] BUILTIN_API void throwInvalidSubscript();

template <class T>
struct NativeElementOf;

#define BUILTIN_NATIVE_ELEMENT(T, E)                                       \
    template <>                                                            \
    struct NativeElementOf<T> {                                            \
        static constexpr NativeElement value = NativeElement::E;           \
    };                                                                     \
    template <>                                                            \
    struct NativeElementOf<std::complex<T>> {                              \
        static constexpr NativeElement value = NativeElement::COMPLEX_##E; \
    };
BUILTIN_NATIVE_ELEMENT(std::int8_t, INT8)
BUILTIN_NATIVE_ELEMENT(std::uint8_t, UINT8)
BUILTIN_NATIVE_ELEMENT(std::int16_t, INT16)
BUILTIN_NATIVE_ELEMENT(std::uint16_t, UINT16)
BUILTIN_NATIVE_ELEMENT(std::int32_t, INT32)
BUILTIN_NATIVE_ELEMENT(std::uint32_t, UINT32)
BUILTIN_NATIVE_ELEMENT(std::int64_t, INT64)
BUILTIN_NATIVE_ELEMENT(std::uint64_t, UINT64)
BUILTIN_NATIVE_ELEMENT(float, SINGLE)
BUILTIN_NATIVE_ELEMENT(double, DOUBLE)
#undef BUILTIN_NATIVE_ELEMENT

template <>
struct NativeElementOf<bool> {
    static constexpr NativeElement value = NativeElement::LOGICAL;
};
template <>
struct NativeElementOf<char16_t> {
    static constexpr NativeElement value = NativeElement::CHAR;
};
template <>
struct NativeElementOf<matrix::cell> {
    static constexpr NativeElement value = NativeElement::CELL;
};
template <>
struct NativeElementOf<matrix::structure> {
    static constexpr NativeElement value = NativeElement::STRUCT;
};
template <>
struct NativeElementOf<matrix::functionhandle> {
    static constexpr NativeElement value = NativeElement::FUNCTION_HANDLE;
};

}  // namespace detail

// The element of a native type: the element of matrix::typed_array<T>, such as double,
// std::complex<std::int8_t> or matrix::cell.
template <class T>
inline constexpr NativeElement nativeElementOf = detail::NativeElementOf<T>::value;

// The getter of the element T in a shape, for a declaration to hand to getArgTypes.
template <class T, NativeShape Shape>
const ArgType& getNativeArgType(std::size_t index) {
    static_assert(Shape != NativeShape::SPARSE || hasSparseView(nativeElementOf<T>),
                  "no sparse view of this element type");
    if (index != 0) {
        detail::throwInvalidSubscript();
    }
    return nativeArgType(nativeElementOf<T>, Shape);
}

// The getter of any shape of element T.
template <class T>
const ArgType& getAnyShapeArgType(std::size_t index) {
    if (index != 0) {
        detail::throwInvalidSubscript();
    }
    return anyShapeArgType(nativeElementOf<T>);
}

}  // namespace Norvane::builtin::types
