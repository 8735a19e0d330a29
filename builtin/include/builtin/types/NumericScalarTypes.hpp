// One unboxed number, real or complex, of one of the numeric element classes. A live 1-by-1
// numeric array classifies to this type, so a declared scalar never has to look at shapes.
//
// Its Complexity has its own numbering (0 REAL, 1 COMPLEX), unlike that of KaArrayTypes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include <boost/operators.hpp>

#include <builtin/config.hpp>
#include <builtin/types/TypeVocabulary.hpp>

namespace Norvane::builtin::types {

struct BUILTIN_API NumericScalarTypes
    : boost::equality_comparable<
          NumericScalarTypes,
          boost::equivalent<NumericScalarTypes, boost::less_than_comparable<NumericScalarTypes>>> {
    enum class Complexity : std::int32_t {
        REAL = 0,
        COMPLEX = 1,
    };

    kaClassID element = kaUNKNOWN_CLASS;
    Complexity complexity = Complexity::REAL;

    NumericScalarTypes() = default;
    NumericScalarTypes(kaClassID elementClass, Complexity complexityOfValue)
        : element(elementClass), complexity(complexityOfValue) {}

    kaClassID getElement() const { return element; }
    void setElement(kaClassID elementClass) { element = elementClass; }
    Complexity getComplexity() const { return complexity; }
    void setComplexity(Complexity complexityOfValue) { complexity = complexityOfValue; }

    // By element, then complexity, both as signed numbers. Inline: matching a declared scalar
    // against a live one, the question of most calls, comes down to this.
    bool operator<(const NumericScalarTypes& other) const {
        if (element != other.element) {
            return static_cast<std::int32_t>(element) < static_cast<std::int32_t>(other.element);
        }
        return static_cast<std::int32_t>(complexity) < static_cast<std::int32_t>(other.complexity);
    }

    // The element alone, sign-extended: a real and a complex scalar of one class hash alike.
    std::size_t hash() const;

    static std::vector<NumericScalarTypes> getGreaterPrecedenceTypes() { return {}; }

    // The engine calls real scalars directly; complex ones it cannot.
    OrroSupportLevel getOrroSupportLevel(ArgTypeDirection direction) const;

    // The element's name ("double", "int8", ...), "complex_double" and "complex_single" for
    // the complex floating classes, and the empty text for a class that is not numeric.
    std::string toString() const;
};

// Writes toString().
BUILTIN_API std::ostream& operator<<(std::ostream& os, const NumericScalarTypes& type);

}  // namespace Norvane::builtin::types
