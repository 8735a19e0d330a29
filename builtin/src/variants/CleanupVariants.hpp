// The cleanup of a builtin's variants before they are distributed into search lists.
#pragma once

#include <vector>

#include <builtin/variants/BuiltinVariant.hpp>

namespace Norvane::builtin::builtinreg::detail {

// Sorts, drops what cannot or need not be reached, lowers shadowed variants to NO_SUPPORT and
// drops the boxing variants among them; logs the variants after each stage. The result is
// shrunk to fit.
std::vector<BuiltinVariant> cleanupVariants(std::vector<BuiltinVariant>&& variants);

}  // namespace Norvane::builtin::builtinreg::detail
