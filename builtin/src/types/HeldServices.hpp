// The two services that classification and the converters ask, as copies of the process-wide
// holders, taken at first use so that the hot path reads a plain pointer. Either may be null
// for the whole process.
#pragma once

#include <memory>

#include <builtin/services/BuiltinServices.hpp>

namespace Norvane::builtin::types::detail {

inline const IZOBJRegWrapper* classProvider() {
    static const std::shared_ptr<IZOBJRegWrapper> held = getHeldService<IZOBJRegWrapper>();
    return held.get();
}

inline const StringSupport* stringSupport() {
    static const std::shared_ptr<StringSupport> held = getHeldService<StringSupport>();
    return held.get();
}

// The class provider where this process has to have one: an object cannot be read from an array
// or identified without it. Throws std::runtime_error naming what was attempted if it is absent.
const IZOBJRegWrapper& requireClassProvider(const char* attempted);

}  // namespace Norvane::builtin::types::detail
