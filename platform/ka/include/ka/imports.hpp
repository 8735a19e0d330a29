// The functions of the array library that are called rather than inlined: destruction, the
// numeric factory, warnings, the two rejections, and three shape questions.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <typeinfo>

#include <ka/array.hpp>

namespace matrix {

// Frees the array and everything it owns (elements of cells and structs included). Ignores
// the counts: callers go through releaseReference. Never throws.
void destroyArray(kaArray_tag* array) noexcept;

// Issues a warning of the language. Goes to the handler installed with ka::setWarningHandler.
void handleWarning(const std::u16string& text);

namespace detail {

// Drops one counted reference by the release rule (see releaseReference in ops.hpp).
struct kaDestroy_deleter {
    void operator()(const kaArray_tag* array) const noexcept;
};

// A full numeric array (logical, char, double, single or an integer class) of these
// dimensions, with one reference and uninitialised data. Throws std::invalid_argument for a
// class that is not numeric, or complex logical or char; std::bad_alloc when out of memory.
std::unique_ptr<kaArray_tag, kaDestroy_deleter> do_create_uninitnumeric(
    std::span<const std::size_t> dimensions, kaClassID classId, kaComplexity complexity);

// The same with the dimensions written in place: do_create_uninitnumeric({1, 1}, ...).
inline std::unique_ptr<kaArray_tag, kaDestroy_deleter> do_create_uninitnumeric(
    std::initializer_list<std::size_t> dimensions, kaClassID classId, kaComplexity complexity) {
    return do_create_uninitnumeric(
        std::span<const std::size_t>(dimensions.begin(), dimensions.size()), classId, complexity);
}

// Both throw std::invalid_argument with a text that names the class (and shape).
[[noreturn]] void rejectInvalidClassId(kaClassID classId);
[[noreturn]] void rejectArrayShape(const kaArray_tag* array, const std::type_info& view);

namespace noninlined::ka_array_api {
bool kaIsScalar(const kaArray_tag* array);  // exactly one element
bool kaIsEmpty(const kaArray_tag* array);   // no element
// Columns: the second dimension of a 2-D array, the product of all but the first otherwise.
std::size_t kaGetN(const kaArray_tag* array);
}  // namespace noninlined::ka_array_api

}  // namespace detail
}  // namespace matrix
