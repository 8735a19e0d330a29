// The type that no native parameter can take. It is the first alternative of ArgType, so a
// default-constructed ArgType holds it. All its values are equal and none is less than another.
#pragma once

#include <vector>

#include <builtin/config.hpp>
#include <builtin/types/TypeVocabulary.hpp>

namespace Norvane::builtin::types {

struct BUILTIN_API UnsupportedArgType {
    static std::vector<UnsupportedArgType> getGreaterPrecedenceTypes() { return {}; }
    static OrroSupportLevel getOrroSupportLevel(ArgTypeDirection) {
        return OrroSupportLevel::NO_SUPPORT;
    }

    // All six relations, so that every relation of ArgType is defined.
    friend constexpr bool operator==(const UnsupportedArgType&, const UnsupportedArgType&) {
        return true;
    }
    friend constexpr bool operator<(const UnsupportedArgType&, const UnsupportedArgType&) {
        return false;
    }
    friend constexpr bool operator>(const UnsupportedArgType&, const UnsupportedArgType&) {
        return false;
    }
    friend constexpr bool operator<=(const UnsupportedArgType&, const UnsupportedArgType&) {
        return true;
    }
    friend constexpr bool operator>=(const UnsupportedArgType&, const UnsupportedArgType&) {
        return true;
    }
};

}  // namespace Norvane::builtin::types
