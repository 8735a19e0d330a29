// The type language in one include: ArgType, its seven alternatives and the shared vocabulary.
#pragma once

#include <builtin/types/ArgType.hpp>
#include <builtin/types/FlagInputType.hpp>
#include <builtin/types/KaArrayTypes.hpp>
#include <builtin/types/KeldorStringType.hpp>
#include <builtin/types/NativeArgTypes.hpp>
#include <builtin/types/NumericScalarTypes.hpp>
#include <builtin/types/OrroObjectTypes.hpp>
#include <builtin/types/StringClassId.hpp>
#include <builtin/types/TypeVocabulary.hpp>
#include <builtin/types/UnsupportedArgType.hpp>
