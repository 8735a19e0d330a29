#include <builtin/types/StringClassId.hpp>

#include <builtin/services/BuiltinServices.hpp>
#include <builtin/types/KeldorStringType.hpp>

namespace Norvane::builtin::types {

namespace detail {

std::optional<kaClassID> getKnownStringClassId() {
    static const std::optional<kaClassID> known = []() -> std::optional<kaClassID> {
        const auto& service = getHeldService<StringSupport>();
        if (!service) {
            return std::nullopt;
        }
        return service->getStringClassId();
    }();
    return known;
}

}  // namespace detail

kaClassID KeldorStringType::getZobjClassId() {
    // The holder is filled once per process, so an empty one stays empty; answering
    // kaUNKNOWN_CLASS without keeping it means a wrong id is never remembered. The kept id is
    // made only once the service is there to ask.
    const auto& service = getHeldService<StringSupport>();
    if (!service) {
        return kaUNKNOWN_CLASS;
    }
    static const kaClassID kept = service->getStringClassId();
    return kept;
}

}  // namespace Norvane::builtin::types
