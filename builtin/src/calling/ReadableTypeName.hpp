// The readable form of a type for the texts of failed checks on Parameters. Internal.
#pragma once

#include <string>
#include <typeinfo>

namespace Norvane::builtin::detail {

// The demangled name, or the mangled one if it cannot be demangled.
std::string readableTypeName(const std::type_info& type);

}  // namespace Norvane::builtin::detail
