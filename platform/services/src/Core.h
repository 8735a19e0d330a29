// The framework's shared state behind the handles: the core (bundles and service registry),
// each bundle's record and context, and each service registration.
//
// Locks: CoreContext::mutex guards the two lists; ServiceRegistrationData::mutex guards one
// registration's properties and objects; BundlePrivate::lifecycleMutex serialises one
// bundle's start and stop. Taken in that order (lifecycle, core, registration) and never held
// while code of a bundle runs, except the lifecycle lock during its activator.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <cppmicroservices/AnyMap.h>
#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleActivator.h>
#include <cppmicroservices/BundleContext.h>

namespace cppmicroservices::detail {

struct CoreContext;

struct BundleContextData {
    explicit BundleContextData(std::weak_ptr<BundlePrivate> owner) : bundle(std::move(owner)) {}
    std::weak_ptr<BundlePrivate> bundle;
    std::atomic<bool> valid{true};
};

struct BundlePrivate {
    long id = 0;
    std::string location;
    std::string symbolicName;
    std::string libraryPath;  // empty for the system bundle
    AnyMap headers;
    std::weak_ptr<CoreContext> core;

    std::mutex lifecycleMutex;
    std::atomic<Bundle::State> state{Bundle::STATE_INSTALLED};

    mutable std::mutex contextMutex;
    std::shared_ptr<BundleContextData> context;  // set while starting, active or stopping

    void* library = nullptr;  // never closed: service objects may outlive the bundle
    BundleActivator* activator = nullptr;
    DestroyActivatorFn destroyActivator = nullptr;

    bool IsSystem() const noexcept { return id == 0; }
};

struct ServiceRegistrationData {
    long id = 0;
    int ranking = 0;
    std::weak_ptr<BundlePrivate> bundle;
    std::weak_ptr<CoreContext> core;

    mutable std::mutex mutex;
    bool registered = true;
    AnyMap properties;
    InterfaceMapConstPtr interfaces;
};

struct CoreContext {
    CoreContext();
    ~CoreContext();
    CoreContext(const CoreContext&) = delete;
    CoreContext& operator=(const CoreContext&) = delete;

    std::mutex mutex;
    std::vector<std::shared_ptr<BundlePrivate>> bundles;  // the system bundle first
    std::vector<std::shared_ptr<ServiceRegistrationData>> services;
    long nextBundleId = 1;
    long nextServiceId = 1;
};

// Starting and stopping, shared by Bundle and the framework's teardown.
void StartBundle(BundlePrivate& bundle, const std::shared_ptr<BundlePrivate>& self);
void StopBundle(CoreContext& core, BundlePrivate& bundle);
// Removes every service that the bundle registered.
void UnregisterServicesOf(CoreContext& core, const BundlePrivate& bundle);
// False if it was no longer registered.
bool UnregisterService(CoreContext* core, ServiceRegistrationData& registration);

// Case-insensitive key lookup, exact spelling first.
const Any* FindProperty(const AnyMap& properties, const std::string& key);

}  // namespace cppmicroservices::detail
