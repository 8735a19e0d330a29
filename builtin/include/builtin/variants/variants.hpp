// Variants in one include: the record of a typed implementation, the live call it meets, and the
// road from a declaration to the search lists.
#pragma once

#include <builtin/variants/ArgTypes.hpp>
#include <builtin/variants/BoxingVariants.hpp>
#include <builtin/variants/BuiltinVariant.hpp>
#include <builtin/variants/BuiltinVariantLists.hpp>
#include <builtin/variants/MakeVariant.hpp>
#include <builtin/variants/VariantAcceptance.hpp>
#include <builtin/variants/VariantSignature.hpp>
