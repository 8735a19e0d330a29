// Key functions of the two reporting interfaces, so that their tables and type information
// live once, in this library.
#include <builtin/calling/OrroBuiltinEnvironment.hpp>

namespace Norvane::orro {

IOrroBuiltinEnvironment::~IOrroBuiltinEnvironment() = default;
IOrroBuiltinAccessors::~IOrroBuiltinAccessors() = default;

}  // namespace Norvane::orro
