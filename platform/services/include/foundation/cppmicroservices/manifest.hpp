// Reading bundle manifests: JSON text to AnyMap (see <cppmicroservices/AnyMap.h> for the
// mapping of JSON values).
#pragma once

#include <string>
#include <string_view>

#include <cppmicroservices/AnyMap.h>

namespace foundation::cppmicroservices {

// std::invalid_argument if the text is not JSON or not a JSON object.
::cppmicroservices::AnyMap parseManifest(std::string_view json);

// The manifest in the file; std::runtime_error if it cannot be read, std::invalid_argument
// as above.
::cppmicroservices::AnyMap readManifest(const std::string& path);

}  // namespace foundation::cppmicroservices
