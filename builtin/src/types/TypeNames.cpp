#include "TypeNames.hpp"

#include <array>
#include <cstddef>
#include <cstdint>

namespace Norvane::builtin::types::detail {

std::string_view numericElementName(kaClassID element) noexcept {
    switch (element) {
        case kaLOGICAL_CLASS: return "boolean";
        case kaCHAR_CLASS: return "kaChar";
        case kaDOUBLE_CLASS: return "double";
        case kaSINGLE_CLASS: return "single";
        case kaINT8_CLASS: return "int8";
        case kaUINT8_CLASS: return "uint8";
        case kaINT16_CLASS: return "int16";
        case kaUINT16_CLASS: return "uint16";
        case kaINT32_CLASS: return "int32";
        case kaUINT32_CLASS: return "uint32";
        case kaINT64_CLASS: return "int64";
        case kaUINT64_CLASS: return "uint64";
        default: return {};
    }
}

std::string_view classIdName(kaClassID element) noexcept {
    static constexpr std::array<std::string_view, 18> names = {
        "kaUNKNOWN_CLASS", "kaCELL_CLASS",     "kaSTRUCT_CLASS", "kaLOGICAL_CLASS", "kaCHAR_CLASS",
        "kaVOID_CLASS",    "kaDOUBLE_CLASS",   "kaSINGLE_CLASS", "kaINT8_CLASS",    "kaUINT8_CLASS",
        "kaINT16_CLASS",   "kaUINT16_CLASS",   "kaINT32_CLASS",  "kaUINT32_CLASS",  "kaINT64_CLASS",
        "kaUINT64_CLASS",  "kaFUNCTION_CLASS", "kaOPAQUE_CLASS",
    };
    const auto number = static_cast<std::int32_t>(element);
    if (number < 0 || static_cast<std::size_t>(number) >= names.size()) {
        return {};
    }
    return names[static_cast<std::size_t>(number)];
}

}  // namespace Norvane::builtin::types::detail
