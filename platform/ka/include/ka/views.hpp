// Typed views of an array: check once that an array holds elements of type T in the
// expected density, then read them without further checks. A view does not own the array
// or take a reference; the array must outlive it. It does not make the elements const either:
// whoever holds the array exclusively may write through it. An array that does not fit is refused
// with rejectArrayShape, given the view's type.
#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>
#include <typeinfo>

#include <ka/imports.hpp>
#include <ka/ops.hpp>

namespace matrix {

// Element tags for arrays whose elements are not plain values.
struct cell {};
struct structure {};
struct functionhandle {};
struct object {};  // an instance of a class-system class
struct opaque {};  // any array of stored class kaOPAQUE_CLASS

namespace detail {

template <class T>
struct element_traits;

template <class T, kaClassID Id>
struct plain_element {
    using value_type = T;
    static constexpr kaClassID id = Id;
    static bool accepts(const kaArray_tag* a) { return classId(a) == Id && !isComplex(a); }
};

template <>
struct element_traits<std::int8_t> : plain_element<std::int8_t, kaINT8_CLASS> {};
template <>
struct element_traits<std::uint8_t> : plain_element<std::uint8_t, kaUINT8_CLASS> {};
template <>
struct element_traits<std::int16_t> : plain_element<std::int16_t, kaINT16_CLASS> {};
template <>
struct element_traits<std::uint16_t> : plain_element<std::uint16_t, kaUINT16_CLASS> {};
template <>
struct element_traits<std::int32_t> : plain_element<std::int32_t, kaINT32_CLASS> {};
template <>
struct element_traits<std::uint32_t> : plain_element<std::uint32_t, kaUINT32_CLASS> {};
template <>
struct element_traits<std::int64_t> : plain_element<std::int64_t, kaINT64_CLASS> {};
template <>
struct element_traits<std::uint64_t> : plain_element<std::uint64_t, kaUINT64_CLASS> {};
template <>
struct element_traits<float> : plain_element<float, kaSINGLE_CLASS> {};
template <>
struct element_traits<double> : plain_element<double, kaDOUBLE_CLASS> {};
template <>
struct element_traits<bool> : plain_element<bool, kaLOGICAL_CLASS> {};
template <>
struct element_traits<char16_t> : plain_element<char16_t, kaCHAR_CLASS> {};
template <>
struct element_traits<cell> : plain_element<kaArray_tag*, kaCELL_CLASS> {};
template <>
struct element_traits<functionhandle> : plain_element<void, kaFUNCTION_CLASS> {};

template <class R>
struct element_traits<std::complex<R>> {
    using value_type = std::complex<R>;
    static bool accepts(const kaArray_tag* a) {
        return classId(a) == element_traits<R>::id && isComplex(a);
    }
};

template <>
struct element_traits<structure> {
    using value_type = void;
    static bool accepts(const kaArray_tag* a) { return a->storedClass == kaSTRUCT_CLASS; }
};

template <>
struct element_traits<object> {
    using value_type = void;
    static bool accepts(const kaArray_tag* a) { return classId(a) > kaOBJECT_CLASS; }
};

template <>
struct element_traits<opaque> {
    using value_type = void;
    static bool accepts(const kaArray_tag* a) { return a->storedClass == kaOPAQUE_CLASS; }
};

// The values and compressed columns of a sparse array (see ka::createSparse).
struct SparseParts {
    const std::size_t* columnStarts;  // columns + 1 entries
    const std::size_t* rowIndices;    // nonZeros entries, zero-based, ascending per column
    std::size_t nonZeros;
};
SparseParts sparseParts(const kaArray_tag* array);

}  // namespace detail

// A full array of elements T. For cell arrays the elements are the element arrays
// (null for an empty slot); the other tags give only the array and its size.
template <class T>
class typed_array {
public:
    using value_type = typename detail::element_traits<T>::value_type;

    explicit typed_array(const kaArray_tag* array) : array_(array) {
        if (array == nullptr || isSparse(array) || !detail::element_traits<T>::accepts(array))
            detail::rejectArrayShape(array, typeid(typed_array));
    }

    const kaArray_tag* array() const { return array_; }
    std::size_t size() const { return numberOfElements(array_); }
    std::span<const std::size_t> dimensions() const { return matrix::dimensions(array_); }

    template <class U = value_type, class = std::enable_if_t<!std::is_void_v<U>>>
    U* data() const {
        return static_cast<U*>(array_->data);
    }
    template <class U = value_type, class = std::enable_if_t<!std::is_void_v<U>>>
    U& operator[](std::size_t i) const {
        return data()[i];
    }
    template <class U = value_type, class = std::enable_if_t<!std::is_void_v<U>>>
    U* begin() const {
        return data();
    }
    template <class U = value_type, class = std::enable_if_t<!std::is_void_v<U>>>
    U* end() const {
        return data() + size();
    }

private:
    const kaArray_tag* array_;
};

// A 2-D sparse array of double, float, bool or their complex forms, in compressed columns.
template <class T>
class typed_sparse_matrix {
public:
    explicit typed_sparse_matrix(const kaArray_tag* array) : array_(array) {
        if (array == nullptr || !isSparse(array) || !isTwoD(array) ||
            !detail::element_traits<T>::accepts(array))
            detail::rejectArrayShape(array, typeid(typed_sparse_matrix));
        parts_ = detail::sparseParts(array);
    }

    const kaArray_tag* array() const { return array_; }
    std::size_t rows() const { return matrix::dimensions(array_)[0]; }
    std::size_t columns() const { return matrix::dimensions(array_)[1]; }
    std::size_t nonZeros() const { return parts_.nonZeros; }
    const T* values() const { return static_cast<const T*>(array_->data); }
    const std::size_t* rowIndices() const { return parts_.rowIndices; }
    const std::size_t* columnStarts() const { return parts_.columnStarts; }

private:
    const kaArray_tag* array_;
    detail::SparseParts parts_{};
};

}  // namespace matrix
