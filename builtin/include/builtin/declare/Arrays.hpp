// The array views a module author writes as parameter types, one per shape of the native type
// table: Row<double>, Column<std::int8_t>, Matrix<std::complex<float>>, Empty<bool>,
// NdArray<double>, ScalarArray<matrix::cell> (a 1-by-1 array of an element that has no unboxed
// scalar) and Sparse<double>; and Array<T>, a full array of T in any shape, 1-by-1 included,
// which a declaration always takes relaxed. Each is the typed view of the array library, checked
// once when the argument arrives; which arrays reach it is decided by matching against the shape's
// type.
//
// A view neither owns its array nor takes a reference: the entry that built it holds the
// array until the native function returns. Keep neither the view nor its data beyond the call.
#pragma once

#include <ka/views.hpp>

#include <builtin/types/NativeArgTypes.hpp>

namespace Norvane::builtin::declare {

template <class T, types::NativeShape Shape>
class ArrayView : public matrix::typed_array<T> {
public:
    using element_type = T;
    static constexpr types::NativeShape shape = Shape;
    explicit ArrayView(const kaArray_tag* array) : matrix::typed_array<T>(array) {}
};

template <class T>
using Row = ArrayView<T, types::NativeShape::ROW>;
template <class T>
using Column = ArrayView<T, types::NativeShape::COLUMN>;
template <class T>
using Matrix = ArrayView<T, types::NativeShape::MATRIX>;
template <class T>
using Empty = ArrayView<T, types::NativeShape::EMPTY>;
template <class T>
using NdArray = ArrayView<T, types::NativeShape::ND>;
template <class T>
using ScalarArray = ArrayView<T, types::NativeShape::SCALAR>;

// Any shape: not a shape of the table, so its kind stands apart.
template <class T>
class Array : public matrix::typed_array<T> {
public:
    using element_type = T;
    explicit Array(const kaArray_tag* array) : matrix::typed_array<T>(array) {}
};

template <class T>
class Sparse : public matrix::typed_sparse_matrix<T> {
public:
    using element_type = T;
    static constexpr types::NativeShape shape = types::NativeShape::SPARSE;
    explicit Sparse(const kaArray_tag* array) : matrix::typed_sparse_matrix<T>(array) {}
};

}  // namespace Norvane::builtin::declare
