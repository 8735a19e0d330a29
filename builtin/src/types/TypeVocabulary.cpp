#include <builtin/types/TypeVocabulary.hpp>

#include <ostream>
#include <stdexcept>

namespace Norvane::builtin::types {

OrroSupportLevel combine(OrroSupportLevel level1, OrroSupportLevel level2) {
    switch (level1) {
        case OrroSupportLevel::EQUIVALENT_SUPPORT: return level2;
        case OrroSupportLevel::ORRO_ONLY:
            if (level2 == OrroSupportLevel::NO_SUPPORT_SCALAR_COMPLEX ||
                level2 == OrroSupportLevel::NO_SUPPORT) {
                return level2;
            }
            return OrroSupportLevel::ORRO_ONLY;
        case OrroSupportLevel::NO_SUPPORT_SCALAR_COMPLEX:
            return level2 == OrroSupportLevel::NO_SUPPORT
                       ? OrroSupportLevel::NO_SUPPORT
                       : OrroSupportLevel::NO_SUPPORT_SCALAR_COMPLEX;
        case OrroSupportLevel::NO_SUPPORT: return OrroSupportLevel::NO_SUPPORT;
    }
    throw std::invalid_argument("level1 is not a valid OrroSupportLevel");
}

std::ostream& operator<<(std::ostream& os, OrroSupportLevel level) {
    switch (level) {
        case OrroSupportLevel::EQUIVALENT_SUPPORT:
            return os << "OrroSupportLevel::EQUIVALENT_SUPPORT\n";
        case OrroSupportLevel::ORRO_ONLY: return os << "OrroSupportLevel::ORRO_ONLY\n";
        case OrroSupportLevel::NO_SUPPORT_SCALAR_COMPLEX:
            return os << "OrroSupportLevel::NO_SUPPORT_SCALAR_COMPLEX\n";
        case OrroSupportLevel::NO_SUPPORT: return os << "OrroSupportLevel::NO_SUPPORT\n";
    }
    return os;
}

}  // namespace Norvane::builtin::types
