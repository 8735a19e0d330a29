// Classification of the arguments of a live call, on demand and cached per call.
//
// Instances of classes of the class system are looked at before classification proper: only
// the string class and known engine objects have types that a signature can speak of. Any
// other instance, and any array that classification refuses, is UnsupportedArgType, which is
// not cached (a cache element without a converter counts as fresh) and is asked afresh.
#include <builtin/variants/VariantSignature.hpp>

#include <memory>
#include <type_traits>
#include <utility>

#include <builtin/services/BuiltinServices.hpp>
#include <builtin/types/StringClassId.hpp>
#include <ka/ka.hpp>

#include "../types/ShapeTable.hpp"

namespace Norvane::builtin {

namespace {

// From the opaque class on, an array is an instance of a class rather than a plain array.
constexpr kaClassID kFirstInstanceClassId = kaOPAQUE_CLASS;

// The converter of an unsupported argument: the array as it is, with a new reference.
Parameter passThrough(kaArray_tag* array, const ArgType* /*declared*/) {
    if (array != nullptr) {
        matrix::takeReference(array);
    }
    return Parameter(array);
}

const ArgumentClassification& unsupportedArgument() {
    static const ArgumentClassification unsupported{ArgType(types::UnsupportedArgType()),
                                                    &passThrough};
    return unsupported;
}

// The class provider as classification keeps it; absent for good if absent at first use.
const std::shared_ptr<IZOBJRegWrapper>& classProvider() {
    static const std::shared_ptr<IZOBJRegWrapper> provider = getHeldService<IZOBJRegWrapper>();
    return provider;
}

kaClassID classIdOf(const kaArray_tag* array) {
    const auto& provider = classProvider();
    return provider ? provider->getClassId(array) : matrix::classId(array);
}

// Whether a class id is one whose instances classification can speak of.
bool isClassifiable(kaClassID classId) {
    if (classId < kFirstInstanceClassId) {
        return true;
    }
    const auto stringClassId = types::detail::getKnownStringClassId();
    return (stringClassId && *stringClassId == classId) ||
           builtinreg::isAKnownOrroObject(classId);
}

// Makes sure that the cache has an element at i; a new one is fresh.
void grow(ClassificationCache& known, std::size_t i) {
    if (known.size() <= i) {
        known.resize(i + 1);
    }
}

// The cache element at i, which is the end of the cache or a fresh element, ready to be
// written. At the end it is made in place, which is the common case and the cheaper one.
ArgumentClassification& slotAt(ClassificationCache& known, std::size_t i) {
    return known.size() == i ? known.emplace_back() : known[i];
}

// Stores a classification at i. `Type` is an alternative of ArgType, built in place from
// `arguments`, or ArgType itself, moved in.
template <class Type, class... Arguments>
const ArgumentClassification& keep(ClassificationCache& known, std::size_t i,
                                   types::Converter converter, Arguments&&... arguments) {
    ArgumentClassification& slot = slotAt(known, i);
    if constexpr (std::is_same_v<Type, ArgType>) {
        slot.type = ArgType(std::forward<Arguments>(arguments)...);
    } else {
        slot.type.template emplace<Type>(std::forward<Arguments>(arguments)...);
    }
    slot.converter = converter;
    return slot;
}

}  // namespace

const ArgumentClassification& VariantSignature::classify(std::size_t i) const {
    ClassificationCache& known = *cache;
    if (known.size() < i) {
        known.resize(i);
    }
    kaArray_tag* const array = prhs[i];
    if (array == nullptr) {
        return keep<types::UnsupportedArgType>(known, i, &passThrough);
    }
    if (!isClassifiable(classIdOf(array))) {
        grow(known, i);
        return unsupportedArgument();
    }
    if (const types::Converter scalar = types::detail::realScalarConverter(array)) {
        return keep<types::NumericScalarTypes>(known, i, scalar,
                                               static_cast<kaClassID>(array->storedClass),
                                               types::NumericScalarTypes::Complexity::REAL);
    }
    try {
        auto [type, converter] = types::classifyKaArray(array);
        return keep<ArgType>(known, i, converter, std::move(type));
    } catch (...) {
        // A refusal of classification ends here: the argument is unsupported for this look.
        grow(known, i);
        return unsupportedArgument();
    }
}

ArgType VariantSignature::getArgType(std::size_t i) const {
    return argType(i);
}

Parameter VariantSignature::passUnsupported(kaArray_tag* array) {
    return passThrough(array, nullptr);
}

}  // namespace Norvane::builtin
