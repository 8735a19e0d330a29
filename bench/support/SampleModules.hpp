// The module bundles of this build, started once for a benchmark program as a host starts them:
// the framework from the build tree, then the module directory over the bundle folder. Call it
// before the first benchmark: the first call of a builtin fills the service holders for good.
#pragma once

#include <cstdlib>

#include <builtin/declare/ModuleDirectory.hpp>
#include <foundation/cppmicroservices/framework.hpp>

namespace benchsupport {

inline const Norvane::builtin::declare::ModuleDirectory& sampleModules() {
    namespace declare = Norvane::builtin::declare;
    static const declare::ModuleDirectory directory = [] {
        unsetenv("KELDOR_INSTALL_ROOT");
        foundation::cppmicroservices::createFramework();
        return declare::ModuleDirectory::start({declare::builtinServicesFolder()});
    }();
    return directory;
}

}  // namespace benchsupport
