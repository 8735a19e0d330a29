// The properties of a registered service. The framework adds "objectclass" (the interface
// ids, a std::vector<std::string>), "service.id" (long) and "service.scope"; a caller may give
// "service.ranking" (int, default 0): lookups list higher rankings first, then older services.
#pragma once

#include <cppmicroservices/AnyMap.h>

namespace cppmicroservices {

using ServiceProperties = AnyMap;

namespace Constants {
inline constexpr const char* OBJECTCLASS = "objectclass";
inline constexpr const char* SERVICE_ID = "service.id";
inline constexpr const char* SERVICE_RANKING = "service.ranking";
inline constexpr const char* SERVICE_SCOPE = "service.scope";
inline constexpr const char* SCOPE_SINGLETON = "singleton";
inline constexpr const char* BUNDLE_SYMBOLICNAME = "bundle.symbolic_name";
}  // namespace Constants

}  // namespace cppmicroservices
