// Declaring builtins from native functions, and modules of them, in one include.
#pragma once

#include <builtin/declare/Arithmetic.hpp>
#include <builtin/declare/Arrays.hpp>
#include <builtin/declare/Builtin.hpp>
#include <builtin/declare/Lint.hpp>
#include <builtin/declare/Module.hpp>
#include <builtin/declare/ModuleDirectory.hpp>
#include <builtin/declare/Objects.hpp>
#include <builtin/declare/Options.hpp>
#include <builtin/declare/Parameters.hpp>
#include <builtin/declare/Reports.hpp>
#include <builtin/declare/Signature.hpp>
