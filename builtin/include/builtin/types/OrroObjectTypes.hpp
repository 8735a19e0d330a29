// The two alternatives of ArgType that speak of engine objects. An engine object is identified
// by the class id of its language-level class and the variant id of the native class behind it.
//
//  - OrroObjectTypes: an engine object.
//  - OrroObjectPlaceTypes: a place that holds one. The library builds none itself; modules
//    that declare one use the constructors.
//
// Both treat kaUNKNOWN_CLASS and SIZE_MAX as wildcards in equality, so a type with a wildcard
// stands for a family of objects. That equality is not an equivalence (a wildcard equals two
// values that differ from each other), and the order is only meant for the sort of variants,
// which brings unequal pairs together; neither is fit for hashed or sorted containers of
// wildcard types.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include <boost/operators.hpp>

#include <builtin/config.hpp>
#include <builtin/types/FlagInputType.hpp>
#include <builtin/types/KeldorStringType.hpp>
#include <builtin/types/TypeVocabulary.hpp>

namespace Norvane::builtin::types {

// The class id that the engine gives the language's string class in the fixed conversions
// from strings and flags below. KeldorStringType::getZobjClassId asks the running system
// instead; the two must agree there, and nothing here compares them.
inline constexpr kaClassID kEngineStringClassId = static_cast<kaClassID>(19);

struct BUILTIN_API OrroObjectPlaceTypes
    : boost::equality_comparable<OrroObjectPlaceTypes,
                                 boost::less_than_comparable<OrroObjectPlaceTypes>> {
    kaClassID classId = kaUNKNOWN_CLASS;
    std::size_t variantId = SIZE_MAX;

    OrroObjectPlaceTypes() = default;
    OrroObjectPlaceTypes(kaClassID objectClassId, std::size_t cppVariantId)
        : classId(objectClassId), variantId(cppVariantId) {}

    kaClassID getZobjClassId() const { return classId; }
    std::size_t getCppClassVariantId() const { return variantId; }

    // Equal unless the class ids differ with neither open, or the variant ids differ with
    // neither open.
    bool operator==(const OrroObjectPlaceTypes& other) const;
    bool operator<(const OrroObjectPlaceTypes& other) const;

    std::size_t hash() const;

    static std::vector<OrroObjectPlaceTypes> getGreaterPrecedenceTypes() { return {}; }
    static OrroSupportLevel getOrroSupportLevel(ArgTypeDirection) {
        return OrroSupportLevel::EQUIVALENT_SUPPORT;
    }

    std::string toString(ArgTypeDirection direction, std::size_t index) const;
    std::string toString() const;
};

struct BUILTIN_API OrroObjectTypes
    : boost::equality_comparable<OrroObjectTypes, boost::less_than_comparable<OrroObjectTypes>> {
    kaClassID classId = kaUNKNOWN_CLASS;
    std::size_t variantId = SIZE_MAX;
    // What the class provider says of a live object. It only enters toString: equality, order
    // and hash ignore it.
    bool typeFlag = false;

    OrroObjectTypes() = default;
    OrroObjectTypes(kaClassID objectClassId, std::size_t cppVariantId, bool objectTypeFlag)
        : classId(objectClassId), variantId(cppVariantId), typeFlag(objectTypeFlag) {}
    // The language's string class as the engine sees it; the argument is not read.
    explicit OrroObjectTypes(const FlagInputType&)
        : classId(kEngineStringClassId), variantId(0), typeFlag(true) {}
    explicit OrroObjectTypes(const KeldorStringType&)
        : classId(kEngineStringClassId), variantId(0), typeFlag(true) {}

    kaClassID getZobjClassId() const { return classId; }
    std::size_t getCppClassVariantId() const { return variantId; }

    bool operator==(const OrroObjectTypes& other) const;
    bool operator<(const OrroObjectTypes& other) const;

    std::size_t hash() const;

    static std::vector<OrroObjectTypes> getGreaterPrecedenceTypes() { return {}; }
    static OrroSupportLevel getOrroSupportLevel(ArgTypeDirection) {
        return OrroSupportLevel::EQUIVALENT_SUPPORT;
    }

    std::string toString(ArgTypeDirection direction, std::size_t index) const;
    std::string toString() const;
};

// Both write toString().
BUILTIN_API std::ostream& operator<<(std::ostream& os, const OrroObjectPlaceTypes& type);
BUILTIN_API std::ostream& operator<<(std::ostream& os, const OrroObjectTypes& type);

}  // namespace Norvane::builtin::types
