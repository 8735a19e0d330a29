// Everything of the engine objects subsystem: runtime information from manifests, identity,
// registration with the engine, and objects as arrays.
#pragma once

#include <builtin/objects/OrroObjectArrays.hpp>
#include <builtin/objects/OrroObjectIdentity.hpp>
#include <builtin/objects/OrroObjectRegistration.hpp>
#include <builtin/objects/OrroObjectRuntimeInfo.hpp>
