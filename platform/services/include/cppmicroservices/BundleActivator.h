// The entry of a bundle's shared object. A bundle defines one class derived from
// BundleActivator and names it once, at namespace scope, with
//   CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR(MyActivator)
// Start registers the bundle's services through the context; an exception from it fails the
// start. Stop may run at process exit: it must not rely on the bundle's own static objects.
#pragma once

#include <cppmicroservices/BundleContext.h>

namespace cppmicroservices {

class BundleActivator {
public:
    virtual ~BundleActivator() = default;
    virtual void Start(BundleContext context) = 0;
    virtual void Stop(BundleContext context) = 0;
};

namespace detail {
inline constexpr const char* kCreateActivatorSymbol = "cppmicroservices_create_bundle_activator";
inline constexpr const char* kDestroyActivatorSymbol = "cppmicroservices_destroy_bundle_activator";
using CreateActivatorFn = BundleActivator* (*)();
using DestroyActivatorFn = void (*)(BundleActivator*);
}  // namespace detail

}  // namespace cppmicroservices

#define CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR(Type)                                          \
    extern "C" __attribute__((visibility("default"))) ::cppmicroservices::BundleActivator*      \
    cppmicroservices_create_bundle_activator() {                                                \
        return new Type();                                                                      \
    }                                                                                           \
    extern "C" __attribute__((visibility("default"))) void                                      \
    cppmicroservices_destroy_bundle_activator(::cppmicroservices::BundleActivator* activator) { \
        delete activator;                                                                       \
    }
