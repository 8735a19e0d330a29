// The process-wide record of the ids that getNextID gave, and the type each was made for.
// Internal to the store library.
#pragma once

#include <foundation/usm/store.hpp>

#include <string>
#include <typeinfo>

namespace foundation::usm::detail {

ID issueID(const std::type_info& type);
// The type `id` was made for, or null if no such id was given.
const std::type_info* typeOfID(ID id);

// A type's readable name for messages.
std::string typeName(const std::type_info& type);

}  // namespace foundation::usm::detail
