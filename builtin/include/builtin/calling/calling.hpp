// Parameters and calling: unboxed values, function descriptors, calling conventions and the
// family of typed wrappers.
#pragma once

#include <builtin/calling/CallingConvention.hpp>
#include <builtin/calling/InlineCWrappers.hpp>
#include <builtin/calling/OrroBuiltinEnvironment.hpp>
#include <builtin/calling/OrroFunctionDescriptor.hpp>
#include <builtin/calling/Parameter.hpp>
