// Readable types. Class names come from the array library for its own classes and from the
// class provider for the others; without the provider a class is named by its number.
#include <builtin/declare/ReadableTypes.hpp>

#include <cstdint>

#include <builtin/services/BuiltinServices.hpp>
#include <builtin/services/IZOBJRegWrapper.hpp>
#include <builtin/types/StringClassId.hpp>
#include <fl/i18n.hpp>

namespace Norvane::builtin::declare {

namespace {

using types::KaArrayTypes;
using Shape = KaArrayTypes::Shape;

bool isStringClass(kaClassID id) {
    const auto strings = types::detail::getKnownStringClassId();
    return strings && *strings == id;
}

std::string className(kaClassID id) {
    if (isStringClass(id)) return "string";
    const std::string_view own = ka::className(id);
    if (!own.empty()) return std::string(own);
    if (const auto& provider = getHeldService<IZOBJRegWrapper>()) {
        std::string name = provider->getClassName(id);
        if (!name.empty()) return name;
    }
    return "class " + std::to_string(static_cast<std::int64_t>(id));
}

std::string objectText(kaClassID id) {
    return id == kaUNKNOWN_CLASS ? "object of any class" : className(id) + " object";
}

std::string scalarText(const types::NumericScalarTypes& scalar) {
    const bool complex = scalar.complexity == types::NumericScalarTypes::Complexity::COMPLEX;
    return (complex ? "complex " : "") + className(scalar.element) + " scalar";
}

// What the elements are: "double", "complex single", "sparse logical", or nothing when the
// class is open.
std::string elementText(const KaArrayTypes& array) {
    if (array.element == kaUNKNOWN_CLASS) return "";
    std::string text = array.density == KaArrayTypes::Density::SPARSE ? "sparse " : "";
    if (array.complexity == KaArrayTypes::Complexity::COMPLEX) text += "complex ";
    return text + className(array.element);
}

std::string shapeText(const KaArrayTypes& array) {
    switch (array.shape) {
        case Shape::UNKNOWN: return "array";
        case Shape::EMPTY_ROW: return "1-by-0 array";
        case Shape::EMPTY_COL: return "0-by-1 array";
        case Shape::EMPTY: return "array";
        case Shape::SCALAR: return "scalar";
        case Shape::ROW: return "row vector";
        case Shape::COLUMN: return "column vector";
        case Shape::VECTOR: return "vector";
        case Shape::TWO_D: return "matrix";
        case Shape::ND:
            return array.dim == SIZE_MAX ? "array" : std::to_string(array.dim) + "-d array";
    }
    return "array";
}

std::string arrayText(const KaArrayTypes& array, types::ArgTypeDirection direction) {
    const std::string element = elementText(array);
    // One string of the string class reads as a string, as the language's users say it.
    if (array.shape == Shape::SCALAR && isStringClass(array.element)) return "string";
    if (array.element == kaUNKNOWN_CLASS && array.shape == Shape::UNKNOWN) {
        return direction == types::ArgTypeDirection::INPUT ? "any array" : "array";
    }
    const std::string shape = shapeText(array);
    std::string text = element.empty() ? shape + " of any class" : element + " " + shape;
    if (array.shape == Shape::EMPTY) text = "empty " + text;
    if (array.shape == Shape::UNKNOWN) text += ", any shape";
    return text;
}

}  // namespace

std::string readableType(const types::ArgType& type, types::ArgTypeDirection direction) {
    struct Reader {
        types::ArgTypeDirection direction;
        std::string operator()(const types::UnsupportedArgType&) const { return "nothing"; }
        std::string operator()(const types::FlagInputType& flag) const {
            return "option word '" + fl::i18n::ustring_to_utf8(flag.getValue()) + "'";
        }
        std::string operator()(const types::NumericScalarTypes& scalar) const {
            return scalarText(scalar);
        }
        std::string operator()(const types::KeldorStringType& string) const {
            return string.shape == types::KeldorStringType::Shape::SCALAR ? "string"
                                                                          : "string array";
        }
        std::string operator()(const types::OrroObjectPlaceTypes& place) const {
            return std::string("place that holds ") +
                   (place.classId == kaUNKNOWN_CLASS ? "an " : "a ") + objectText(place.classId);
        }
        std::string operator()(const types::OrroObjectTypes& object) const {
            return objectText(object.classId);
        }
        std::string operator()(const KaArrayTypes& array) const {
            return arrayText(array, direction);
        }
    };
    return std::visit(Reader{direction}, type);
}

}  // namespace Norvane::builtin::declare
