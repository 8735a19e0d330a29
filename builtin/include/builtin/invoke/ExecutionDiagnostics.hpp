// The log of what runs, the guard of a declaration of no warnings, and the reports of builtins
// that are not safe for several interpreter instances (tavis). They are for the code that wraps a
// developer's function in a module; nothing in this library calls them.
//
//   void wrapper(int nlhs, kaArray_tag** plhs, int nrhs, kaArray_tag** prhs,
//                OrroFunctionDescriptor* descriptor) {
//       const auto* variant = reinterpret_cast<const BuiltinVariant*>(descriptor);
//       const builtinreg::detail::LogBuiltinVariantExecution_ log(variant);
//       const builtinreg::CallsKeldorCheckAsserted guard(variant);  // CallsKeldorCheck.hpp
//       ... the developer's function, with AssertIfWarnings(*variant) as its warning handler
//           when the variant declares no warnings ...
//   }
//
// Records go to the channels "builtin2::invoke" and "builtinservice::MultiTAVIReporting" at
// severity 1; with that bit off in the channel's mask no text is built.
#pragma once

#include <string>

#include <builtin/config.hpp>
#include <builtin/variants/BuiltinVariant.hpp>

namespace Norvane::builtin::builtinreg::detail {

// Writes "Executing: " and the printed variant when made, "Execution complete: " and the same
// when destroyed. A null variant writes nothing.
struct BUILTIN_API LogBuiltinVariantExecution_ {
    const BuiltinVariant* variant;

    explicit LogBuiltinVariantExecution_(const BuiltinVariant* executing);
    ~LogBuiltinVariantExecution_();
};

// The warning handler of a function declared to raise no warnings: being called at all means
// the declaration is false, so it stops the process with the warning in its text. The result
// is never delivered.
struct BUILTIN_API AssertIfWarnings {
    const BuiltinVariant& variant;

    explicit AssertIfWarnings(const BuiltinVariant& declared) : variant(declared) {}
    bool operator()(const std::u16string& warning) const;
};

// A record that a builtin which is not safe for several tavis was called; nothing for null.
BUILTIN_API void logMultiTaviViolation(const BuiltinVariant* variant);

// The same record with the names given directly.
BUILTIN_API void logMultiTaviReportingViolation(const std::string& functionName,
                                                const std::string& className);

}  // namespace Norvane::builtin::builtinreg::detail
