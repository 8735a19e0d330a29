#include <cppmicroservices/Any.h>
#include <cppmicroservices/AnyMap.h>
#include <cppmicroservices/detail/TypeName.h>

#include <cxxabi.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace cppmicroservices {

namespace detail {

std::string GetDemangledName(const std::type_info& type) {
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> name(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), std::free);
    return status == 0 && name ? std::string(name.get()) : std::string(type.name());
}

void ThrowBadAnyCast(const Any& held, const std::type_info& requested) {
    const std::string from = held.Empty() ? std::string("an empty Any") : held.TypeName();
    throw BadAnyCastException("Bad any_cast: cannot cast from " + from + " to " +
                              GetDemangledName(requested));
}

}  // namespace detail

Any& AnyMap::at(const key_type& key) {
    auto found = map_.find(key);
    if (found == map_.end()) {
        throw std::out_of_range("AnyMap has no key \"" + key + "\"");
    }
    return found->second;
}

const Any& AnyMap::at(const key_type& key) const {
    return const_cast<AnyMap*>(this)->at(key);
}

std::ostream& operator<<(std::ostream& os, const AnyMap& map) {
    os << '{';
    const char* separator = "";
    for (const auto& [key, value] : map) {
        os << separator << key << " : " << value.ToString();
        separator = ", ";
    }
    return os << '}';
}

}  // namespace cppmicroservices
