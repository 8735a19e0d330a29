// The acceptance test of a variant against a live call, for callers inside the library. It is
// what BuiltinVariant::operator==(const VariantSignature&) does, reached without going through
// the exported symbol, so that the search of an interpreted call makes direct calls.
#pragma once

#include <builtin/variants/BuiltinVariant.hpp>
#include <builtin/variants/VariantSignature.hpp>

namespace Norvane::builtin::detail {

bool acceptsCall(const BuiltinVariant& variant, const VariantSignature& signature);

// The same for a variant whose input and output counts are known to fit the call.
bool acceptsArguments(const BuiltinVariant& variant, const VariantSignature& signature);

}  // namespace Norvane::builtin::detail
