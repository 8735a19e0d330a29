// Export control for the builtin shared library. The library is built with hidden
// visibility, so everything a module, the interpreter or the engine calls carries BUILTIN_API.
#pragma once

#define BUILTIN_API __attribute__((visibility("default")))
