#include <builtin/types/KeldorStringType.hpp>

#include <ostream>

// getZobjClassId lives in StringClassId.cpp, beside the other reading of the string class id.

namespace Norvane::builtin::types {

bool KeldorStringType::operator<(const KeldorStringType& other) const {
    return shape == other.shape || shape == Shape::SCALAR;
}

std::size_t KeldorStringType::hash() const {
    std::size_t seed = 0;
    hash_combine(seed, shape);
    return seed;
}

bool KeldorStringType::isAcceptable(const KeldorStringType& other) const {
    return shape == other.shape || shape == Shape::ANY;
}

bool KeldorStringType::isCompatible(const KeldorStringType& other) const {
    return shape == other.shape || shape == Shape::SCALAR;
}

std::vector<KeldorStringType> KeldorStringType::getGreaterPrecedenceTypes() const {
    if (shape == Shape::ANY) {
        return {KeldorStringType(Shape::ANY)};
    }
    return {};
}

OrroSupportLevel KeldorStringType::getOrroSupportLevel(ArgTypeDirection direction) const {
    return direction == ArgTypeDirection::INPUT && shape == Shape::SCALAR
               ? OrroSupportLevel::NO_SUPPORT
               : OrroSupportLevel::EQUIVALENT_SUPPORT;
}

std::string KeldorStringType::toString(ArgTypeDirection direction, std::size_t index) const {
    if (direction == ArgTypeDirection::OUTPUT) {
        return "keldor_string<nil>";
    }
    if (shape == Shape::SCALAR) {
        return "scalar_keldor_string";
    }
    return "keldor_string<$flag_idx" + std::to_string(index) + ">";
}

std::ostream& KeldorStringType::operator<<(std::ostream& os) const {
    return os << toString(ArgTypeDirection::INPUT, 0);
}

std::ostream& operator<<(std::ostream& os, const KeldorStringType& type) {
    return type.operator<<(os);
}

}  // namespace Norvane::builtin::types
