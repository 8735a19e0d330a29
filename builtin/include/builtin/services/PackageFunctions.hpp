// Announcing a builtin of a package of the language to the class system, under its package
// path. Forgiving like the registration of object types: without the class provider it leaves a
// log record on "builtinservice::registerpkgfcn" (severity 256), one per call, and the function
// stays unregistered.
#pragma once

#include <string>
#include <vector>

#include <engine/opaque.hpp>

#include <builtin/config.hpp>

namespace Norvane::builtin::builtinreg {

// `packagePath` names the packages from the outermost inward. The function is passed to the
// provider unchanged; who owns it afterwards is the provider's contract. May start the builtin
// service bundles; an exception from the provider passes through.
BUILTIN_API void registerPackageFunctionHelper(const std::vector<std::string>& packagePath,
                                               const std::string& functionName,
                                               Zfh_KELDOR_fn* function);

}  // namespace Norvane::builtin::builtinreg
