// A variant against a live call: acceptance, which picks the implementation that runs, and the
// order of a variant against a call. Both are on the path of every interpreted call, so counts
// are compared before any argument is classified, and arguments are reached only through the
// signature, which classifies each at most once.
#include "VariantAcceptance.hpp"

#include <algorithm>
#include <cstddef>
#include <span>

#include <ka/ka.hpp>

namespace Norvane::builtin {

namespace {

bool countsAccept(const BuiltinVariant& variant, const VariantSignature& signature) {
    if (variant.inputArgTypes.size() != signature.nrhs) {
        return false;
    }
    const std::size_t outputs = variant.outputArgTypes.size();
    // A call that asks for no output may still be served by a one-output variant.
    return outputs == signature.nlhs || (signature.nlhs == 0 && outputs == 1);
}

// Two array dimensions that an element-wise kernel can run over together: both nonzero, and
// equal or one of them 1.
bool dimensionsAgree(std::size_t d0, std::size_t d1) {
    return d0 != 0 && d1 != 0 && (d0 == d1 || d0 == 1 || d1 == 1);
}

// The arrays a lifted kernel would run over: the inputs that are passed on (flags drop out).
// One array is always fine, empty or not; two must agree in their common leading dimensions,
// and the kernel is never lifted over three.
bool elementWiseShapesAgree(const BuiltinVariant& variant, const VariantSignature& signature) {
    const kaArray_tag* arrays[2] = {nullptr, nullptr};
    std::size_t count = 0;
    for (std::size_t i = 0; i < signature.nrhs; ++i) {
        if (types::skipDuringInvoke(variant.inputArgTypes[i])) {
            continue;
        }
        if (count == 2) {
            return false;
        }
        arrays[count++] = signature.prhs[i];
    }
    if (count == 1) {
        return true;
    }
    if (count == 0 || arrays[0] == nullptr || arrays[1] == nullptr) {
        return false;
    }
    const std::span<const std::size_t> dims0 = matrix::dimensions(arrays[0]);
    const std::span<const std::size_t> dims1 = matrix::dimensions(arrays[1]);
    const std::size_t common = std::min(dims0.size(), dims1.size());
    for (std::size_t d = 0; d < common; ++d) {
        if (!dimensionsAgree(dims0[d], dims1[d])) {
            return false;
        }
    }
    return true;
}

bool acceptsAsElementWise(const BuiltinVariant& variant, const VariantSignature& signature) {
    for (std::size_t i = 0; i < signature.nrhs; ++i) {
        if (!types::isAcceptable(types::asElementWiseArrayType(variant.inputArgTypes[i]),
                                 signature.argType(i))) {
            return false;
        }
    }
    return elementWiseShapesAgree(variant, signature);
}

}  // namespace

bool detail::acceptsCall(const BuiltinVariant& variant, const VariantSignature& signature) {
    return countsAccept(variant, signature) && acceptsArguments(variant, signature);
}

bool detail::acceptsArguments(const BuiltinVariant& variant, const VariantSignature& signature) {
    for (std::size_t i = 0; i < signature.nrhs; ++i) {
        if (!types::isAcceptable(variant.inputArgTypes[i], signature.argType(i))) {
            // A scalar kernel may still take arrays when it can be lifted; that try starts
            // again from the first input.
            return variant.isElementWise == BuiltinVariant::IsElementWise::YES &&
                   acceptsAsElementWise(variant, signature);
        }
    }
    return true;
}

bool BuiltinVariant::operator==(const VariantSignature& signature) const {
    return detail::acceptsCall(*this, signature);
}

bool BuiltinVariant::operator<(const VariantSignature& signature) const {
    if (inputArgTypes.size() != signature.nrhs) {
        return inputArgTypes.size() < signature.nrhs;
    }
    // Unlike acceptance, no tolerance for a call that asks for no output.
    if (outputArgTypes.size() != signature.nlhs) {
        return outputArgTypes.size() < signature.nlhs;
    }
    if (originalVariant && *originalVariant == signature) {
        return false;
    }
    const BuiltinVariant& typesFrom = originalVariant ? *originalVariant : *this;
    const std::size_t count = std::min(typesFrom.inputArgTypes.size(), signature.nrhs);
    for (std::size_t i = 0; i < count; ++i) {
        const ArgType& live = signature.argType(i);
        if (typesFrom.inputArgTypes[i] < live) {
            return true;
        }
        if (live < typesFrom.inputArgTypes[i]) {
            return false;
        }
    }
    return false;
}

bool BuiltinVariant::operator>(const VariantSignature& signature) const {
    return !(*this == signature) && !(*this < signature);
}

}  // namespace Norvane::builtin
