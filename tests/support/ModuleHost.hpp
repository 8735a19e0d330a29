// The module bundles of this build, started as a host starts them: the service framework first,
// from the build tree rather than from an installation that KELDOR_INSTALL_ROOT may name, then
// the module directory over the bundle folder. For tests, fuzz targets and stress runs that call
// the sample module's builtins through `invoke`.
#pragma once

#include <cstdlib>
#include <memory>

#include <builtin/declare/ModuleDirectory.hpp>
#include <foundation/cppmicroservices/framework.hpp>

namespace testsupport {

// The service framework of this build, with its reference bundles.
inline void startFramework() {
    unsetenv("KELDOR_INSTALL_ROOT");
    foundation::cppmicroservices::createFramework();
}

inline std::unique_ptr<Norvane::builtin::declare::ModuleDirectory> startModules() {
    startFramework();
    namespace declare = Norvane::builtin::declare;
    return std::make_unique<declare::ModuleDirectory>(
        declare::ModuleDirectory::start({declare::builtinServicesFolder()}));
}

}  // namespace testsupport
