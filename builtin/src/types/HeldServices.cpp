// The one failure of a service that classification and conversion cannot do without.
#include "HeldServices.hpp"

#include <stdexcept>
#include <string>

namespace Norvane::builtin::types::detail {

const IZOBJRegWrapper& requireClassProvider(const char* attempted) {
    const IZOBJRegWrapper* provider = classProvider();
    if (provider == nullptr) {
        throw std::runtime_error(
            std::string("no class provider (IZOBJRegWrapper) is available to ") + attempted);
    }
    return *provider;
}

}  // namespace Norvane::builtin::types::detail
