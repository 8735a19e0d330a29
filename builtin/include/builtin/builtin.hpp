// The whole public interface of the builtin library in one include.
#pragma once

#include <builtin/config.hpp>
#include <builtin/calling/calling.hpp>
#include <builtin/services/services.hpp>
#include <builtin/types/types.hpp>
#include <builtin/variants/variants.hpp>
#include <builtin/invoke/invoke.hpp>
#include <builtin/objects/objects.hpp>
#include <builtin/calling/ParameterChecks.hpp>
#include <builtin/calling/ParameterConversion.hpp>
#include <builtin/types/StringTraits.hpp>
#include <builtin/types/ClassifyKaArray.hpp>
