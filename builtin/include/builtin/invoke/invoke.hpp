// Builtin functions and invocation in one include.
#pragma once

#include <builtin/invoke/BuiltinFcn.hpp>
