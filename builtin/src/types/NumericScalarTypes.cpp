#include <builtin/types/NumericScalarTypes.hpp>

#include <ostream>

#include "TypeNames.hpp"

namespace Norvane::builtin::types {

std::size_t NumericScalarTypes::hash() const {
    return static_cast<std::size_t>(static_cast<std::int64_t>(element));
}

OrroSupportLevel NumericScalarTypes::getOrroSupportLevel(ArgTypeDirection) const {
    return complexity == Complexity::COMPLEX ? OrroSupportLevel::NO_SUPPORT
                                             : OrroSupportLevel::EQUIVALENT_SUPPORT;
}

std::string NumericScalarTypes::toString() const {
    // Only the floating classes have a complex name; a complex integer prints like a real one.
    if (complexity == Complexity::COMPLEX) {
        if (element == kaDOUBLE_CLASS) {
            return "complex_double";
        }
        if (element == kaSINGLE_CLASS) {
            return "complex_single";
        }
    }
    return std::string(detail::numericElementName(element));
}

std::ostream& operator<<(std::ostream& os, const NumericScalarTypes& type) {
    return os << type.toString();
}

}  // namespace Norvane::builtin::types
