// Construction of a builtin function object and its construction log. The road of a call is in
// Invoke.cpp.
#include <builtin/invoke/BuiltinFcn.hpp>

#include <ostream>

#include <foundation/log/diagnostic_logger.hpp>

#include <builtin/variants/BuiltinVariantLists.hpp>

namespace Norvane::builtin {

namespace {

constexpr const char* kSourcePath = "builtin2/interface/builtin/BuiltinFcn";
constexpr std::uint32_t kConstructionSeverity = 2;

const foundation::log::diagnostic_logger& fcnLogger() {
    static const foundation::log::diagnostic_logger logger("builtin2::BuiltinFcn");
    return logger;
}

// "<count> variants:\n", the variants' printed forms joined by ", ", then a line end.
void writeVariantArray(std::ostream& os, const VariantArray& array) {
    os << array.second << " variants:\n";
    for (std::size_t i = 0; i < array.second; ++i) {
        if (i != 0) {
            os << ", ";
        }
        os << array.first[i];
    }
    os << '\n';
}

// A list's data and size; null and 0 for an empty list.
VariantArray viewOf(const std::vector<BuiltinVariant>& list) {
    return list.empty() ? VariantArray(nullptr, 0) : VariantArray(list.data(), list.size());
}

}  // namespace

BuiltinFcn::BuiltinFcn() = default;

// The positional form is the one that does the work, so that its trace names the constructor
// the runtime's derived classes call.
BuiltinFcn::BuiltinFcn(std::string name, capabilities::CapabilityList capabilities,
                       VariantArray all, VariantArray searchedByOrro,
                       VariantArray searchedByInvokeAfterOrro, VariantArray searchedByInvokeNoOrro,
                       BuiltinVariant defaultVariant, Zfh_KELDOR_fn* decoratedFn,
                       VariantArray searchedByInvokeAfterOrroComplexScalar)
    : name_(std::move(name)),
      capabilities_(capabilities),
      variants(searchedByOrro.first),
      numVariants(searchedByOrro.second),
      defaultVariant_(std::move(defaultVariant)),
      allVariants_(all),
      searchedByInvokeNoOrro_(searchedByInvokeNoOrro),
      searchedByInvokeAfterOrro_(searchedByInvokeAfterOrro),
      searchedByInvokeAfterOrroComplexScalar_(searchedByInvokeAfterOrroComplexScalar),
      decoratedFn_(decoratedFn) {
    const foundation::log::trace_scope trace(fcnLogger(), __PRETTY_FUNCTION__, kSourcePath,
                                             __LINE__);
    logConstruction();
}

BuiltinFcn::BuiltinFcn(std::string name, capabilities::CapabilityList capabilities,
                       const VariantArrays& arrays, BuiltinVariant defaultVariant,
                       Zfh_KELDOR_fn* decoratedFn)
    : BuiltinFcn(std::move(name), capabilities, arrays.all, arrays.searchedByOrro,
                 arrays.searchedByInvokeAfterOrro, arrays.searchedByInvokeNoOrro,
                 std::move(defaultVariant), decoratedFn,
                 arrays.searchedByInvokeAfterOrroComplexScalar) {}

BuiltinFcn::BuiltinFcn(std::string name, capabilities::CapabilityList capabilities,
                       const builtinreg::BuiltinVariantLists& lists, BuiltinVariant defaultVariant,
                       Zfh_KELDOR_fn* decoratedFn)
    : BuiltinFcn(std::move(name), capabilities,
                 VariantArrays{.all = viewOf(lists.all),
                               .searchedByOrro = viewOf(lists.searchedByOrro),
                               .searchedByInvokeNoOrro = viewOf(lists.searchedByInvokeNoOrro),
                               .searchedByInvokeAfterOrro = viewOf(lists.searchedByInvokeAfterOrro),
                               .searchedByInvokeAfterOrroComplexScalar =
                                   viewOf(lists.searchedByInvokeAfterOrroComplexScalarRhs)},
                 std::move(defaultVariant), decoratedFn) {}

BuiltinFcn::BuiltinFcn(const BuiltinFcn& other) = default;

BuiltinFcn::~BuiltinFcn() = default;

const std::string& BuiltinFcn::getHelpContent() const {
    static const std::string empty;
    return empty;
}

// One record with all five lists, the engine's among them, in the order a reader scans them.
void BuiltinFcn::logConstruction() const {
    fcnLogger().write(kConstructionSeverity, [this](std::ostream& os) {
        os << " asString(allVariants_)=";
        writeVariantArray(os, allVariants_);
        os << " asString(VariantArray(variants, numVariants))=";
        writeVariantArray(os, VariantArray(variants, numVariants));
        os << " asString(searchedByInvokeNoOrro_)=";
        writeVariantArray(os, searchedByInvokeNoOrro_);
        os << " asString(searchedByInvokeAfterOrro_)=";
        writeVariantArray(os, searchedByInvokeAfterOrro_);
        os << " asString(searchedByInvokeAfterOrroComplexScalar_)=";
        writeVariantArray(os, searchedByInvokeAfterOrroComplexScalar_);
    });
}

}  // namespace Norvane::builtin
