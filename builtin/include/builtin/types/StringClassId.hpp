// The class id of the language's string class as far as this process knows it. Read once per
// process from the StringSupport service at the first call; if the service is missing at that
// moment, no string class id is known for the rest of the process.
//
// This is the lenient reading, for the support levels of array types and for classification,
// which cope with a missing service. KeldorStringType::getZobjClassId is the reading for
// conversions of string types.
#pragma once

#include <optional>

#include <builtin/config.hpp>
#include <ka/ka.hpp>

namespace Norvane::builtin::types::detail {

// An exception of the service lookup leaves it unread, and the next call tries again.
BUILTIN_API std::optional<kaClassID> getKnownStringClassId();

}  // namespace Norvane::builtin::types::detail
