// Module-level utilities: the walk over upstream modules, paths under the installation root,
// and a way to keep a symbol from being dropped by the linker.
#pragma once

#include <functional>
#include <initializer_list>
#include <string>

#include <fl/filesystem.hpp>

#include <builtin/config.hpp>
#include <builtin/services/IBuiltinModule.hpp>

namespace Norvane::builtin::builtinreg {

using BuiltinPath =
    fl::filesystem::basic_path<wchar_t, char16_t,
                               fl::filesystem::detail::path_traits<wchar_t, char16_t>>;

// Calls `callback` with the IOrroObjectModuleMgr service of each module in `names`, in that
// order. Each name is looked up anew, so a name listed twice is called twice and a service
// registered late is seen; a name without a service is passed over. Does not start the
// builtin service bundles. An empty callback throws std::bad_function_call once a service is
// found; an exception from the callback ends the walk and passes to the caller.
BUILTIN_API void callUpstreamModules(const std::initializer_list<std::string>& names,
                                     const std::function<void(IOrroObjectModuleMgr*)>& callback);

// `relativePath` under the installation root, in native form. An empty `relativePath` gives
// the root itself. `relativePath` must not be null.
BUILTIN_API BuiltinPath getBuiltinLibraryPath(const char16_t* relativePath);

// Does nothing. A module passes it the address of something the linker is to keep.
BUILTIN_API void forcelink(const volatile void* address);

}  // namespace Norvane::builtin::builtinreg
