// Appending, checking and logging boxing variants, and the report of a failed conversion.
#include <builtin/variants/BoxingVariants.hpp>

#include <algorithm>
#include <ostream>

#include <fl/diag.hpp>
#include <foundation/log/diagnostic_logger.hpp>

namespace Norvane::builtin::builtinreg::detail {

namespace {

using types::ArgTypeDirection;

constexpr const char* kSourcePath = "builtin2/interface/builtin/MakeVariant";
constexpr std::uint32_t kBoxingSeverity = 4;

const foundation::log::diagnostic_logger& boxingLogger() {
    static const foundation::log::diagnostic_logger logger("builtin2::Boxing");
    return logger;
}

OrroSupportLevel fold(OrroSupportLevel level, const std::vector<ArgType>& argTypes,
                      ArgTypeDirection direction) {
    for (const ArgType& type : argTypes) {
        level = types::combine(level, types::getOrroSupportLevel(type, direction));
    }
    return level;
}

void check(bool holds, const char* text, int line, const char* signature) {
    if (!holds && fl_diag_terminate()) {
        foundation::core::diag::terminate(text, kSourcePath, line, signature);
    }
}

void writeTypeNames(std::ostream& os,
                    std::initializer_list<std::reference_wrapper<const std::type_info>> names) {
    const char* separator = "";
    for (const std::type_info& type : names) {
        os << separator << foundation::core::diag::detail::demangle_typeid_name(type.name(), true);
        separator = "\", \"";
    }
}

}  // namespace

void fillBoxedVariants(const BuiltinVariant& prototype, std::vector<BuiltinVariant>& variants,
                       std::vector<std::vector<ArgType>>&& boxedInputs) {
    variants.reserve(variants.size() + boxedInputs.size());
    for (std::vector<ArgType>& inputs : boxedInputs) {
        BuiltinVariant boxing = prototype;
        boxing.inputArgTypes = std::move(inputs);
        boxing.inputTypes.clear();
        boxing.inputTypes.reserve(boxing.inputArgTypes.size());
        for (std::size_t i = 0; i < boxing.inputArgTypes.size(); ++i) {
            boxing.inputTypes.push_back(
                types::toString(boxing.inputArgTypes[i], ArgTypeDirection::INPUT, i));
        }
        // The interpreter calls the declared variant itself, so a boxing variant serves the
        // engine only, whatever the prototype's level or flags.
        OrroSupportLevel level = OrroSupportLevel::ORRO_ONLY;
        level = fold(level, boxing.outputArgTypes, ArgTypeDirection::OUTPUT);
        level = fold(level, boxing.inputArgTypes, ArgTypeDirection::INPUT);
        boxing.orroSupportLevel = level;
        variants.push_back(std::move(boxing));
    }
}

void assertBoxingVariantConsistent(const BuiltinVariant& boxingVariant,
                                   const BuiltinVariant& originalVariant) {
    check(boxingVariant.inputTypes.size() == originalVariant.inputTypes.size(),
          "boxingVariant.inputTypes.size() == originalVariant.inputTypes.size()", __LINE__,
          __PRETTY_FUNCTION__);
    check(boxingVariant.inputArgTypes.size() == originalVariant.inputArgTypes.size(),
          "boxingVariant.inputArgTypes.size() == originalVariant.inputArgTypes.size()", __LINE__,
          __PRETTY_FUNCTION__);
    check(std::equal(boxingVariant.outputTypes.cbegin(), boxingVariant.outputTypes.cend(),
                     originalVariant.outputTypes.cbegin(), originalVariant.outputTypes.cend()),
          "std::equal(boxingVariant.outputTypes.cbegin(), boxingVariant.outputTypes.cend(), "
          "originalVariant.outputTypes.cbegin(), originalVariant.outputTypes.cend())",
          __LINE__, __PRETTY_FUNCTION__);
    check(
        std::equal(boxingVariant.outputArgTypes.cbegin(), boxingVariant.outputArgTypes.cend(),
                   originalVariant.outputArgTypes.cbegin(), originalVariant.outputArgTypes.cend()),
        "std::equal(boxingVariant.outputArgTypes.cbegin(), boxingVariant.outputArgTypes.cend(), "
        "originalVariant.outputArgTypes.cbegin(), originalVariant.outputArgTypes.cend())",
        __LINE__, __PRETTY_FUNCTION__);
}

void logBoxingInputConversions(
    std::initializer_list<std::reference_wrapper<const std::type_info>> developerInputs,
    std::initializer_list<std::reference_wrapper<const std::type_info>> boxedInputs,
    const BuiltinVariant& variant) {
    boxingLogger().write(kBoxingSeverity, [&](std::ostream& os) {
        os << "Developer inputs: \"";
        writeTypeNames(os, developerInputs);
        os << "\"\nBoxed inputs: \"";
        writeTypeNames(os, boxedInputs);
        os << "\"\nArgTypes: \"";
        const char* separator = "";
        for (const std::string& type : variant.inputTypes) {
            os << separator << type;
            separator = "\"\n";
        }
    });
}

void handleBoxingException(bool& pending, IOrroBuiltinEnvironment* const environment) {
    pending = true;
    if (environment == nullptr) {
        return;
    }
    if (IOrroBuiltinAccessors* const accessors = environment->GetOrroBuiltinAccessors()) {
        accessors->SetInternalPendingException();
    }
}

}  // namespace Norvane::builtin::builtinreg::detail
