// The family of 4641 ready-made typed entries: one for each native signature with at most two
// inputs whose types are alternatives of Parameter, and an output that is one too or none.
// A module picks its wrapper by the type indices of its signature at load time, so no module
// instantiates calling code of its own:
//
//   getExportedInlineCWrapperFcn(nullptr, parameterIndexOf<R>, parameterIndexOf<A0>,
//                                parameterIndexOf<A1>)
//
// with parameterIndexOf<void> (16) for a function without an output. The position in the table
// is the indices read as a number in base 16, output most significant; a position past the end
// gives null. Indices are not checked one by one: an input index above 15 lands on a
// neighbouring position, so pass valid indices.
#pragma once

#include <builtin/calling/OrroFunctionDescriptor.hpp>
#include <builtin/config.hpp>

#include <cstddef>

namespace Norvane::builtin::builtinreg::detail {

using Wrapper = TypedEntry;

// Positions 0 to 16.
BUILTIN_API Wrapper getExportedInlineCWrapperFcn(const ParameterTypes* tag, std::size_t out);
// Positions 0 to 271: out * 16 + in0.
BUILTIN_API Wrapper getExportedInlineCWrapperFcn(const ParameterTypes* tag, std::size_t out,
                                                 std::size_t in0);
// Positions 0 to 4351: out * 256 + in0 * 16 + in1.
BUILTIN_API Wrapper getExportedInlineCWrapperFcn(const ParameterTypes* tag, std::size_t out,
                                                 std::size_t in0, std::size_t in1);

}  // namespace Norvane::builtin::builtinreg::detail
