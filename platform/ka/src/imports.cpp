// The called functions that every user of the library needs: the release deleter, the two
// rejections and the shape questions.
#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>

#include "array_record.hpp"

namespace {

std::string demangle(const char* name) {
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> text(
        abi::__cxa_demangle(name, nullptr, nullptr, &status), &std::free);
    return status == 0 && text ? std::string(text.get()) : std::string(name);
}

std::string describeClass(kaClassID id) {
    std::string_view name = ka::className(id);
    std::string text = "class id " + std::to_string(static_cast<int>(id));
    if (!name.empty()) text += " (" + std::string(name) + ")";
    return text;
}

std::string describeShape(const kaArray_tag* a) {
    std::string text;
    for (std::size_t d : matrix::dimensions(a)) {
        if (!text.empty()) text += 'x';
        text += std::to_string(d);
    }
    if (matrix::isSparse(a)) text += " sparse";
    if (matrix::isComplex(a)) text += " complex";
    return text;
}

}  // namespace

void matrix::detail::kaDestroy_deleter::operator()(const kaArray_tag* array) const noexcept {
    // The counts belong to the library even on an array the holder may only read.
    matrix::releaseReference(const_cast<kaArray_tag*>(array));
}

void matrix::detail::rejectInvalidClassId(kaClassID classId) {
    throw std::invalid_argument("invalid class for this operation: " + describeClass(classId));
}

void matrix::detail::rejectArrayShape(const kaArray_tag* array, const std::type_info& view) {
    const std::string viewName = demangle(view.name());
    if (array == nullptr) throw std::invalid_argument("null array does not fit " + viewName);
    throw std::invalid_argument("array of " + describeClass(matrix::classId(array)) + ", " +
                                describeShape(array) + ", does not fit " + viewName);
}

bool matrix::detail::noninlined::ka_array_api::kaIsScalar(const kaArray_tag* array) {
    return matrix::numberOfElements(array) == 1;
}

bool matrix::detail::noninlined::ka_array_api::kaIsEmpty(const kaArray_tag* array) {
    return matrix::numberOfElements(array) == 0;
}

std::size_t matrix::detail::noninlined::ka_array_api::kaGetN(const kaArray_tag* array) {
    std::span<const std::size_t> dims = matrix::dimensions(array);
    std::size_t n = 1;
    for (std::size_t i = 1; i < dims.size(); ++i) n *= dims[i];
    return n;
}

void ka::detail::rejectValueCount(std::size_t given, std::size_t expected) {
    throw std::invalid_argument("expected " + std::to_string(expected) + " values but got " +
                                std::to_string(given));
}
