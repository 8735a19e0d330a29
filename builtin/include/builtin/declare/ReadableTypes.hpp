// Types as a person reads them: "double scalar", "int32 row vector", "double array, any shape",
// "string", "option word 'log'", "Counter object". The engine's type expressions
// (BuiltinVariant::inputTypes) say the same for the engine's type system, which parses them;
// these are for hosts and diagnostics that a module author or a user reads, such as the lint
// and kcall. Not for matching or for the engine: two different types may read alike (a
// declared row vector and a relaxed one, say).
#pragma once

#include <string>

#include <builtin/config.hpp>
#include <builtin/types/ArgType.hpp>

namespace Norvane::builtin::declare {

// An input that takes every array reads "any array"; an output of some array reads "array".
BUILTIN_API std::string readableType(
    const types::ArgType& type, types::ArgTypeDirection direction = types::ArgTypeDirection::INPUT);

}  // namespace Norvane::builtin::declare
