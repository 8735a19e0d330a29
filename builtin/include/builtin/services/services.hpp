// Everything of the services subsystem: service interfaces, holders, module interfaces, module
// utilities and package functions.
#pragma once

#include <builtin/services/BuiltinServices.hpp>
#include <builtin/services/IBuiltinModule.hpp>
#include <builtin/services/IOrroObjectRegister.hpp>
#include <builtin/services/IZOBJRegWrapper.hpp>
#include <builtin/services/ModuleUtilities.hpp>
#include <builtin/services/PackageFunctions.hpp>
#include <builtin/services/StringSupport.hpp>
