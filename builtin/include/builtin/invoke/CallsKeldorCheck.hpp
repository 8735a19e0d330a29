// The guard of a declaration that a native function never calls back into the interpreter.
//
// Each tavi keeps a stack of the variants that run in it: the wrapper of a developer's function
// opens a CallsKeldorCheckAsserted for its variant, and every place where native code enters
// the interpreter calls nvDoesNotCallKELDORAssertion, which stops the process if the innermost
// running variant declared that it calls nothing. Only the innermost counts, so a variant that
// may call back may be run from one that may not.
//
// The stack lives in the tavi's store, made by the first variant that runs there. Scopes must
// end in the reverse order of their making, as scope objects on one thread do; a copy of a
// scope that pushed pops again when it ends, so keep the scope where it was made.
#pragma once

#include <builtin/config.hpp>
#include <builtin/variants/BuiltinVariant.hpp>

namespace Norvane::builtin {

namespace builtinreg {

// Puts the variant on the stack of the current tavi for the life of the scope. If the tavi's
// store holds something else where the stack belongs, the guard is off for this scope and
// `pushed` stays false. Other errors of the store leave the constructor.
struct BUILTIN_API CallsKeldorCheckAsserted {
    bool pushed;

    explicit CallsKeldorCheckAsserted(const BuiltinVariant* variant);
    ~CallsKeldorCheckAsserted();
};

}  // namespace builtinreg

// Stops the process if the innermost running variant of the current tavi declares that it
// does not call into the interpreter (unless fl_diag_terminate() answers false). Returns at
// once in a tavi where no variant runs, and creates nothing there.
BUILTIN_API void nvDoesNotCallKELDORAssertion();

}  // namespace Norvane::builtin
