// Readable names of C++ types, for interface ids and messages.
#pragma once

#include <string>
#include <typeinfo>

namespace cppmicroservices::detail {

// The demangled name of the type, e.g. "Norvane::builtin::StringSupport"; the raw mangled
// name if the demangler cannot read it.
std::string GetDemangledName(const std::type_info& type);

}  // namespace cppmicroservices::detail
