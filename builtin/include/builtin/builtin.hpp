// The whole public interface of the builtin library in one include.
#pragma once

#include <builtin/config.hpp>
#include <builtin/calling/calling.hpp>
#include <builtin/services/services.hpp>
#include <builtin/types/types.hpp>
