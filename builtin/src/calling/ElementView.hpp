// ElementView: an argument of a lifted call seen as a run of elements of T in column-major
// order. An unboxed scalar is viewed in place inside its Parameter, with the dimensions {1, 1}
// and no copy, so the Parameter must outlive the view; an array is viewed through its data and
// owned by the view, which releases the reference the argument carried.
#pragma once

#include <span>
#include <typeinfo>

#include <boost/variant/get.hpp>

#include <builtin/calling/ElementWise.hpp>
#include <builtin/calling/ParameterChecks.hpp>

#include "ElementWiseArrays.hpp"

namespace Norvane::builtin::builtinreg::detail {

template <class T>
struct ElementView {
    ka::ArrayPtr array;  // empty for an unboxed scalar
    std::span<const std::size_t> dims;
    std::span<const T> data;
};

// Views `argument`, given the reference it carries if it holds an array (see claimArray). An
// array of another class, complexity or density is released and refused with std::bad_cast;
// another alternative throws std::logic_error.
template <class T>
ElementView<T> makeView(const Parameter& argument, ka::ArrayPtr array) {
    ElementView<T> view;
    if (const T* value = boost::get<T>(&argument)) {
        view.dims = getScalarDims();
        view.data = std::span<const T>(value, 1);
        return view;
    }
    if (argument.which() != static_cast<int>(parameterIndexOf<kaArray_tag*>)) {
        assertOrThrowWrongElementWiseArg(typeid(T), types::detail::parameterTypeInfo(argument),
                                         false);
    }
    if (!array || !fitsElementClass(array.get(), elementClasses[parameterIndexOf<T>])) {
        throw std::bad_cast();
    }
    view.dims = matrix::dimensions(array.get());
    view.data = std::span<const T>(static_cast<const T*>(matrix::data(array.get())),
                                   elementCount(view.dims));
    view.array = std::move(array);
    return view;
}

}  // namespace Norvane::builtin::builtinreg::detail
