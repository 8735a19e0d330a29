// Classification of the arguments of a live call, on demand and cached per call.
//
// Instances of classes of the class system are looked at before classification proper: only
// the string class and known engine objects have types that a signature can speak of. Any
// other instance, and any array that classification refuses, is UnsupportedArgType, which is
// not cached (a cache element without a converter counts as fresh) and is asked afresh.
#include <builtin/variants/VariantSignature.hpp>

#include <memory>

#include <builtin/services/BuiltinServices.hpp>
#include <builtin/types/StringClassId.hpp>
#include <ka/ka.hpp>

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

// Stores a classification at i, which is the end of the cache or a fresh element. At the end
// it is constructed in place, which is the common case and the cheaper one.
const ArgumentClassification& keep(ClassificationCache& known, std::size_t i, ArgType&& type,
                                   types::Converter converter) {
    if (known.size() == i) {
        return known.emplace_back(std::move(type), converter);
    }
    known[i] = ArgumentClassification{std::move(type), converter};
    return known[i];
}

}  // namespace

const ArgumentClassification& VariantSignature::classify(std::size_t i) const {
    ClassificationCache& known = *cache;
    if (known.size() < i) {
        known.resize(i);
    }
    kaArray_tag* const array = prhs[i];
    if (array == nullptr) {
        return keep(known, i, ArgType(types::UnsupportedArgType()), &passThrough);
    }
    if (!isClassifiable(classIdOf(array))) {
        grow(known, i);
        return unsupportedArgument();
    }
    try {
        auto [type, converter] = types::classifyKaArray(array);
        return keep(known, i, std::move(type), converter);
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
