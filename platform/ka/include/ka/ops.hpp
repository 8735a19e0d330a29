// Reads and updates done in place, without a call into the library except where an array
// needs one (objects, opaque dimensions, possibly shared data). These are the hot path of
// every caller: keep them plain.
#pragma once

#include <cstddef>
#include <span>

#include <ka/array.hpp>
#include <ka/imports.hpp>

namespace matrix {

inline kaClassID classId(const kaArray_tag* a) {
    return a->storedClass <= kaFUNCTION_CLASS ? static_cast<kaClassID>(a->storedClass)
                                              : a->_get_class_id_non_trivial();
}

inline bool isSparse(const kaArray_tag* a) {
    return (a->flags & flags::sparse) != 0;
}

inline bool isComplex(const kaArray_tag* a) {
    return (a->flags & flags::complex) == flags::complex;
}

inline bool isTwoD(const kaArray_tag* a) {
    return (a->flags & flags::twoD) != 0;
}

inline void completeDimensions(const kaArray_tag* a) {
    if (a->flags & flags::opaqueDimensions) a->_complete_opaque_dimensions();
}

// The dimension list; for a 2-D array a view of the record's two words.
inline std::span<const std::size_t> dimensions(const kaArray_tag* a) {
    completeDimensions(a);
    if (isTwoD(a)) return {a->dims.shape, 2};
    return {a->dims.nd.list, a->dims.nd.count};
}

inline std::size_t numberOfDimensions(const kaArray_tag* a) {
    return dimensions(a).size();
}

// The product of the dimensions; a list of no dimensions counts as one element.
inline std::size_t numberOfElements(const kaArray_tag* a) {
    std::size_t n = 1;
    for (std::size_t d : dimensions(a)) n *= d;
    return n;
}

inline void* data(const kaArray_tag* a) {
    return a->data;
}

inline bool isDataShared(const kaArray_tag* a) {
    return (a->flags & flags::mayShareData) != 0 && a->is_data_shared_impl();
}

inline void takeReference(kaArray_tag* a) {
    a->flags &= ~flags::temporary;
    ++a->refCount;
}

// The last reference destroys the array unless the library still holds it (second count).
inline void releaseReference(kaArray_tag* a) noexcept {
    if (a == nullptr) return;
    if (a->refCount < 2 && a->pinCount <= 0) {
        destroyArray(a);
    } else {
        --a->refCount;
    }
}

// Nobody else can see the array: the caller may write into it in place.
inline bool isExclusive(const kaArray_tag* a) {
    return static_cast<long long>(a->refCount) + a->pinCount <= 1;
}

}  // namespace matrix
