// A string object of the language, as a whole and without its text: either one string
// (SCALAR) or a string array of any size (ANY). A literal flag counts as a scalar string.
//
// Its order is unusual: SCALAR is less than ANY, and equal values count as less than each
// other. The sort of variants only ever compares unequal strings, so that is enough there; do
// not sort plain collections of KeldorStringType with it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include <boost/operators.hpp>

#include <builtin/config.hpp>
#include <builtin/types/FlagInputType.hpp>
#include <builtin/types/TypeVocabulary.hpp>

namespace Norvane::builtin::types {

struct BUILTIN_API KeldorStringType
    : boost::equality_comparable<KeldorStringType, boost::less_than_comparable<KeldorStringType>> {
    enum class Shape : std::int32_t {
        SCALAR = 0,
        ANY = 1,
    };

    Shape shape = Shape::ANY;

    // Shape ANY. Split from the next one so that a Shape never converts to a string type
    // silently (in a comparison or a stream insertion, say).
    KeldorStringType() = default;
    explicit KeldorStringType(Shape stringShape) : shape(stringShape) {}
    // A flag is one string; its text is not kept.
    explicit KeldorStringType(const FlagInputType&) : shape(Shape::SCALAR) {}

    Shape getShape() const { return shape; }

    // The class id of the language's string class, asked of the StringSupport service once
    // per process and kept from then on.
    //
    // Without the service there is no string class to name: the call answers kaUNKNOWN_CLASS
    // and keeps nothing, so it never stops the process, and never remembers a wrong id for the
    // time a service is there. (The service holder is filled once per process, so in practice
    // a process without the service answers kaUNKNOWN_CLASS throughout.) A type converted from
    // a string then has an open element, which a declared array of a numeric class never takes.
    static kaClassID getZobjClassId();

    bool operator==(const KeldorStringType& other) const { return shape == other.shape; }
    // True if the shapes are equal or this one is SCALAR.
    bool operator<(const KeldorStringType& other) const;

    std::size_t hash() const;

    // A declared ANY takes every string; a declared SCALAR only a scalar.
    bool isAcceptable(const KeldorStringType& other) const;
    // The reverse direction: true if the shapes are equal or this one is SCALAR.
    bool isCompatible(const KeldorStringType& other) const;

    // Empty for SCALAR; ANY lists itself.
    std::vector<KeldorStringType> getGreaterPrecedenceTypes() const;

    // The engine takes no scalar string as an input.
    OrroSupportLevel getOrroSupportLevel(ArgTypeDirection direction) const;

    // "keldor_string<nil>" as an output; as an input "scalar_keldor_string" or
    // "keldor_string<$flag_idx{index}>".
    std::string toString(ArgTypeDirection direction, std::size_t index) const;

    // Writes toString(INPUT, 0).
    std::ostream& operator<<(std::ostream& os) const;
};

// Writes toString(INPUT, 0), as the member does.
BUILTIN_API std::ostream& operator<<(std::ostream& os, const KeldorStringType& type);

}  // namespace Norvane::builtin::types
