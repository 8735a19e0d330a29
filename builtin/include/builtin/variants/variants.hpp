// Variants in one include: the record of a typed implementation and the live call it meets.
#pragma once

#include <builtin/variants/BuiltinVariant.hpp>
#include <builtin/variants/VariantSignature.hpp>
