// BundleContext: a bundle's view of the framework, valid from the start of the bundle to its
// stop (the framework's own context: while the framework is active). Through it a bundle
// registers services, and anyone looks services up by interface and filter.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include <cppmicroservices/AnyMap.h>
#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/ServiceException.h>
#include <cppmicroservices/ServiceInterface.h>
#include <cppmicroservices/ServiceObjects.h>
#include <cppmicroservices/ServiceProperties.h>
#include <cppmicroservices/ServiceReference.h>
#include <cppmicroservices/ServiceRegistration.h>

namespace cppmicroservices {

namespace detail {
struct BundleContextData;
}

// Interface id to the object registered under it (a pointer to that interface, as void).
using InterfaceMap = std::map<std::string, std::shared_ptr<void>>;
using InterfaceMapConstPtr = std::shared_ptr<const InterfaceMap>;

class BundleContext {
public:
    BundleContext() = default;
    // For the framework.
    explicit BundleContext(std::shared_ptr<detail::BundleContextData> data) : d_(std::move(data)) {}

    // False once the bundle has stopped (or for a default-constructed context).
    explicit operator bool() const noexcept;

    // Every call below throws std::runtime_error "The bundle context is no longer valid" on
    // an invalid context.
    Bundle GetBundle() const;
    std::vector<Bundle> GetBundles() const;

    // Installs the bundle in the folder `location` with the given manifest, which must name
    // "bundle.symbolic_name" and "bundle.library" (the shared object, relative to the folder
    // or absolute) as strings; std::invalid_argument otherwise. A location installed before
    // gives the bundle installed then. Starts nothing.
    std::vector<Bundle> InstallBundles(const std::string& location, const AnyMap& manifest);

    // Registers `service` under the interfaces I1, Is...; it must derive from each.
    template <class I1, class... Is, class Impl>
    ServiceRegistration<I1, Is...> RegisterService(const std::shared_ptr<Impl>& service,
                                                   const ServiceProperties& properties = {}) {
        static_assert(
            (std::is_convertible_v<Impl*, I1*> && ... && std::is_convertible_v<Impl*, Is*>),
            "the service must implement every interface it is registered under");
        auto interfaces = std::make_shared<InterfaceMap>();
        AddInterface<I1>(*interfaces, service);
        (AddInterface<Is>(*interfaces, service), ...);
        return ServiceRegistration<I1, Is...>(RegisterService(interfaces, properties));
    }
    ServiceRegistrationU RegisterService(const InterfaceMapConstPtr& service,
                                         const ServiceProperties& properties = {});

    // The registered services of the interface that the filter text selects (all for an empty
    // text), highest "service.ranking" first, then the oldest. A bad filter text throws
    // std::invalid_argument.
    std::vector<ServiceReferenceU> GetServiceReferences(const std::string& interfaceId,
                                                        const std::string& filter = {}) const;

    // The same by interface type. ServiceException if the interface id is empty.
    template <class S>
    std::vector<ServiceReference<S>> GetServiceReferences(const std::string& filter = {}) const {
        std::vector<ServiceReference<S>> result;
        for (auto& reference : GetServiceReferences(CheckedInterfaceId<S>(), filter)) {
            result.emplace_back(std::move(reference));
        }
        return result;
    }

    // The first of GetServiceReferences<S>(), or an invalid reference.
    template <class S>
    ServiceReference<S> GetServiceReference() const {
        auto references = GetServiceReferences<S>();
        return references.empty() ? ServiceReference<S>() : references.front();
    }

    template <class S>
    ServiceObjects<S> GetServiceObjects(const ServiceReference<S>& reference) const {
        CheckValid();
        return ServiceObjects<S>(reference);
    }

    // The service object of the reference; null once it is unregistered.
    template <class S>
    std::shared_ptr<S> GetService(const ServiceReference<S>& reference) const {
        return GetServiceObjects(reference).GetService();
    }

private:
    template <class S>
    static const std::string& CheckedInterfaceId() {
        const std::string& id = ServiceInterfaceId<S>();
        if (id.empty()) {
            throw ServiceException(detail::kNoInterfaceIdMessage,
                                   ServiceException::INVALID_INTERFACE);
        }
        return id;
    }

    template <class I, class Impl>
    static void AddInterface(InterfaceMap& interfaces, const std::shared_ptr<Impl>& service) {
        interfaces[CheckedInterfaceId<I>()] =
            std::static_pointer_cast<void>(std::static_pointer_cast<I>(service));
    }

    void CheckValid() const;

    std::shared_ptr<detail::BundleContextData> d_;
};

}  // namespace cppmicroservices
