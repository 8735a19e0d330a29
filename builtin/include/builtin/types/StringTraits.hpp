// The traits of the string family: how a native parameter of type std::u16string, std::string
// or std::u16string_view is read from an array argument, how a string result becomes an array,
// and which ArgTypes a declared string input stands for. Strings are UTF-16 inside the library;
// std::string is UTF-8.
//
// Reading takes over the reference that came with the array into `holders`, which must outlive
// whatever was read (a view looks into the array's data or the service's string). It accepts a
// char row vector, an empty char array, or an array that StringSupport can read, and throws
// std::invalid_argument for anything else.
//
// The scalar-string placeholder gives a signature the type of one string without a native type
// for it; it is never a value.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include <boost/container/small_vector.hpp>

#include <engine/opaque.hpp>
#include <ka/imports.hpp>

#include <builtin/config.hpp>
#include <builtin/types/ArgType.hpp>

namespace Norvane::builtin::types {

// The arrays that must outlive the arguments read from them; each holds one reference.
using ArrayHolders = boost::container::small_vector_base<
    std::unique_ptr<const kaArray_tag, matrix::detail::kaDestroy_deleter>>;

template <class T>
struct TypeTraitsImpl;

namespace detail {
// Declared only: the type exists to be named in a signature.
struct ScalarKeldorStringPlaceholder;
}  // namespace detail

// The three ArgTypes of a declared string input, by index: the scalar string (with
// StringSupport there; UnsupportedArgType without), the char row, the empty char array; every
// other index is UnsupportedArgType.
BUILTIN_API ArgType getStringArgType(std::size_t index);

template <>
struct BUILTIN_API TypeTraitsImpl<std::u16string> {
    std::u16string operator()(const kaArray_tag* const array, ArrayHolders& holders);
    // A new array with one reference: a 1-by-1 string with StringSupport there, a 1-by-n char
    // row without.
    kaArray_tag* operator()(std::u16string&& value) const;
    kaArray_tag* operator()(const std::u16string& value) const;
    static ArgType getArgType(std::size_t index) { return getStringArgType(index); }
};

template <>
struct BUILTIN_API TypeTraitsImpl<std::string> {
    std::string operator()(const kaArray_tag* const array, ArrayHolders& holders);
    kaArray_tag* operator()(std::string&& value) const;
    kaArray_tag* operator()(const std::string& value) const;
    static ArgType getArgType(std::size_t index) { return getStringArgType(index); }
};

template <>
struct BUILTIN_API TypeTraitsImpl<std::u16string_view> {
    std::u16string_view operator()(const kaArray_tag* const array, ArrayHolders& holders);
    static ArgType getArgType(std::size_t index) { return getStringArgType(index); }
};

template <>
struct BUILTIN_API TypeTraitsImpl<const detail::ScalarKeldorStringPlaceholder*> {
    // The scalar string, a process-wide constant.
    static const ArgType& getArgType();
    // Stops the process: there is no value of the placeholder to convert to.
    [[noreturn]] const detail::ScalarKeldorStringPlaceholder* operator()(
        Norvane::String::String* value) const;
};

}  // namespace Norvane::builtin::types
