// The traits of the string family. A char row vector is read directly; every other array is
// the business of StringSupport, and without that service only char arrays are strings.
#include <builtin/types/StringTraits.hpp>

#include <cstring>
#include <stdexcept>
#include <utility>
#include <vector>

#include <fl/diag.hpp>
#include <fl/i18n.hpp>
#include <ka/ka.hpp>

#include <builtin/types/NativeArgTypes.hpp>

#include "HeldServices.hpp"

namespace Norvane::builtin::types {

namespace {

[[noreturn]] void rejectNonString() {
    throw std::invalid_argument("only scalar strings or char row vectors are expected.");
}

// One row, two dimensions, full and real.
bool isCharRowVector(const kaArray_tag* array) {
    if (matrix::isComplex(array) || matrix::isSparse(array)) return false;
    const auto dims = matrix::dimensions(array);
    return dims.size() == 2 && dims[0] == 1;
}

// The text of the array as a view into its data or the service's string. The array must be
// held by the caller for as long as the view is used.
std::u16string_view readString(const kaArray_tag* array) {
    if (array == nullptr) rejectNonString();
    if (matrix::classId(array) == kaCHAR_CLASS) {
        if (matrix::detail::noninlined::ka_array_api::kaIsEmpty(array)) return {};
        if (!isCharRowVector(array)) rejectNonString();
        return {static_cast<const char16_t*>(matrix::data(array)), matrix::numberOfElements(array)};
    }
    const StringSupport* strings = detail::stringSupport();
    if (strings == nullptr) rejectNonString();
    return strings->getString(array, 0);
}

// The reference that came with the array belongs to the holders from here on, also if the
// holders cannot grow: the handle then releases it.
const kaArray_tag* hold(const kaArray_tag* array, ArrayHolders& holders) {
    std::unique_ptr<const kaArray_tag, matrix::detail::kaDestroy_deleter> held(array);
    holders.push_back(std::move(held));
    return array;
}

kaArray_tag* charRow(std::u16string_view text) {
    auto array = matrix::detail::do_create_uninitnumeric({1, text.size()}, kaCHAR_CLASS, kaREAL);
    if (!text.empty()) {
        std::memcpy(matrix::data(array.get()), text.data(), text.size() * sizeof(char16_t));
    }
    return array.release();
}

kaArray_tag* toArray(std::u16string value) {
    const StringSupport* strings = detail::stringSupport();
    if (strings == nullptr) return charRow(value);
    static constexpr std::size_t scalar[] = {1, 1};
    std::vector<std::u16string> one;
    one.push_back(std::move(value));
    return strings->createString(scalar, std::move(one)).release();
}

}  // namespace

ArgType getStringArgType(std::size_t index) {
    return index < nativeStringArgTypeCount ? nativeStringArgType(index)
                                            : ArgType(UnsupportedArgType{});
}

std::u16string TypeTraitsImpl<std::u16string>::operator()(const kaArray_tag* const array,
                                                          ArrayHolders& holders) {
    return std::u16string(readString(hold(array, holders)));
}

kaArray_tag* TypeTraitsImpl<std::u16string>::operator()(std::u16string&& value) const {
    return toArray(std::move(value));
}

kaArray_tag* TypeTraitsImpl<std::u16string>::operator()(const std::u16string& value) const {
    return toArray(value);
}

std::string TypeTraitsImpl<std::string>::operator()(const kaArray_tag* const array,
                                                    ArrayHolders& holders) {
    return fl::i18n::ustring_to_utf8(readString(hold(array, holders)));
}

kaArray_tag* TypeTraitsImpl<std::string>::operator()(std::string&& value) const {
    return toArray(fl::i18n::utf8_to_ustring(value));
}

kaArray_tag* TypeTraitsImpl<std::string>::operator()(const std::string& value) const {
    return toArray(fl::i18n::utf8_to_ustring(value));
}

std::u16string_view TypeTraitsImpl<std::u16string_view>::operator()(const kaArray_tag* const array,
                                                                    ArrayHolders& holders) {
    return readString(hold(array, holders));
}

const ArgType& TypeTraitsImpl<const detail::ScalarKeldorStringPlaceholder*>::getArgType() {
    static const ArgType scalarString = KeldorStringType(KeldorStringType::Shape::SCALAR);
    return scalarString;
}

const detail::ScalarKeldorStringPlaceholder* TypeTraitsImpl<
    const detail::ScalarKeldorStringPlaceholder*>::operator()(Norvane::String::String*) const {
    foundation::core::diag::terminate(
        "ScalarKeldorStringPlaceholder is not a real type and should not actually be used.",
        "builtin2/interface/builtin/StringTraits", __LINE__, __PRETTY_FUNCTION__);
}

}  // namespace Norvane::builtin::types
