// The service that serves the language's string class. The library reads string objects,
// creates them and asks whether a string argument can stand for a literal flag through it.
// A process may run without it: every caller says what an absent service means at its place.
// Reach it through getHeldService<StringSupport>() (<builtin/services/BuiltinServices.hpp>).
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <engine/opaque.hpp>
#include <ka/ka.hpp>

namespace Norvane::builtin {

class StringSupport {
public:
    // An array with one reference, owned by whoever receives it.
    using OwnedArray = std::unique_ptr<kaArray_tag, matrix::detail::kaDestroy_deleter>;

    virtual ~StringSupport() = default;

    // Whether the array is an array of the string class. Not called by this library.
    virtual bool isString(const kaArray_tag* array) const = 0;

    // The class id of the language's string class.
    virtual kaClassID getStringClassId() const = 0;

    // How many strings the array holds (its number of elements). Not called by this library.
    virtual std::size_t getNumberOfStrings(const kaArray_tag* array) const = 0;

    // The string at the linear index in UTF-8. Not called by this library.
    virtual std::string getStringUtf8(const kaArray_tag* array, std::size_t index) const = 0;

    // The string at the linear index (column-major) of a string array. The library always
    // asks for index 0. The reference lives as long as the array.
    virtual const std::u16string& getString(const kaArray_tag* array, std::size_t index) const = 0;

    // A string array of these dimensions whose strings are all empty. Not called by this
    // library.
    virtual OwnedArray createEmptyStrings(std::span<const std::size_t> dims) const = 0;

    // A string array of these dimensions holding `strings` in column-major order; the count
    // of strings must equal the number of elements.
    virtual OwnedArray createString(std::span<const std::size_t> dims,
                                    std::vector<std::u16string> strings) const = 0;

    // The text of a 1-by-1 string array, which may then match a literal flag input; no value
    // for any other array. The view lives as long as the array.
    virtual std::optional<std::u16string_view> getStringFlag(const kaArray_tag* array) const = 0;

    // All strings of a string array, in column-major order. Not called by this library.
    virtual std::vector<std::u16string> getStrings(const kaArray_tag* array) const = 0;

    // A 1-by-1 string array holding the text of an engine string. `options` is 0 for the
    // plain conversion, the only one there is so far.
    virtual OwnedArray stringToKaArray(Norvane::String::String* value, unsigned options) const = 0;
};

}  // namespace Norvane::builtin
