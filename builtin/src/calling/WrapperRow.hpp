// The wrapper family is stored as seventeen rows, one for each output index, each compiled in
// a translation unit of its own so that the family builds in parallel and no unit grows large.
// A row holds the wrappers of one output in table order: the one without inputs, the sixteen
// with one input, then the 256 with two.
#pragma once

#include <builtin/calling/InlineCWrappers.hpp>

#include <array>
#include <cstddef>

namespace Norvane::builtin::builtinreg::detail {

inline constexpr std::size_t outputIndexCount = parameterTypeCount + 1;
inline constexpr std::size_t oneInputOffset = 1;
inline constexpr std::size_t twoInputOffset = oneInputOffset + parameterTypeCount;
inline constexpr std::size_t wrapperRowSize =
    twoInputOffset + parameterTypeCount * parameterTypeCount;

using WrapperRow = std::array<Wrapper, wrapperRowSize>;

// Defined in WrapperRowDefinition.hpp and instantiated once per output index, each in the
// unit generated for it.
template <std::size_t Out>
const WrapperRow& wrapperRowFor();

}  // namespace Norvane::builtin::builtinreg::detail
