// Classification of a live array: the first row of the class table that fits decides, and the
// shape table does the rest. Refusals leave by the array library's rejections, which throw;
// getArgTypeOfKaArray and the argument cache of a call turn them into UnsupportedArgType.
#include <builtin/types/ClassifyKaArray.hpp>

#include <complex>
#include <optional>
#include <typeinfo>

#include <ka/ka.hpp>

#include <builtin/types/StringClassId.hpp>

#include "../calling/Converters.hpp"
#include "HeldServices.hpp"
#include "ShapeTable.hpp"

namespace Norvane::builtin::types {

namespace {

std::pair<ArgType, Converter> unsupported() {
    return {UnsupportedArgType{}, nullptr};
}

// The class id as the class system knows it: the provider goes first where it is there.
kaClassID classIdOf(const kaArray_tag* array) {
    const IZOBJRegWrapper* provider = detail::classProvider();
    return provider != nullptr ? provider->getClassId(array) : matrix::classId(array);
}

// The variant id is asked before the flag: the provider sees its questions in a fixed order.
OrroObjectTypes objectTypeOf(const IZOBJRegWrapper& provider, kaClassID classId,
                             const kaArray_tag* array) {
    const std::size_t variantId = provider.getVariantId(array);
    return OrroObjectTypes(classId, variantId, provider.getObjectTypeFlag(array));
}

// The view whose shape a sparse array of this class and complexity fails.
const std::type_info& sparseView(kaClassID element, bool complex) {
    if (element == kaLOGICAL_CLASS) return typeid(matrix::typed_sparse_matrix<bool>);
    if (element == kaSINGLE_CLASS) {
        return complex ? typeid(matrix::typed_sparse_matrix<std::complex<float>>)
                       : typeid(matrix::typed_sparse_matrix<float>);
    }
    return complex ? typeid(matrix::typed_sparse_matrix<std::complex<double>>)
                   : typeid(matrix::typed_sparse_matrix<double>);
}

std::pair<ArgType, Converter> classifySparse(const kaArray_tag* array, kaClassID stored,
                                             bool complex) {
    const bool known = stored == kaDOUBLE_CLASS || stored == kaSINGLE_CLASS ||
                       (!complex && stored == kaLOGICAL_CLASS);
    if (!known) matrix::detail::rejectInvalidClassId(stored);
    if (matrix::numberOfDimensions(array) != 2) {
        matrix::detail::rejectArrayShape(array, sparseView(stored, complex));
    }
    return {detail::sparseTypeOf(stored, complex), &passThroughConverter};
}

// An array stored as a struct may be an engine object in disguise; only a known object class,
// with a provider to read it, makes it one.
std::pair<ArgType, Converter> classifyStruct(const kaArray_tag* array) {
    const kaClassID classId = classIdOf(array);
    const IZOBJRegWrapper* provider = detail::classProvider();
    if (classId != kaSTRUCT_CLASS && provider != nullptr &&
        builtinreg::isAKnownOrroObject(classId)) {
        return {objectTypeOf(*provider, classId, array), &detail::unconditionalObjectConverter};
    }
    return detail::classifyByShape(array, kaSTRUCT_CLASS, false);
}

// An opaque array is a string, an engine object or nothing a signature can speak of. A scalar
// string types as the flag of its own text, so that a declared flag matches it by value.
std::pair<ArgType, Converter> classifyOpaque(const kaArray_tag* array) {
    const kaClassID stringClassId = detail::getKnownStringClassId().value_or(kaUNKNOWN_CLASS);
    const kaClassID classId = classIdOf(array);
    const StringSupport* strings = detail::stringSupport();
    if (classId == stringClassId && strings != nullptr) {
        if (const auto flag = strings->getStringFlag(array)) {
            return {FlagInputType(*flag), &detail::objectConverter};
        }
        return {KeldorStringType(KeldorStringType::Shape::ANY), &detail::objectConverter};
    }
    if (builtinreg::isAKnownOrroObject(classId)) {
        // Only registration through the provider makes a class known, so a known class without
        // a provider means the set was filled by hand; such an object cannot be identified.
        const auto& provider = detail::requireClassProvider("identify an engine object");
        return {objectTypeOf(provider, classId, array), &detail::objectConverter};
    }
    return unsupported();
}

bool isIntegerOrFloating(kaClassID stored) {
    return stored >= kaDOUBLE_CLASS && stored <= kaUINT64_CLASS;
}

}  // namespace

std::pair<ArgType, Converter> classifyKaArray(const kaArray_tag* array) {
    const auto stored = static_cast<kaClassID>(array->storedClass);
    const bool complex = matrix::isComplex(array);
    if (matrix::isSparse(array)) {
        return classifySparse(array, stored, complex);
    }
    if (complex) {
        if (!isIntegerOrFloating(stored)) matrix::detail::rejectInvalidClassId(stored);
        return detail::classifyByShape(array, stored, true);
    }
    if (isIntegerOrFloating(stored)) {
        return detail::classifyByShape(array, stored, false);
    }
    switch (stored) {
        case kaCELL_CLASS:
        case kaLOGICAL_CLASS:
        case kaCHAR_CLASS:
        case kaFUNCTION_CLASS: return detail::classifyByShape(array, stored, false);
        case kaSTRUCT_CLASS: return classifyStruct(array);
        case kaOPAQUE_CLASS: return classifyOpaque(array);
        case kaOBJECT_CLASS: return unsupported();
        default: matrix::detail::rejectInvalidClassId(stored);
    }
}

ArgType getArgTypeOfKaArray(const kaArray_tag* array) {
    if (array == nullptr) {
        return UnsupportedArgType{};
    }
    try {
        return classifyKaArray(array).first;
    } catch (...) {
        // Whatever refused the array, a signature cannot speak of it.
        return UnsupportedArgType{};
    }
}

}  // namespace Norvane::builtin::types
