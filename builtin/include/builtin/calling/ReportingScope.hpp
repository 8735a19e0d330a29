// Reports in one call. A native function normally reports through the environment its typed
// entry hands it, which takes three extra parameters, a null test and a catch block. A function
// declared to warn is instead called inside a ReportingScope, which makes that environment the
// current one of its thread, and it reports with one call:
//
//   if (x < 0) declare::warn(u"log of a negative number is NaN");
//
// Scopes nest (the inner one is current until it ends) and belong to one thread; a scope in a
// loop body on a worker thread is that worker's own.
#pragma once

#include <string_view>

#include <builtin/calling/OrroBuiltinEnvironment.hpp>
#include <builtin/config.hpp>

namespace Norvane::builtin::builtinreg::detail {

class BUILTIN_API ReportingScope {
public:
    // `environment` may be null: reports in the scope are then dropped.
    explicit ReportingScope(IOrroBuiltinEnvironment* environment) noexcept;
    ReportingScope(const ReportingScope&) = delete;
    ReportingScope& operator=(const ReportingScope&) = delete;
    ~ReportingScope();

    // Whether anything was reported in this scope.
    bool reported() const noexcept { return reported_; }

    // Passes a warning to the current scope's environment. Throws std::logic_error when the thread
    // has no current scope: the calling function was not declared to warn.
    static void warn(std::u16string_view text);
    // The same with UTF-8 text; std::invalid_argument for text that is not UTF-8.
    static void warn(std::string_view text);

private:
    IOrroBuiltinEnvironment* environment_;
    ReportingScope* previous_;
    bool reported_ = false;
};

// Inside a catch handler: the exception being handled goes to the environment as the call's
// error. Returns true, the pending flag of a function that reported, whether or not the
// environment could take it.
BUILTIN_API bool reportCurrentException(IOrroBuiltinEnvironment* environment) noexcept;

}  // namespace Norvane::builtin::builtinreg::detail
