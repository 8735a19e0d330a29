// Out-of-line destructors, so that the exceptions have one home and are caught by type in
// every library that links the store.
#include <foundation/usm/errors.hpp>

namespace foundation::usm {

Error::~Error() = default;
TypeError::~TypeError() = default;
DoesNotExistTypeError::~DoesNotExistTypeError() = default;
AlreadyExistsError::~AlreadyExistsError() = default;

}  // namespace foundation::usm
