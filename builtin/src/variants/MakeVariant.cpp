// Making, flagging and sorting the variants of a declaration.
#include <builtin/variants/MakeVariant.hpp>

#include <algorithm>
#include <iterator>

#include <fl/diag.hpp>

namespace Norvane::builtin::builtinreg::detail {

namespace {

constexpr const char* kSourcePath = "builtin2/interface/builtin/MakeVariant";

bool isUnsupported(const ArgType& type) {
    return std::holds_alternative<types::UnsupportedArgType>(type);
}

}  // namespace

void appendNewVariants(std::vector<BuiltinVariant>& variants, const VariantDeclaration& prototype,
                       const FlagList& flags, std::vector<std::vector<ArgType>>&& inputs) {
    variants.reserve(variants.size() + inputs.size());
    for (std::vector<ArgType>& signature : inputs) {
        VariantDeclaration declaration = prototype;
        declaration.inputArgTypes = std::move(signature);
        variants.emplace_back(std::move(declaration));
    }
    // Flags go in after the support level is worked out; a flag is fully supported, so the
    // level stands, and a flag never makes a variant unsupported.
    removeUnsupportedVariants(variants);
    addFlagInputTypes(variants, flags);
    sortVariants(variants);
}

void appendNewVariants(std::vector<BuiltinVariant>& variants, void* developerFunction,
                       BuiltinVariant::CallsIntoKeldor mayCallIntoKeldor,
                       BuiltinVariant::HasSideEffects mayHaveSideEffects,
                       std::string_view cppFunctionName, std::string_view keldorFunctionName,
                       std::string_view dominantClass, const FlagList& flags,
                       BuiltinVariant::HasExceptions mayThrowErrors,
                       const OrroFunctionDescriptor& descriptor,
                       BuiltinVariant::IsElementWise isElementWise,
                       BuiltinVariant::HasWarnings mayRaiseWarnings, std::vector<ArgType>&& outputs,
                       std::vector<std::vector<ArgType>>&& inputs) {
    appendNewVariants(variants,
                      {.functionDescriptor = descriptor,
                       .developerFunction = developerFunction,
                       .outputArgTypes = std::move(outputs),
                       .mayCallIntoKeldor = mayCallIntoKeldor,
                       .mayRaiseWarnings = mayRaiseWarnings,
                       .mayThrowErrors = mayThrowErrors,
                       .mayHaveSideEffects = mayHaveSideEffects,
                       .cppFunctionName = std::string(cppFunctionName),
                       .keldorFunctionName = std::string(keldorFunctionName),
                       .dominantClass = std::string(dominantClass),
                       .isElementWise = isElementWise},
                      flags, std::move(inputs));
}

std::vector<BuiltinVariant> appendVariants(std::vector<BuiltinVariant>&& first,
                                           std::vector<BuiltinVariant>&& second) {
    if (first.empty()) {
        return std::move(second);
    }
    first.insert(first.end(), std::make_move_iterator(second.begin()),
                 std::make_move_iterator(second.end()));
    return std::move(first);
}

void addFlagInputTypes(BuiltinVariant& variant, const FlagList& flags) {
    for (const auto& [position, text] : flags) {
        const types::FlagInputType flag(text);
        const auto offset = static_cast<std::ptrdiff_t>(position);
        variant.inputTypes.insert(variant.inputTypes.begin() + offset, flag.toString());
        variant.inputArgTypes.insert(variant.inputArgTypes.begin() + offset, ArgType(flag));
    }
}

void addFlagInputTypes(std::vector<BuiltinVariant>& variants, const FlagList& flags) {
    if (flags.empty()) {
        return;
    }
    for (BuiltinVariant& variant : variants) {
        addFlagInputTypes(variant, flags);
    }
}

void sortFlags(FlagList& flags) {
    std::sort(flags.begin(), flags.end(),
              [](const auto& a, const auto& b) { return a.first < b.first; });
}

void sortVariants(std::vector<BuiltinVariant>& variants) {
    std::sort(variants.begin(), variants.end());
}

void removeUnsupportedVariants(std::vector<BuiltinVariant>& variants) {
    variants.erase(std::remove_if(variants.begin(), variants.end(), isUnsupportedBuiltinVariant),
                   variants.end());
}

bool isUnsupportedBuiltinVariant(const BuiltinVariant& variant) {
    return std::any_of(variant.inputArgTypes.begin(), variant.inputArgTypes.end(), isUnsupported) ||
           std::any_of(variant.outputArgTypes.begin(), variant.outputArgTypes.end(), isUnsupported);
}

const BuiltinVariant* findLastVariantWithSupportLevel(
    const std::vector<BuiltinVariant>& variants,
    const std::initializer_list<OrroSupportLevel>& levels) {
    const auto found = std::find_if(variants.rbegin(), variants.rend(), [&](const auto& v) {
        return std::find(levels.begin(), levels.end(), v.orroSupportLevel) != levels.end();
    });
    return found == variants.rend() ? nullptr : &*found;
}

void assertNumberOfArgTypes(std::size_t expectedNLhs, std::size_t expectedNRhs,
                            std::size_t actualNLhs, std::size_t actualNRhs) {
    if (expectedNLhs != actualNLhs && fl_diag_terminate()) {
        foundation::core::diag::terminate("expectedNLhs == actualNLhs", kSourcePath, __LINE__,
                                          __PRETTY_FUNCTION__);
    }
    if (expectedNRhs != actualNRhs && fl_diag_terminate()) {
        foundation::core::diag::terminate("expectedNRhs == actualNRhs", kSourcePath, __LINE__,
                                          __PRETTY_FUNCTION__);
    }
}

}  // namespace Norvane::builtin::builtinreg::detail
