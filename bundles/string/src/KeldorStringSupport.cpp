#include "KeldorStringSupport.hpp"

#include <fl/i18n.hpp>
#include <ka/ka.hpp>
#include <stringbundle/KeldorString.hpp>

#include <memory>
#include <stdexcept>
#include <string>

namespace stringbundle {

namespace {

using OwnedArray = Norvane::builtin::StringSupport::OwnedArray;

// What an array of the string class holds: one text per element, column-major.
struct StringArray {
    std::vector<std::u16string> strings;
};

const StringArray* payloadOf(const kaArray_tag* array) {
    if (array == nullptr || ka::objectClassId(array) != kStringClassId) {
        return nullptr;
    }
    return ka::payloadAs<StringArray>(array);
}

const StringArray& checkedPayload(const kaArray_tag* array) {
    const StringArray* payload = payloadOf(array);
    if (payload == nullptr) {
        throw std::invalid_argument("the array is not an array of the string class");
    }
    return *payload;
}

const std::u16string& checkedElement(const kaArray_tag* array, std::size_t index) {
    const StringArray& payload = checkedPayload(array);
    if (index >= payload.strings.size()) {
        throw std::out_of_range("string index " + std::to_string(index) + " is beyond the " +
                                std::to_string(payload.strings.size()) + " strings of the array");
    }
    return payload.strings[index];
}

// As the array library counts: no dimensions is one element.
std::size_t elementCount(std::span<const std::size_t> dims) {
    std::size_t count = 1;
    for (std::size_t d : dims) {
        count *= d;
    }
    return count;
}

OwnedArray makeArray(std::span<const std::size_t> dims, std::vector<std::u16string> strings) {
    auto payload = std::make_shared<StringArray>(StringArray{std::move(strings)});
    return ka::createObject<StringArray>(kStringClassId, kStringClassName, std::move(payload),
                                         ka::Dims(dims.begin(), dims.end()));
}

}  // namespace

bool KeldorStringSupport::isString(const kaArray_tag* array) const {
    return payloadOf(array) != nullptr;
}

kaClassID KeldorStringSupport::getStringClassId() const {
    return kStringClassId;
}

std::size_t KeldorStringSupport::getNumberOfStrings(const kaArray_tag* array) const {
    return checkedPayload(array).strings.size();
}

std::string KeldorStringSupport::getStringUtf8(const kaArray_tag* array, std::size_t index) const {
    return fl::i18n::ustring_to_utf8(checkedElement(array, index));
}

const std::u16string& KeldorStringSupport::getString(const kaArray_tag* array,
                                                     std::size_t index) const {
    return checkedElement(array, index);
}

OwnedArray KeldorStringSupport::createEmptyStrings(std::span<const std::size_t> dims) const {
    return makeArray(dims, std::vector<std::u16string>(elementCount(dims)));
}

OwnedArray KeldorStringSupport::createString(std::span<const std::size_t> dims,
                                             std::vector<std::u16string> strings) const {
    if (strings.size() != elementCount(dims)) {
        throw std::invalid_argument("createString: " + std::to_string(strings.size()) +
                                    " strings for an array of " +
                                    std::to_string(elementCount(dims)) + " elements");
    }
    return makeArray(dims, std::move(strings));
}

std::optional<std::u16string_view> KeldorStringSupport::getStringFlag(
    const kaArray_tag* array) const {
    const StringArray* payload = payloadOf(array);
    if (payload == nullptr || payload->strings.size() != 1 ||
        matrix::numberOfElements(array) != 1) {
        return std::nullopt;
    }
    return std::u16string_view(payload->strings.front());
}

std::vector<std::u16string> KeldorStringSupport::getStrings(const kaArray_tag* array) const {
    return checkedPayload(array).strings;
}

OwnedArray KeldorStringSupport::stringToKaArray(Norvane::String::String* value,
                                                unsigned options) const {
    if (value == nullptr) {
        throw std::invalid_argument("stringToKaArray: null string");
    }
    if (options != 0) {
        throw std::invalid_argument("stringToKaArray: unknown options " + std::to_string(options));
    }
    const std::size_t dims[] = {1, 1};
    return makeArray(dims, {value->text()});
}

}  // namespace stringbundle
