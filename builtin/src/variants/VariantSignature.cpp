// Classification of the arguments of a live call, on demand and cached per call.
//
// Instances of classes of the class system are looked at before classification proper: only
// the string class and known engine objects have types that a signature can speak of. Any
// other instance, and any array that classification refuses, is UnsupportedArgType, which is
// not cached (a cache element without a converter counts as fresh) and is asked afresh.
#include <builtin/variants/VariantSignature.hpp>

#include <algorithm>
#include <memory>
#include <utility>

#include <boost/variant/get.hpp>

#include <builtin/services/BuiltinServices.hpp>
#include <builtin/types/StringClassId.hpp>
#include <builtin/variants/BuiltinVariant.hpp>
#include <ka/ka.hpp>

#include "../types/ShapeTable.hpp"

namespace Norvane::builtin {

namespace {

// From the opaque class on, an array is an instance of a class rather than a plain array.
constexpr kaClassID kFirstInstanceClassId = kaOPAQUE_CLASS;

const ArgumentClassification& unsupportedArgument() {
    static const ArgumentClassification unsupported{ArgType(types::UnsupportedArgType()),
                                                    &types::passThroughConverter};
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
    return (stringClassId && *stringClassId == classId) || builtinreg::isAKnownOrroObject(classId);
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

// Stores a classification at i, with its type moved in.
const ArgumentClassification& keep(ClassificationCache& known, std::size_t i, ArgType&& type,
                                   types::Converter converter) {
    ArgumentClassification& slot = slotAt(known, i);
    slot.type = std::move(type);
    slot.converter = converter;
    return slot;
}

// Stores a classification at i whose type, one alternative of ArgType, is built in place.
template <class Alternative, class... Arguments>
const ArgumentClassification& keepNew(ClassificationCache& known, std::size_t i,
                                      types::Converter converter, Arguments&&... arguments) {
    ArgumentClassification& slot = slotAt(known, i);
    slot.type.template emplace<Alternative>(std::forward<Arguments>(arguments)...);
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
        return keepNew<types::UnsupportedArgType>(known, i, &types::passThroughConverter);
    }
    if (!isClassifiable(classIdOf(array))) {
        grow(known, i);
        return unsupportedArgument();
    }
    if (const auto scalar = types::detail::classifyRealScalar(array); scalar.converter) {
        return keepNew<types::NumericScalarTypes>(known, i, scalar.converter, *scalar.type);
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

void VariantSignature::collectParameters(const BuiltinVariant& variant,
                                         ParameterList& arguments) const {
    if (nrhs > arguments.capacity()) {
        arguments.reserve(nrhs);
    }
    try {
        for (std::size_t i = 0; i < nrhs; ++i) {
            const ArgType& declared = variant.inputArgTypes[i];
            if (!types::skipDuringInvoke(declared)) {
                arguments.push_back(toParameter(i, &declared));
            }
        }
    } catch (...) {
        for (const Parameter& argument : arguments) {
            if (kaArray_tag* const* array = boost::get<kaArray_tag*>(&argument)) {
                matrix::releaseReference(*array);
            }
        }
        throw;
    }
}

}  // namespace Norvane::builtin
