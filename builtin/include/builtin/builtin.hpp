// The whole public interface of the builtin library in one include.
#pragma once

#include <builtin/calling/ParameterChecks.hpp>
#include <builtin/calling/ParameterConversion.hpp>
#include <builtin/calling/calling.hpp>
#include <builtin/config.hpp>
#include <builtin/invoke/invoke.hpp>
#include <builtin/objects/objects.hpp>
#include <builtin/services/services.hpp>
#include <builtin/types/ClassifyKaArray.hpp>
#include <builtin/types/StringTraits.hpp>
#include <builtin/types/types.hpp>
#include <builtin/variants/variants.hpp>
