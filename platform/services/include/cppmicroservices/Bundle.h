// Bundle: a handle on an installed bundle: a folder whose manifest names a shared object with
// a bundle activator (see BundleActivator.h). Starting loads the shared object and calls the
// activator's Start with the bundle's own context; stopping calls Stop and unregisters the
// bundle's services. A shared object, once loaded, stays loaded for the process: service
// objects handed out may still be in use.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <cppmicroservices/AnyMap.h>

namespace cppmicroservices {

class BundleContext;

namespace detail {
struct BundlePrivate;
}

class Bundle {
public:
    enum State : std::uint32_t {
        STATE_UNINSTALLED = 0x01,
        STATE_INSTALLED = 0x02,
        STATE_RESOLVED = 0x04,
        STATE_STARTING = 0x08,
        STATE_STOPPING = 0x10,
        STATE_ACTIVE = 0x20,
    };

    Bundle() = default;
    // For the framework.
    explicit Bundle(std::shared_ptr<detail::BundlePrivate> data) : d_(std::move(data)) {}

    explicit operator bool() const noexcept { return d_ != nullptr; }

    State GetState() const;
    // Valid while the bundle is starting, active or stopping.
    BundleContext GetBundleContext() const;
    long GetBundleId() const;
    // The bundle's folder.
    std::string GetLocation() const;
    std::string GetSymbolicName() const;
    // The manifest, as read at installation.
    const AnyMap& GetHeaders() const;

    // Does nothing if the bundle is active. Throws std::runtime_error naming the bundle's
    // location if the shared object cannot be loaded, has no activator, or the activator's
    // Start throws; the bundle is then left resolved, with no service of its own registered.
    void Start();
    // Does nothing unless the bundle is active. An exception from the activator's Stop passes
    // to the caller after the bundle has stopped.
    void Stop();

    friend bool operator==(const Bundle& a, const Bundle& b) noexcept { return a.d_ == b.d_; }

protected:
    std::shared_ptr<detail::BundlePrivate> d_;
};

}  // namespace cppmicroservices
