// The service registry: registration, lookup and removal of services, and what references
// and registrations read of them.
#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/LDAPFilter.h>
#include <cppmicroservices/ServiceObjects.h>
#include <cppmicroservices/ServiceReference.h>
#include <cppmicroservices/ServiceRegistration.h>

#include <algorithm>
#include <stdexcept>

#include "Core.h"

namespace cppmicroservices {

namespace detail {

namespace {

void SetFrameworkProperties(ServiceRegistrationData& registration, AnyMap& properties) {
    std::vector<std::string> interfaceIds;
    for (const auto& entry : *registration.interfaces) {
        interfaceIds.push_back(entry.first);
    }
    properties[Constants::OBJECTCLASS] = std::move(interfaceIds);
    properties[Constants::SERVICE_ID] = registration.id;
    properties[Constants::SERVICE_SCOPE] = std::string(Constants::SCOPE_SINGLETON);
}

int RankingOf(const AnyMap& properties) {
    const Any* ranking = FindProperty(properties, Constants::SERVICE_RANKING);
    if (ranking == nullptr) {
        return 0;
    }
    if (const int* value = any_cast<int>(ranking)) {
        return *value;
    }
    throw std::invalid_argument("The property service.ranking must be an int, not " +
                                ranking->TypeName());
}

}  // namespace

std::shared_ptr<void> GetServiceObject(const ServiceReferenceBase& reference) {
    const auto& data = reference.Data();
    if (!data) {
        return nullptr;
    }
    std::lock_guard lock(data->mutex);
    if (!data->registered) {
        return nullptr;
    }
    auto found = data->interfaces->find(reference.GetInterfaceId());
    return found == data->interfaces->end() ? nullptr : found->second;
}

bool UnregisterService(CoreContext* core, ServiceRegistrationData& registration) {
    if (core != nullptr) {
        std::lock_guard lock(core->mutex);
        std::erase_if(core->services,
                      [&](const auto& entry) { return entry.get() == &registration; });
    }
    InterfaceMapConstPtr objects;  // released after the lock: their destructors are bundle code
    std::lock_guard lock(registration.mutex);
    const bool wasRegistered = registration.registered;
    registration.registered = false;
    objects.swap(registration.interfaces);
    registration.interfaces = std::make_shared<const InterfaceMap>();
    return wasRegistered;
}

void UnregisterServicesOf(CoreContext& core, const BundlePrivate& bundle) {
    std::vector<std::shared_ptr<ServiceRegistrationData>> owned;
    {
        std::lock_guard lock(core.mutex);
        for (const auto& registration : core.services) {
            if (registration->bundle.lock().get() == &bundle) {
                owned.push_back(registration);
            }
        }
    }
    for (const auto& registration : owned) {
        UnregisterService(&core, *registration);
    }
}

}  // namespace detail

ServiceRegistrationU BundleContext::RegisterService(const InterfaceMapConstPtr& service,
                                                    const ServiceProperties& properties) {
    CheckValid();
    if (!service || service->empty()) {
        throw ServiceException("A service must be registered under at least one interface");
    }
    for (const auto& [id, object] : *service) {
        if (id.empty()) {
            throw ServiceException(detail::kNoInterfaceIdMessage,
                                   ServiceException::INVALID_INTERFACE);
        }
        if (!object) {
            throw ServiceException("The service object for " + id + " is null");
        }
    }
    auto bundle = d_->bundle.lock();
    auto core = bundle ? bundle->core.lock() : nullptr;
    if (!core) {
        throw std::runtime_error("The bundle context is no longer valid");
    }
    auto registration = std::make_shared<detail::ServiceRegistrationData>();
    registration->bundle = bundle;
    registration->core = core;
    registration->interfaces = service;
    registration->properties = properties;
    registration->ranking = detail::RankingOf(properties);
    {
        std::lock_guard lock(core->mutex);
        registration->id = core->nextServiceId++;
        detail::SetFrameworkProperties(*registration, registration->properties);
        core->services.push_back(registration);
    }
    return ServiceRegistrationU(registration);
}

std::vector<ServiceReferenceU> BundleContext::GetServiceReferences(
    const std::string& interfaceId, const std::string& filter) const {
    CheckValid();
    const LDAPFilter selection = filter.empty() ? LDAPFilter() : LDAPFilter(filter);
    auto bundle = d_->bundle.lock();
    auto core = bundle ? bundle->core.lock() : nullptr;
    if (!core) {
        throw std::runtime_error("The bundle context is no longer valid");
    }
    struct Found {
        int ranking;
        long id;
        std::shared_ptr<detail::ServiceRegistrationData> registration;
    };
    std::vector<Found> found;
    {
        std::lock_guard lock(core->mutex);
        for (const auto& registration : core->services) {
            std::lock_guard registrationLock(registration->mutex);
            if (registration->interfaces->contains(interfaceId) &&
                selection.Match(registration->properties)) {
                found.push_back({registration->ranking, registration->id, registration});
            }
        }
    }
    // Higher ranking first, then the older (lower id).
    std::sort(found.begin(), found.end(), [](const Found& a, const Found& b) {
        return a.ranking != b.ranking ? a.ranking > b.ranking : a.id < b.id;
    });
    std::vector<ServiceReferenceU> references;
    references.reserve(found.size());
    for (auto& entry : found) {
        references.emplace_back(std::move(entry.registration), interfaceId);
    }
    return references;
}

Any ServiceReferenceBase::GetProperty(const std::string& key) const {
    if (!d_) return {};
    std::lock_guard lock(d_->mutex);
    const Any* value = detail::FindProperty(d_->properties, key);
    return value != nullptr ? *value : Any();
}

std::vector<std::string> ServiceReferenceBase::GetPropertyKeys() const {
    std::vector<std::string> keys;
    if (!d_) return keys;
    std::lock_guard lock(d_->mutex);
    for (const auto& entry : d_->properties) {
        keys.push_back(entry.first);
    }
    return keys;
}

ServiceProperties ServiceReferenceBase::GetProperties() const {
    if (!d_) return {};
    std::lock_guard lock(d_->mutex);
    return d_->properties;
}

Bundle ServiceReferenceBase::GetBundle() const {
    if (!d_) return {};
    std::lock_guard lock(d_->mutex);
    return d_->registered ? Bundle(d_->bundle.lock()) : Bundle();
}

bool ServiceReferenceBase::IsRegistered() const {
    if (!d_) return false;
    std::lock_guard lock(d_->mutex);
    return d_->registered;
}

void ServiceRegistrationBase::Unregister() {
    auto core = d_ ? d_->core.lock() : nullptr;
    if (!d_ || !detail::UnregisterService(core.get(), *d_)) {
        throw std::logic_error("The service is no longer registered");
    }
}

void ServiceRegistrationBase::SetProperties(const ServiceProperties& properties) {
    if (!d_) {
        throw std::logic_error("The service is no longer registered");
    }
    const int ranking = detail::RankingOf(properties);
    std::lock_guard lock(d_->mutex);
    if (!d_->registered) {
        throw std::logic_error("The service is no longer registered");
    }
    d_->properties = properties;
    d_->ranking = ranking;
    detail::SetFrameworkProperties(*d_, d_->properties);
}

ServiceReferenceBase ServiceRegistrationBase::GetReference(const std::string& interfaceId) const {
    if (!d_) {
        throw std::logic_error("The service is no longer registered");
    }
    return ServiceReferenceBase(d_, interfaceId);
}

}  // namespace cppmicroservices
