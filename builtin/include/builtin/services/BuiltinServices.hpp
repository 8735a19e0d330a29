// The way from this library to the services it does not hold: the once-only start of the
// builtin service bundles, one lookup of a service, and the process-wide holders that keep
// what was found.
//
// A holder is filled at its first access and never again: a service that was absent then stays
// absent for the process, even if it is registered later (callUpstreamModules looks anew each
// time instead). An exception during the start or the lookup leaves the holder unfilled, and the
// next access tries again. Filled holders are read without a lock.
//
// Do not reach a holder from code that runs inside the start, such as a bundle's activator: it
// would wait for the start that it is part of.
#pragma once

#include <memory>
#include <stdexcept>

#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/LDAPFilter.h>
#include <cppmicroservices/ServiceObjects.h>
#include <foundation/cppmicroservices/framework.hpp>

#include <builtin/config.hpp>
#include <builtin/services/IOrroObjectRegister.hpp>
#include <builtin/services/IZOBJRegWrapper.hpp>
#include <builtin/services/StringSupport.hpp>

namespace Norvane::builtin {

// Installs the builtin service bundles and starts those of this library, once per process.
// Later calls return at once; a call during the first one waits for it.
BUILTIN_API void ensureBuiltinServicesStarted();

// One lookup of a service of interface T: the first reference that the filter selects, or an
// empty pointer if there is no framework or no such service. Starts nothing.
template <class T>
std::shared_ptr<T> findService(const cppmicroservices::LDAPFilter& filter) {
    auto framework = foundation::cppmicroservices::getFramework();
    if (!framework) {
        return {};
    }
    auto context = framework->GetBundleContext();
    auto references = context.template GetServiceReferences<T>(filter.ToString());
    if (references.empty()) {
        return {};
    }
    if (!context) {
        throw std::runtime_error("The bundle context is no longer valid");
    }
    return context.GetServiceObjects(references.front()).GetService();
}

// The process-wide holder of the service T, filled at its first access. Every holder of the
// library's own interfaces lives in the library (specialisations below), so that modules
// and the library share it; other interfaces get a holder per shared object that uses it.
template <class T>
const std::shared_ptr<T>& getHeldService() {
    ensureBuiltinServicesStarted();
    static const std::shared_ptr<T> holder = findService<T>(cppmicroservices::LDAPFilter());
    return holder;
}

template <>
BUILTIN_API const std::shared_ptr<IZOBJRegWrapper>& getHeldService<IZOBJRegWrapper>();
template <>
BUILTIN_API const std::shared_ptr<IOrroObjectRegister>& getHeldService<IOrroObjectRegister>();
template <>
BUILTIN_API const std::shared_ptr<StringSupport>& getHeldService<StringSupport>();

}  // namespace Norvane::builtin
