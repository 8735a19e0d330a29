// The exception of service registration and lookup.
#pragma once

#include <stdexcept>
#include <string>

namespace cppmicroservices {

class ServiceException : public std::runtime_error {
public:
    enum Type {
        UNSPECIFIED,
        UNREGISTERED,
        FACTORY_ERROR,
        INVALID_INTERFACE,
    };

    explicit ServiceException(const std::string& message, Type type = UNSPECIFIED)
        : std::runtime_error(message), type_(type) {}

    Type GetType() const noexcept { return type_; }

private:
    Type type_;
};

namespace detail {
// The text of a lookup or registration of an interface whose id is empty.
inline constexpr const char* kNoInterfaceIdMessage =
    "The service interface class has no CPPMICROSERVICES_DECLARE_SERVICE_INTERFACE macro";
}  // namespace detail

}  // namespace cppmicroservices
