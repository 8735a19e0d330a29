// Template bodies of create.hpp.
#pragma once

#include <algorithm>
#include <stdexcept>
#include <type_traits>

namespace ka::detail {

template <class T>
struct complexity_of : std::integral_constant<kaComplexity, kaREAL> {
    using part = T;
};
template <class R>
struct complexity_of<std::complex<R>> : std::integral_constant<kaComplexity, kaCOMPLEX> {
    using part = R;
};

[[noreturn]] void rejectValueCount(std::size_t given, std::size_t expected);

}  // namespace ka::detail

template <class T>
ka::ArrayPtr ka::createFrom(const Dims& dims, std::span<const T> values) {
    using Part = typename detail::complexity_of<T>::part;
    constexpr kaClassID id = matrix::detail::element_traits<Part>::id;
    ArrayPtr array = matrix::detail::do_create_uninitnumeric(std::span<const std::size_t>(dims), id,
                                                             detail::complexity_of<T>::value);
    const std::size_t n = matrix::numberOfElements(array.get());
    if (values.size() != n) detail::rejectValueCount(values.size(), n);
    std::copy(values.begin(), values.end(), static_cast<T*>(array->data));
    return array;
}

template <class T>
ka::ArrayPtr ka::fromRows(std::size_t rows, std::size_t columns, std::initializer_list<T> values) {
    if (values.size() != rows * columns) detail::rejectValueCount(values.size(), rows * columns);
    // Not std::vector: its bool form has no contiguous storage.
    auto columnMajor = std::make_unique<T[]>(values.size());
    const T* in = values.begin();
    for (std::size_t r = 0; r < rows; ++r)
        for (std::size_t c = 0; c < columns; ++c) columnMajor[c * rows + r] = in[r * columns + c];
    return createFrom<T>({rows, columns}, std::span<const T>(columnMajor.get(), values.size()));
}
