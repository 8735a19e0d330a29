// ServiceObjects: the way from a ServiceReference to the service object. All callers share
// the one object that was registered.
#pragma once

#include <memory>

#include <cppmicroservices/ServiceReference.h>

namespace cppmicroservices {

class BundleContext;

namespace detail {
// The object registered under the reference's interface id; null once unregistered.
std::shared_ptr<void> GetServiceObject(const ServiceReferenceBase& reference);
}  // namespace detail

template <class S>
class ServiceObjects {
public:
    // Null if the service has been unregistered.
    std::shared_ptr<S> GetService() const {
        return std::static_pointer_cast<S>(detail::GetServiceObject(reference_));
    }
    ServiceReference<S> GetServiceReference() const { return reference_; }

private:
    friend class BundleContext;
    explicit ServiceObjects(ServiceReference<S> reference) : reference_(std::move(reference)) {}

    ServiceReference<S> reference_;
};

}  // namespace cppmicroservices
