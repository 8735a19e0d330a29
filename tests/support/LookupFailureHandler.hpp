// A hook for tests of the object runtime information: the library exports it, and only tests
// declare it, so that no installed header offers a way to change what lookups answer.
#pragma once

#include <builtin/config.hpp>
#include <builtin/objects/OrroObjectRuntimeInfo.hpp>

namespace Norvane::builtin::types::testhelp {

// Installs the handler that getOrroObjectRuntimeInfo asks for names the table does not hold,
// replacing the previous one; an empty handler removes it.
BUILTIN_API void handleOrroObjectLookupFailure(OrroObjectLookupFailureHandler handler);

}  // namespace Norvane::builtin::types::testhelp
