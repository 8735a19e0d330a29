// Parameters and calling: unboxed values, function descriptors, calling conventions, the
// family of typed wrappers, and element-wise lifting with its parallel environment.
#pragma once

#include <builtin/calling/CallingConvention.hpp>
#include <builtin/calling/ElementWise.hpp>
#include <builtin/calling/InlineCWrappers.hpp>
#include <builtin/calling/OrroBuiltinEnvironment.hpp>
#include <builtin/calling/OrroFunctionDescriptor.hpp>
#include <builtin/calling/ParallelEnvironment.hpp>
#include <builtin/calling/Parameter.hpp>
