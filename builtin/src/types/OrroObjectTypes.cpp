#include <builtin/types/OrroObjectTypes.hpp>

#include <cstdint>
#include <ostream>

namespace Norvane::builtin::types {

namespace {

// The rules shared by both object types, on the identifying pair alone.
struct ObjectId {
    kaClassID classId;
    std::size_t variantId;
};

bool isOpenClass(kaClassID classId) {
    return classId == kaUNKNOWN_CLASS;
}
bool isOpenVariant(std::size_t variantId) {
    return variantId == SIZE_MAX;
}

bool equalIds(ObjectId a, ObjectId b) {
    if (a.classId != b.classId && !isOpenClass(a.classId) && !isOpenClass(b.classId)) {
        return false;
    }
    return a.variantId == b.variantId || isOpenVariant(a.variantId) || isOpenVariant(b.variantId);
}

// An open class id is less than any other and any other is less than it: only unequal pairs
// meet here in the sort of variants, and for those the order is consistent.
bool lessIds(ObjectId a, ObjectId b) {
    if (a.classId == b.classId) {
        return a.variantId < b.variantId;
    }
    return static_cast<std::int32_t>(a.classId) < static_cast<std::int32_t>(b.classId) ||
           isOpenClass(b.classId);
}

std::size_t hashIds(ObjectId id) {
    std::size_t seed = 0;
    hash_combine(seed, id.classId);
    hash_combine(seed, id.variantId);
    return seed;
}

// "<class>,<variant>" with type variables for the open parts.
std::string classAndVariant(ObjectId id, const std::string& index) {
    std::string text = isOpenClass(id.classId)
                           ? "$classid" + index
                           : std::to_string(static_cast<std::int32_t>(id.classId));
    text += ',';
    text += isOpenVariant(id.variantId) ? "$variantid" + index : std::to_string(id.variantId);
    return text;
}

bool isOpen(ObjectId id) {
    return isOpenClass(id.classId) || isOpenVariant(id.variantId);
}

}  // namespace

bool OrroObjectPlaceTypes::operator==(const OrroObjectPlaceTypes& other) const {
    return equalIds({classId, variantId}, {other.classId, other.variantId});
}

bool OrroObjectPlaceTypes::operator<(const OrroObjectPlaceTypes& other) const {
    return lessIds({classId, variantId}, {other.classId, other.variantId});
}

std::size_t OrroObjectPlaceTypes::hash() const {
    return hashIds({classId, variantId});
}

std::string OrroObjectPlaceTypes::toString(ArgTypeDirection direction, std::size_t index) const {
    const ObjectId id{classId, variantId};
    if (direction == ArgTypeDirection::OUTPUT && isOpen(id)) {
        return "orro_object_place";
    }
    return "orro_object_place<" + classAndVariant(id, std::to_string(index)) + ">";
}

std::string OrroObjectPlaceTypes::toString() const {
    return toString(ArgTypeDirection::INPUT, 0);
}

bool OrroObjectTypes::operator==(const OrroObjectTypes& other) const {
    return equalIds({classId, variantId}, {other.classId, other.variantId});
}

bool OrroObjectTypes::operator<(const OrroObjectTypes& other) const {
    return lessIds({classId, variantId}, {other.classId, other.variantId});
}

std::size_t OrroObjectTypes::hash() const {
    return hashIds({classId, variantId});
}

std::string OrroObjectTypes::toString(ArgTypeDirection direction, std::size_t index) const {
    const ObjectId id{classId, variantId};
    const bool open = isOpen(id);
    if (direction == ArgTypeDirection::OUTPUT && open) {
        return "orro_object";
    }
    const std::string indexText = std::to_string(index);
    std::string text = "orro_object<" + classAndVariant(id, indexText) + ',';
    // The flag of an open type is a variable too, even when the value has it set.
    if (open) {
        text += "$bool" + indexText;
    } else {
        text += typeFlag ? " true" : " false";
    }
    text += ',';
    text += direction == ArgTypeDirection::OUTPUT ? "nil" : "$subType" + indexText;
    text += '>';
    return text;
}

std::string OrroObjectTypes::toString() const {
    return toString(ArgTypeDirection::INPUT, 0);
}

std::ostream& operator<<(std::ostream& os, const OrroObjectPlaceTypes& type) {
    return os << type.toString();
}

std::ostream& operator<<(std::ostream& os, const OrroObjectTypes& type) {
    return os << type.toString();
}

}  // namespace Norvane::builtin::types
