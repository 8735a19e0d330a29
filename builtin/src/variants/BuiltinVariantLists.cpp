// Distribution of the cleaned variants into the search lists, and their log.
#include <builtin/variants/BuiltinVariantLists.hpp>

#include <algorithm>
#include <ostream>

#include <foundation/log/diagnostic_logger.hpp>

#include "CleanupVariants.hpp"

namespace Norvane::builtin::builtinreg {

namespace {

using types::NumericScalarTypes;

constexpr std::uint32_t kListsSeverity = 4;

const foundation::log::diagnostic_logger& listsLogger() {
    static const foundation::log::diagnostic_logger logger("builtin2::BuiltinVariantLists");
    return logger;
}

// Whether some input would take a complex double or single scalar: such a variant must be
// searched by invoke after the engine, which passes on calls with complex scalars.
bool takesComplexScalar(const BuiltinVariant& variant) {
    static const ArgType complexDouble =
        NumericScalarTypes(kaDOUBLE_CLASS, NumericScalarTypes::Complexity::COMPLEX);
    static const ArgType complexSingle =
        NumericScalarTypes(kaSINGLE_CLASS, NumericScalarTypes::Complexity::COMPLEX);
    return std::any_of(variant.inputArgTypes.begin(), variant.inputArgTypes.end(),
                       [](const ArgType& input) {
                           return types::isAcceptable(input, complexDouble) ||
                                  types::isAcceptable(input, complexSingle);
                       });
}

void distribute(BuiltinVariantLists& lists) {
    for (const BuiltinVariant& variant : lists.all) {
        switch (variant.orroSupportLevel) {
            case OrroSupportLevel::EQUIVALENT_SUPPORT:
            case OrroSupportLevel::NO_SUPPORT_SCALAR_COMPLEX:
                if (takesComplexScalar(variant)) {
                    BuiltinVariant& copy =
                        lists.searchedByInvokeAfterOrroComplexScalarRhs.emplace_back(variant);
                    copy.orroSupportLevel = OrroSupportLevel::NO_SUPPORT_SCALAR_COMPLEX;
                }
                lists.searchedByOrro.push_back(variant);
                lists.searchedByInvokeNoOrro.push_back(variant);
                break;
            case OrroSupportLevel::ORRO_ONLY: lists.searchedByOrro.push_back(variant); break;
            case OrroSupportLevel::NO_SUPPORT:
                lists.searchedByInvokeAfterOrro.push_back(variant);
                lists.searchedByInvokeAfterOrroComplexScalarRhs.push_back(variant);
                lists.searchedByInvokeNoOrro.push_back(variant);
                break;
        }
    }
}

void logList(const char* label, const std::vector<BuiltinVariant>& list) {
    listsLogger().write(kListsSeverity, [&](std::ostream& os) {
        os << label;
        for (const BuiltinVariant& variant : list) {
            os << variant << '\n';
        }
    });
}

void logLists(const BuiltinVariantLists& lists) {
    logList("all:\n", lists.all);
    logList("searchedByOrro:\n", lists.searchedByOrro);
    logList("searchedByInvokeAfterOrro:\n", lists.searchedByInvokeAfterOrro);
    logList("searchedByInvokeAfterOrroComplexScalarRhs:\n",
            lists.searchedByInvokeAfterOrroComplexScalarRhs);
    logList("searchedByInvokeNoOrro:\n", lists.searchedByInvokeNoOrro);
}

// Copies of the variants of all lists, in order, in one vector of the right size.
template <class Lists>
std::vector<BuiltinVariant> concatenateAll(const Lists& lists) {
    std::size_t total = 0;
    for (const auto& list : lists) {
        total += list.size();
    }
    std::vector<BuiltinVariant> variants;
    variants.reserve(total);
    for (const auto& list : lists) {
        variants.insert(variants.end(), list.begin(), list.end());
    }
    return variants;
}

}  // namespace

BuiltinVariantLists::BuiltinVariantLists() = default;

BuiltinVariantLists::BuiltinVariantLists(std::vector<BuiltinVariant>&& variants)
    : all(detail::cleanupVariants(std::move(variants))) {
    distribute(*this);
    logLists(*this);
}

BuiltinVariantLists::BuiltinVariantLists(
    const std::initializer_list<std::vector<BuiltinVariant>>& lists)
    : BuiltinVariantLists(concatenateAll(lists)) {}

BuiltinVariantLists::BuiltinVariantLists(BuiltinVariantLists&&) = default;
BuiltinVariantLists& BuiltinVariantLists::operator=(BuiltinVariantLists&&) = default;
BuiltinVariantLists::~BuiltinVariantLists() = default;

std::vector<BuiltinVariant> BuiltinVariantLists::concatenateVariantSpans(
    std::initializer_list<std::span<const BuiltinVariant>> spans) {
    return concatenateAll(spans);
}

}  // namespace Norvane::builtin::builtinreg
