// Interface ids: the name under which a service is registered and found. By default the
// demangled name of the interface type, computed once per process; an interface may declare
// its own with CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(Type, "id") at global scope. An
// empty id makes the interface unusable as a service (ServiceException on use).
#pragma once

#include <string>
#include <typeinfo>

#include <cppmicroservices/detail/TypeName.h>

namespace cppmicroservices {

template <class T>
struct ServiceInterfaceTraits {
    static std::string Id() { return detail::GetDemangledName(typeid(T)); }
};

template <class T>
const std::string& ServiceInterfaceId() {
    static const std::string id = ServiceInterfaceTraits<T>::Id();
    return id;
}

}  // namespace cppmicroservices

#define CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE(Interface, IId) \
    template <>                                                    \
    struct cppmicroservices::ServiceInterfaceTraits<Interface> {   \
        static std::string Id() { return IId; }                    \
    };
