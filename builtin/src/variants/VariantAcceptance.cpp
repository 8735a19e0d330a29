// A variant against a live call: acceptance, which picks the implementation that runs, and the
// order of a variant against a call. Both are on the path of every interpreted call, so counts
// are compared before any argument is classified, and arguments are reached only through the
// signature, which classifies each at most once.
//
// The yes-or-no answer of invoke and the verdict of a host that explains the choice are one
// template over what is noted on the way: nothing for invoke, where it compiles away, and the
// reason for judgeCall.
#include <builtin/variants/VariantAcceptance.hpp>

#include <algorithm>
#include <cstddef>
#include <span>

#include <ka/ka.hpp>

namespace Norvane::builtin {

namespace {

using Outcome = AcceptanceVerdict::Outcome;

// What invoke notes while it judges: nothing.
struct NoNotes {
    void refusedAt(std::size_t) {}
    void refusedAsArrayAt(std::size_t) {}
    void comparedDimensions() {}
    void shapesDisagree() {}
    void liftedOverArrays() {}
};

// What a search that is remembered notes: whether the answer rested on live dimensions, which no
// classified type describes.
struct DimensionNotes {
    bool& compared;
    void refusedAt(std::size_t) {}
    void refusedAsArrayAt(std::size_t) {}
    void comparedDimensions() { compared = true; }
    void shapesDisagree() {}
    void liftedOverArrays() {}
};

// What a verdict notes: the reason, and where.
struct VerdictNotes {
    AcceptanceVerdict verdict{Outcome::TAKES};
    void refusedAt(std::size_t i) {
        verdict.outcome = Outcome::REFUSED_BY_TYPE;
        verdict.input = i;
    }
    void refusedAsArrayAt(std::size_t i) { verdict.arrayInput = i; }
    void comparedDimensions() {}
    void shapesDisagree() { verdict.outcome = Outcome::SHAPES_DO_NOT_BROADCAST; }
    void liftedOverArrays() { verdict.outcome = Outcome::TAKES_ELEMENT_WISE; }
};

// Two array dimensions that an element-wise kernel can run over together: both nonzero, and
// equal or one of them 1.
bool dimensionsAgree(std::size_t d0, std::size_t d1) {
    return d0 != 0 && d1 != 0 && (d0 == d1 || d0 == 1 || d1 == 1);
}

// The arrays a lifted kernel would run over: the inputs that are passed on (flags drop out).
// One array is always fine, empty or not; two must agree in their common leading dimensions,
// and the kernel is never lifted over three. Only the comparison of two arrays reads anything
// that their types do not already say.
template <class Notes>
bool shapesAgree(const BuiltinVariant& variant, std::size_t nrhs, kaArray_tag* const* prhs,
                 Notes& notes) {
    const kaArray_tag* arrays[2] = {nullptr, nullptr};
    std::size_t count = 0;
    for (std::size_t i = 0; i < nrhs; ++i) {
        if (types::skipDuringInvoke(variant.inputArgTypes[i])) {
            continue;
        }
        if (count == 2) {
            return false;
        }
        arrays[count++] = prhs[i];
    }
    if (count == 1) {
        return true;
    }
    if (count == 0 || arrays[0] == nullptr || arrays[1] == nullptr) {
        return false;
    }
    notes.comparedDimensions();
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

// Step 3: the element-wise retry, from the first input again.
template <class Notes>
bool acceptsAsElementWise(const BuiltinVariant& variant, const VariantSignature& signature,
                          Notes& notes) {
    for (std::size_t i = 0; i < signature.nrhs; ++i) {
        if (!types::isAcceptable(types::asElementWiseArrayType(variant.inputArgTypes[i]),
                                 signature.argType(i))) {
            notes.refusedAsArrayAt(i);
            return false;
        }
    }
    if (!shapesAgree(variant, signature.nrhs, signature.prhs, notes)) {
        notes.shapesDisagree();
        return false;
    }
    notes.liftedOverArrays();
    return true;
}

// Steps 2 and 3, for a variant whose counts fit the call. Inlined into both of its callers, so
// that invoke's search makes no call more than before for the verdicts' sake.
template <class Notes>
[[gnu::always_inline]] inline bool argumentsAccept(const BuiltinVariant& variant,
                                                   const VariantSignature& signature,
                                                   Notes& notes) {
    for (std::size_t i = 0; i < signature.nrhs; ++i) {
        if (!types::isAcceptable(variant.inputArgTypes[i], signature.argType(i))) {
            notes.refusedAt(i);
            // A scalar kernel may still take arrays when it can be lifted.
            return variant.isElementWise == BuiltinVariant::IsElementWise::YES &&
                   acceptsAsElementWise(variant, signature, notes);
        }
    }
    return true;
}

}  // namespace

bool detail::acceptsArguments(const BuiltinVariant& variant, const VariantSignature& signature) {
    NoNotes notes;
    return argumentsAccept(variant, signature, notes);
}

bool detail::acceptsArguments(const BuiltinVariant& variant, const VariantSignature& signature,
                              bool& comparedDimensions) {
    DimensionNotes notes{comparedDimensions};
    return argumentsAccept(variant, signature, notes);
}

bool detail::elementWiseShapesAgree(const BuiltinVariant& variant, std::size_t nrhs,
                                    kaArray_tag* const* prhs) {
    NoNotes notes;
    return shapesAgree(variant, nrhs, prhs, notes);
}

AcceptanceVerdict judgeCall(const BuiltinVariant& variant, const VariantSignature& signature) {
    if (!detail::CallArity(signature.nlhs, signature.nrhs).accepts(variant)) {
        return {Outcome::REFUSED_BY_COUNT};
    }
    VerdictNotes notes;
    argumentsAccept(variant, signature, notes);
    return notes.verdict;
}

bool BuiltinVariant::operator==(const VariantSignature& signature) const {
    return detail::CallArity(signature.nlhs, signature.nrhs).accepts(*this) &&
           detail::acceptsArguments(*this, signature);
}

// The engine's: where a call would stand among the variants; nothing in this library asks.
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

// The engine's too: neither taken nor sorting before the call.
bool BuiltinVariant::operator>(const VariantSignature& signature) const {
    return !(*this == signature) && !(*this < signature);
}

}  // namespace Norvane::builtin
