// The current reporting scope of each thread.
#include <builtin/calling/ReportingScope.hpp>

#include <stdexcept>
#include <string>

#include <fl/i18n.hpp>

namespace Norvane::builtin::builtinreg::detail {

namespace {

thread_local ReportingScope* current = nullptr;

IOrroBuiltinAccessors* accessorsOf(IOrroBuiltinEnvironment* environment) {
    return environment != nullptr ? environment->GetOrroBuiltinAccessors() : nullptr;
}

}  // namespace

ReportingScope::ReportingScope(IOrroBuiltinEnvironment* environment) noexcept
    : environment_(environment), previous_(current) {
    current = this;
}

ReportingScope::~ReportingScope() {
    current = previous_;
}

void ReportingScope::warn(std::u16string_view text) {
    ReportingScope* const scope = current;
    if (scope == nullptr) {
        throw std::logic_error(
            "warn: the calling function is not declared to warn (declare it with `warns`)");
    }
    scope->reported_ = true;
    if (IOrroBuiltinAccessors* const accessors = accessorsOf(scope->environment_)) {
        accessors->AddWarningMessage(std::u16string(text));
    }
}

void ReportingScope::warn(std::string_view text) {
    warn(std::u16string_view(fl::i18n::utf8_to_ustring(std::string(text))));
}

bool reportCurrentException(IOrroBuiltinEnvironment* environment) noexcept {
    try {
        if (IOrroBuiltinAccessors* const accessors = accessorsOf(environment)) {
            accessors->SetInternalPendingException();
        }
    } catch (...) {
        // The environment could not take it; the flag still says that the call failed.
    }
    return true;
}

}  // namespace Norvane::builtin::builtinreg::detail
