// Construction, equality and the total order of variants. The order decides precedence at call
// time and which duplicate survives cleanup, so it is kept exactly as the search code expects:
// counts first, then input types, and a boxing variant at the place of its source.
#include <builtin/variants/BuiltinVariant.hpp>

#include <cstddef>
#include <utility>

#include <fl/diag.hpp>

namespace Norvane::builtin {

namespace {

using types::ArgTypeDirection;
using types::combine;
using types::getOrroSupportLevel;

constexpr const char* kSourcePath = "builtin2/interface/builtin/BuiltinVariant";

template <class Flag>
bool isSet(Flag flag) {
    return flag != Flag::NO;
}

std::vector<std::string> typeExpressions(const std::vector<ArgType>& argTypes,
                                         ArgTypeDirection direction) {
    std::vector<std::string> expressions;
    expressions.reserve(argTypes.size());
    for (std::size_t i = 0; i < argTypes.size(); ++i) {
        expressions.push_back(types::toString(argTypes[i], direction, i));
    }
    return expressions;
}

OrroSupportLevel foldSupportLevel(OrroSupportLevel level, const std::vector<ArgType>& argTypes,
                                  ArgTypeDirection direction) {
    for (const ArgType& type : argTypes) {
        level = combine(level, getOrroSupportLevel(type, direction));
    }
    return level;
}

}  // namespace

BuiltinVariant::BuiltinVariant() = default;

BuiltinVariant::BuiltinVariant(VariantDeclaration declaration)
    : functionDescriptor(declaration.functionDescriptor),
      developerFunction(declaration.developerFunction),
      inputArgTypes(std::move(declaration.inputArgTypes)),
      outputArgTypes(std::move(declaration.outputArgTypes)),
      mayCallIntoKeldor(declaration.mayCallIntoKeldor),
      mayRaiseWarnings(declaration.mayRaiseWarnings),
      mayThrowErrors(declaration.mayThrowErrors),
      mayHaveSideEffects(declaration.mayHaveSideEffects),
      cppFunctionName(std::move(declaration.cppFunctionName)),
      keldorFunctionName(std::move(declaration.keldorFunctionName)),
      dominantClass(std::move(declaration.dominantClass)),
      orroSupportLevel(OrroSupportLevel::NO_SUPPORT),
      isElementWise(declaration.isElementWise) {
    // A function that only warns reports through the environment as well, so it needs
    // CanThrow as much as one that fails. A default implementation is never called that way.
    const bool isDefaultImpl = functionDescriptor.typedEntry == nullptr;
    const bool reports = isSet(mayThrowErrors) || isSet(mayRaiseWarnings);
    const bool canThrowIsConsistent =
        (functionDescriptor.callingConvention == JIT_CALLING_CONVENTION::CanThrow) == reports;
    if (!(isDefaultImpl || canThrowIsConsistent) && fl_diag_terminate()) {
        foundation::core::diag::terminate("isDefaultImpl || canThrowIsConsistent", kSourcePath,
                                          __LINE__, __PRETTY_FUNCTION__);
    }

    inputTypes = typeExpressions(inputArgTypes, ArgTypeDirection::INPUT);
    outputTypes = typeExpressions(outputArgTypes, ArgTypeDirection::OUTPUT);
    orroSupportLevel = declaredSupportLevel(*this);
}

BuiltinVariant::BuiltinVariant(void* const developerFcn, OrroFunctionDescriptor descriptor,
                               std::vector<ArgType> inputs, std::vector<ArgType> outputs,
                               CallsIntoKeldor callsIntoKeldor, HasWarnings hasWarnings,
                               HasExceptions hasExceptions, HasSideEffects hasSideEffects,
                               std::string cppName, std::string keldorName, std::string dominant,
                               IsElementWise elementWise)
    : BuiltinVariant(VariantDeclaration{.functionDescriptor = descriptor,
                                        .developerFunction = developerFcn,
                                        .inputArgTypes = std::move(inputs),
                                        .outputArgTypes = std::move(outputs),
                                        .mayCallIntoKeldor = callsIntoKeldor,
                                        .mayRaiseWarnings = hasWarnings,
                                        .mayThrowErrors = hasExceptions,
                                        .mayHaveSideEffects = hasSideEffects,
                                        .cppFunctionName = std::move(cppName),
                                        .keldorFunctionName = std::move(keldorName),
                                        .dominantClass = std::move(dominant),
                                        .isElementWise = elementWise}) {}

OrroSupportLevel declaredSupportLevel(const BuiltinVariant& v) {
    OrroSupportLevel level = isSet(v.mayCallIntoKeldor) ? OrroSupportLevel::NO_SUPPORT
                                                        : OrroSupportLevel::EQUIVALENT_SUPPORT;
    level = foldSupportLevel(level, v.outputArgTypes, ArgTypeDirection::OUTPUT);
    level = foldSupportLevel(level, v.inputArgTypes, ArgTypeDirection::INPUT);
    // The engine runs lifted kernels without the guards an interpreted call has, so a kernel
    // that reports, has effects or calls back is never offered to it.
    if (v.isElementWise == BuiltinVariant::IsElementWise::YES &&
        (isSet(v.mayHaveSideEffects) || isSet(v.mayCallIntoKeldor) || isSet(v.mayRaiseWarnings) ||
         isSet(v.mayThrowErrors))) {
        level = combine(level, OrroSupportLevel::NO_SUPPORT);
    }
    return level;
}

BuiltinVariant::BuiltinVariant(const BuiltinVariant&) = default;
BuiltinVariant::BuiltinVariant(BuiltinVariant&&) noexcept = default;
BuiltinVariant& BuiltinVariant::operator=(const BuiltinVariant&) = default;
BuiltinVariant& BuiltinVariant::operator=(BuiltinVariant&&) noexcept = default;
BuiltinVariant::~BuiltinVariant() = default;

bool BuiltinVariant::operator==(const BuiltinVariant& rhs) const {
    if (this == &rhs) {
        return true;
    }
    // The equality of ArgType is that of std::variant: same alternative, then the alternative's
    // own ==, which for scalars, flags and arrays is equivalence under their order.
    return inputArgTypes.size() == rhs.inputArgTypes.size() &&
           outputArgTypes.size() == rhs.outputArgTypes.size() && inputArgTypes == rhs.inputArgTypes;
}

bool BuiltinVariant::operator<(const BuiltinVariant& rhs) const {
    const BuiltinVariant& lhs = *this;
    const bool sameOriginal =
        lhs.originalVariant && rhs.originalVariant && *lhs.originalVariant == *rhs.originalVariant;
    // A boxing variant stands in for its source, unless both share a source: then their own
    // boxed signatures decide.
    const BuiltinVariant& a = lhs.originalVariant && !sameOriginal ? *lhs.originalVariant : lhs;
    const BuiltinVariant& b = rhs.originalVariant && !sameOriginal ? *rhs.originalVariant : rhs;

    if (a.inputArgTypes.size() != b.inputArgTypes.size()) {
        return a.inputArgTypes.size() < b.inputArgTypes.size();
    }
    if (a.outputArgTypes.size() != b.outputArgTypes.size()) {
        return a.outputArgTypes.size() < b.outputArgTypes.size();
    }
    // The declared variant goes ahead of every boxing variant derived from it.
    if (lhs.originalVariant && !rhs.originalVariant && rhs == *lhs.originalVariant) {
        return false;
    }
    if (!lhs.originalVariant && rhs.originalVariant && lhs == *rhs.originalVariant) {
        return true;
    }
    for (std::size_t i = 0; i < a.inputArgTypes.size(); ++i) {
        if (a.inputArgTypes[i] != b.inputArgTypes[i]) {
            return a.inputArgTypes[i] < b.inputArgTypes[i];
        }
    }
    return false;
}

// The variant is not a standard-layout type (its comparison bases see to that), but it has no
// virtual base, which is all that GCC needs for offsetof.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
const BuiltinVariant& enclosingVariant(const OrroFunctionDescriptor* descriptor) noexcept {
    constexpr std::size_t offset = offsetof(BuiltinVariant, functionDescriptor);
    return *reinterpret_cast<const BuiltinVariant*>(reinterpret_cast<const char*>(descriptor) -
                                                    offset);
}
#pragma GCC diagnostic pop

}  // namespace Norvane::builtin
