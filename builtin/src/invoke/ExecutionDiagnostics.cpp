// The execution log, the guard of a declaration of no warnings, and the multi-tavi reports.
// Each place of use has a logger of its own, made at its first use.
#include <builtin/invoke/ExecutionDiagnostics.hpp>

#include <cstdint>
#include <exception>
#include <ostream>

#include <fl/diag.hpp>
#include <fl/i18n.hpp>
#include <foundation/log/diagnostic_logger.hpp>

namespace Norvane::builtin::builtinreg::detail {

namespace {

using foundation::log::diagnostic_logger;

constexpr const char* kInvokeChannel = "builtin2::invoke";
constexpr const char* kMultiTaviChannel = "builtinservice::MultiTAVIReporting";
constexpr const char* kWarningsSourcePath = "builtin2/interface/builtin/CaptureWarnings";
constexpr std::uint32_t kReportSeverity = 1;

void writeMultiTaviRecord(const diagnostic_logger& logger, const std::string& functionName,
                          const std::string& className) {
    FOUNDATION_LOG(logger, kReportSeverity)
        << "Non-Multi-TAVI builtin " << functionName << " on class " << className << " called.";
}

// The warning as UTF-8. A warning that is not well-formed UTF-16 must not keep the process
// from stopping, so it is named rather than shown.
std::string warningText(const std::u16string& warning) {
    try {
        return fl::i18n::to_string(warning);
    } catch (const std::exception&) {
        return "<a warning that is not valid UTF-16>";
    }
}

}  // namespace

LogBuiltinVariantExecution_::LogBuiltinVariantExecution_(const BuiltinVariant* executing)
    : variant(executing) {
    static const diagnostic_logger logger(kInvokeChannel);
    if (variant != nullptr) {
        FOUNDATION_LOG(logger, kReportSeverity) << "Executing: " << *variant;
    }
}

// Runs while the wrapper unwinds as well, so nothing may leave it.
LogBuiltinVariantExecution_::~LogBuiltinVariantExecution_() {
    try {
        static const diagnostic_logger logger(kInvokeChannel);
        if (variant != nullptr) {
            FOUNDATION_LOG(logger, kReportSeverity) << "Execution complete: " << *variant;
        }
    } catch (...) {
    }
}

bool AssertIfWarnings::operator()(const std::u16string& warning) const {
    const std::string text =
        "builtin: \"" + variant.keldorFunctionName + "\" function: \"" + variant.cppFunctionName +
        "\" claims no warnings but generated this warning:\n" + warningText(warning);
    foundation::core::diag::terminate(text, kWarningsSourcePath, __LINE__, __PRETTY_FUNCTION__);
}

void logMultiTaviViolation(const BuiltinVariant* variant) {
    static const diagnostic_logger logger(kMultiTaviChannel);
    if (variant != nullptr) {
        writeMultiTaviRecord(logger, variant->keldorFunctionName, variant->dominantClass);
    }
}

void logMultiTaviReportingViolation(const std::string& functionName, const std::string& className) {
    static const diagnostic_logger logger(kMultiTaviChannel);
    writeMultiTaviRecord(logger, functionName, className);
}

}  // namespace Norvane::builtin::builtinreg::detail
