// Builtin functions and invocation in one include.
#pragma once

#include <builtin/invoke/BuiltinFcn.hpp>
#include <builtin/invoke/CallsKeldorCheck.hpp>
#include <builtin/invoke/DefaultImplementationChecks.hpp>
#include <builtin/invoke/ExecutionDiagnostics.hpp>
