#pragma once

#include <cstddef>
#include <string>

#include <builtin/variants/MakeVariant.hpp>

namespace Norvane::builtin::declare::detail {

// Throws std::invalid_argument, naming the builtin and the flag, for a flag whose position lies
// beyond the input list that the flags before it make, or that another flag has already taken.
// The flags must be sorted by position.
void checkFlags(const std::string& name, std::size_t inputs,
                const builtinreg::detail::FlagList& sortedFlags);

}  // namespace Norvane::builtin::declare::detail
