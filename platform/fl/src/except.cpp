#include <fl/except.hpp>

namespace foundation::core::except {

// Out of line so that the type information of the bases lives in this library only.
IException::~IException() = default;
IUserException::~IUserException() = default;
IMsgIDException::~IMsgIDException() = default;

std::string IMsgIDException::get_error_id(const MessageId& id) {
    return id.catalog + ":" + id.key;
}

}  // namespace foundation::core::except
