// Whether a variant takes a live call, and why not: the one rule by which an interpreted call
// chooses its variant. Three steps, each decided here alone:
//
//   1. Counts: as many inputs as arguments, and as many outputs as asked, where a call that asks
//      for none may also take a variant of one output.
//   2. Types: each input, in order, takes its argument's classified type.
//   3. For an element-wise variant refused in step 2: each input, as an array of its type,
//      takes its argument, and the arrays that the kernel would run over agree in shape.
//
// invoke and BuiltinVariant::operator==(VariantSignature) ask the yes-or-no form; hosts that
// explain a choice (kcall --explain) ask for the verdict, which the same code gives.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <builtin/config.hpp>
#include <builtin/variants/BuiltinVariant.hpp>
#include <builtin/variants/VariantSignature.hpp>

namespace Norvane::builtin {

struct AcceptanceVerdict {
    enum class Outcome : std::uint8_t {
        TAKES,                    // as declared
        TAKES_ELEMENT_WISE,       // a scalar kernel lifted over the arrays
        REFUSED_BY_COUNT,         // of inputs or of outputs
        REFUSED_BY_TYPE,          // at `input`; see `arrayInput` for an element-wise variant
        SHAPES_DO_NOT_BROADCAST,  // element-wise, every type taken as an array
    };
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    Outcome outcome = Outcome::REFUSED_BY_COUNT;
    std::size_t input = kNone;       // REFUSED_BY_TYPE: the first input refused as declared
    std::size_t arrayInput = kNone;  // and, for an element-wise variant, as an array

    bool takes() const {
        return outcome == Outcome::TAKES || outcome == Outcome::TAKES_ELEMENT_WISE;
    }
};

// The verdict on the variant for the call. Classifies arguments through the signature's cache.
BUILTIN_API AcceptanceVerdict judgeCall(const BuiltinVariant& variant,
                                        const VariantSignature& signature);

namespace detail {

// The counts of a call as a variant's type lists measure them: in bytes, which spares the
// division of a vector's size for each variant that a search looks at.
class CallArity {
public:
    CallArity(std::size_t nlhs, std::size_t nrhs)
        : inputBytes_(nrhs * sizeof(ArgType)), outputBytes_(nlhs * sizeof(ArgType)) {}

    // Step 1: whether the variant has the counts of the call.
    bool accepts(const BuiltinVariant& variant) const {
        if (bytesOf(variant.inputArgTypes) != inputBytes_) return false;
        const std::size_t outputs = bytesOf(variant.outputArgTypes);
        return outputs == outputBytes_ || (outputBytes_ == 0 && outputs == sizeof(ArgType));
    }

    // Whether the variant sorts ahead of every variant of the call's counts in a search list,
    // which is sorted by input count, then output count.
    bool sortsBefore(const BuiltinVariant& variant) const {
        const std::size_t inputs = bytesOf(variant.inputArgTypes);
        return inputs < inputBytes_ ||
               (inputs == inputBytes_ && bytesOf(variant.outputArgTypes) < outputBytes_);
    }

private:
    static std::size_t bytesOf(const std::vector<ArgType>& types) {
        const auto* first = reinterpret_cast<const char*>(std::to_address(types.begin()));
        const auto* last = reinterpret_cast<const char*>(std::to_address(types.end()));
        return static_cast<std::size_t>(last - first);
    }

    std::size_t inputBytes_;
    std::size_t outputBytes_;
};

// Steps 2 and 3, for a variant whose counts fit the call: the yes-or-no form of judgeCall.
BUILTIN_API bool acceptsArguments(const BuiltinVariant& variant, const VariantSignature& signature);

// The same, for a search whose answer is remembered by the types of the arguments: sets
// `comparedDimensions` when the answer rested on the live dimensions of two arrays (the shape
// test of step 3), which a classified type does not describe. Left alone otherwise.
BUILTIN_API bool acceptsArguments(const BuiltinVariant& variant, const VariantSignature& signature,
                                  bool& comparedDimensions);

// The shape test of step 3 alone, for an element-wise variant whose inputs have taken the
// arguments as arrays: whether the arrays a lifted kernel would run over agree in shape.
BUILTIN_API bool elementWiseShapesAgree(const BuiltinVariant& variant, std::size_t nrhs,
                                        kaArray_tag* const* prhs);

}  // namespace detail

}  // namespace Norvane::builtin
