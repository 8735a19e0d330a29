// What an array holds, as vectors to compare: its elements in storage order, and its dimensions.
#pragma once

#include <cstddef>
#include <type_traits>
#include <vector>

#include <ka/ka.hpp>

namespace testsupport {

// A complex array read as a real T gives the real and imaginary parts side by side.
template <class T>
std::vector<T> elementsOf(const kaArray_tag* array) {
    const std::size_t parts = matrix::isComplex(array) && std::is_arithmetic_v<T> ? 2 : 1;
    const auto* data = static_cast<const T*>(matrix::data(array));
    return std::vector<T>(data, data + matrix::numberOfElements(array) * parts);
}
template <class T>
std::vector<T> elementsOf(const ka::ArrayPtr& array) {
    return elementsOf<T>(array.get());
}

inline std::vector<std::size_t> dimsOf(const kaArray_tag* array) {
    const auto dims = matrix::dimensions(array);
    return {dims.begin(), dims.end()};
}
inline std::vector<std::size_t> dimsOf(const ka::ArrayPtr& array) {
    return dimsOf(array.get());
}

}  // namespace testsupport
