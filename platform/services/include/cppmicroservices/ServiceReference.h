// ServiceReference: a handle on a registered service, as lookups return it. It tells the
// service's properties and its bundle; the service object itself comes from ServiceObjects.
// A reference stays usable after the service is unregistered, but no longer yields the object.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <cppmicroservices/Any.h>
#include <cppmicroservices/ServiceProperties.h>

namespace cppmicroservices {

class Bundle;

namespace detail {
struct ServiceRegistrationData;
}

class ServiceReferenceBase {
public:
    ServiceReferenceBase() = default;
    // For the framework: a reference to a registration, as seen through one interface id.
    ServiceReferenceBase(std::shared_ptr<detail::ServiceRegistrationData> data,
                         std::string interfaceId)
        : d_(std::move(data)), interfaceId_(std::move(interfaceId)) {}

    // False for a default-constructed reference.
    explicit operator bool() const noexcept { return d_ != nullptr; }

    // The property under the key (case-insensitive); an empty Any if there is none.
    Any GetProperty(const std::string& key) const;
    std::vector<std::string> GetPropertyKeys() const;
    ServiceProperties GetProperties() const;
    // The bundle that registered the service; invalid once the service is unregistered.
    Bundle GetBundle() const;
    bool IsRegistered() const;
    const std::string& GetInterfaceId() const noexcept { return interfaceId_; }

    const std::shared_ptr<detail::ServiceRegistrationData>& Data() const noexcept { return d_; }

    friend bool operator==(const ServiceReferenceBase& a, const ServiceReferenceBase& b) noexcept {
        return a.d_ == b.d_;
    }

private:
    std::shared_ptr<detail::ServiceRegistrationData> d_;
    std::string interfaceId_;
};

using ServiceReferenceU = ServiceReferenceBase;

template <class S>
class ServiceReference : public ServiceReferenceBase {
public:
    ServiceReference() = default;
    explicit ServiceReference(ServiceReferenceBase base) : ServiceReferenceBase(std::move(base)) {}
};

}  // namespace cppmicroservices
