// ServiceRegistration: what registering a service gives back; the owner uses it to change
// the service's properties or to unregister it. Dropping it does not unregister the service.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include <cppmicroservices/ServiceInterface.h>
#include <cppmicroservices/ServiceProperties.h>
#include <cppmicroservices/ServiceReference.h>

namespace cppmicroservices {

class ServiceRegistrationBase {
public:
    ServiceRegistrationBase() = default;
    explicit ServiceRegistrationBase(std::shared_ptr<detail::ServiceRegistrationData> data)
        : d_(std::move(data)) {}

    explicit operator bool() const noexcept { return d_ != nullptr; }

    // Removes the service from the registry; std::logic_error if it is no longer registered.
    void Unregister();
    // Replaces the caller's properties; the framework's own ones stay.
    void SetProperties(const ServiceProperties& properties);
    ServiceReferenceBase GetReference(const std::string& interfaceId) const;

protected:
    std::shared_ptr<detail::ServiceRegistrationData> d_;
};

using ServiceRegistrationU = ServiceRegistrationBase;

template <class I1, class... Is>
class ServiceRegistration : public ServiceRegistrationBase {
public:
    ServiceRegistration() = default;
    explicit ServiceRegistration(ServiceRegistrationBase base)
        : ServiceRegistrationBase(std::move(base)) {}

    using ServiceRegistrationBase::GetReference;
    ServiceReference<I1> GetReference() const {
        return ServiceReference<I1>(GetReference(ServiceInterfaceId<I1>()));
    }
};

}  // namespace cppmicroservices
