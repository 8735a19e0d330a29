// The alternative of ArgType that describes an array: element class, shape, density,
// complexity, the number of dimensions the shape counts, and how strictly a declared type holds
// to its own shape. It carries most of the type language: a native parameter of array kind
// declares one, a live array that is not a scalar classifies to one, and isAcceptable and
// isCompatible bring the other alternatives to this form. toString writes the type expressions
// through which the engine sees the signature of a variant, so every character of them counts.
//
// In each of the three property enums 0 leaves the property open, and the order puts it last.
//
// The invariant of dim: it is what getDimOfShape gives for the shape, except for ND (the
// caller gives it), EMPTY of a classified array of more than two dimensions (the number of its
// dimensions), and UNKNOWN (SIZE_MAX). The public fields do not enforce it; the constructors and
// setShape keep it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <boost/operators.hpp>
#include <boost/optional.hpp>

#include <builtin/config.hpp>
#include <builtin/types/FlagInputType.hpp>
#include <builtin/types/KeldorStringType.hpp>
#include <builtin/types/NumericScalarTypes.hpp>
#include <builtin/types/OrroObjectTypes.hpp>
#include <builtin/types/TypeVocabulary.hpp>
#include <builtin/types/UnsupportedArgType.hpp>

namespace Norvane::builtin::types {

struct BUILTIN_API KaArrayTypes
    : boost::equality_comparable<
          KaArrayTypes,
          boost::equivalent<KaArrayTypes, boost::less_than_comparable<KaArrayTypes>>> {
    enum class Shape : std::int32_t {
        UNKNOWN = 0,    // any shape
        EMPTY_ROW = 1,  // 1-by-0
        EMPTY_COL = 2,  // 0-by-1
        EMPTY = 3,      // some other array with a 0 among its dimensions
        SCALAR = 4,     // 1-by-1
        ROW = 5,        // 1-by-n
        COLUMN = 6,     // n-by-1
        VECTOR = 7,     // a row or a column
        TWO_D = 8,      // a 2-D array
        ND = 9,         // an array of dim dimensions; dim SIZE_MAX means any number
    };
    enum class Density : std::int32_t {
        UNKNOWN = 0,
        FULL = 1,
        SPARSE = 2,
    };
    enum class Complexity : std::int32_t {
        UNKNOWN = 0,
        NOT_COMPLEX = 1,
        COMPLEX = 2,
    };

    // An element of the precedence list: an array type, or the scalar that a 1-by-1 array of a
    // numeric class classifies to.
    using PrecedenceType = std::variant<KaArrayTypes, NumericScalarTypes>;

    kaClassID element = kaUNKNOWN_CLASS;
    Shape shape = Shape::SCALAR;
    Density density = Density::FULL;
    Complexity complexity = Complexity::NOT_COMPLEX;
    std::size_t dim = 0;
    SignatureTolerance tolerance = SignatureTolerance::STRICT;

    // Every constructor leaves the tolerance STRICT. Those without a dimension count derive it
    // from the shape and throw std::invalid_argument for UNKNOWN and ND.
    KaArrayTypes() = default;
    KaArrayTypes(kaClassID elementClass, Shape arrayShape, Density arrayDensity,
                 Complexity arrayComplexity);
    KaArrayTypes(kaClassID elementClass, Shape arrayShape, Density arrayDensity,
                 Complexity arrayComplexity, std::size_t dimensions);
    // A kaArrayType is stored as its number, without mapping.
    KaArrayTypes(kaArrayType elementType, Shape arrayShape, Density arrayDensity,
                 Complexity arrayComplexity);
    KaArrayTypes(kaArrayType elementType, Shape arrayShape, Density arrayDensity,
                 Complexity arrayComplexity, std::size_t dimensions);

    // The conversions that isAcceptable and isCompatible apply to the other alternatives. The
    // two from strings and flags ask for the string class id (KeldorStringType::getZobjClassId).
    explicit KaArrayTypes(const NumericScalarTypes& scalar);
    explicit KaArrayTypes(const UnsupportedArgType&);
    explicit KaArrayTypes(const FlagInputType&);
    explicit KaArrayTypes(const KeldorStringType& string);
    explicit KaArrayTypes(const OrroObjectPlaceTypes& place);
    explicit KaArrayTypes(const OrroObjectTypes& object);

    kaClassID getElement() const { return element; }
    void setElement(kaClassID elementClass) { element = elementClass; }
    Density getDensity() const { return density; }
    void setDensity(Density arrayDensity) { density = arrayDensity; }
    Complexity getComplexity() const { return complexity; }
    void setComplexity(Complexity arrayComplexity) { complexity = arrayComplexity; }
    std::pair<Shape, std::size_t> getShape() const { return {shape, dim}; }
    // Derives dim from the shape; throws std::invalid_argument for UNKNOWN and ND.
    void setShape(Shape arrayShape);
    void setShape(Shape arrayShape, std::size_t dimensions);
    SignatureTolerance getSignatureTolerance() const { return tolerance; }
    void setSignatureTolerance(SignatureTolerance signatureTolerance) {
        tolerance = signatureTolerance;
    }

    // The scalar of this element and complexity, for a full array of a numeric class with
    // known complexity, whatever its shape; none otherwise.
    boost::optional<NumericScalarTypes> asScalar() const;

    // Lexicographic by tolerance, element, density, complexity, dim, shape; open values last.
    // A strict weak order: the sort of variants rests on it.
    bool operator<(const KaArrayTypes& other) const;

    // hash_combine from seed 0 over element, shape, density, complexity, dim, tolerance.
    std::size_t hash() const;

    // Whether this declared type takes the type `other`: elements, complexities and densities
    // must match unless this one is RELAXED and leaves them open; then the shapes decide,
    // exactly when STRICT and by the shape lattice when RELAXED.
    bool isAcceptable(const KaArrayTypes& other) const;
    // Equal element, complexity and density; shape, dim and tolerance aside.
    bool isCompatible(const KaArrayTypes& other) const;

    // The types that this one takes and that a dispatch must try first: none when STRICT,
    // sorted ascending and without duplicates otherwise. Lists ND only up to 4 dimensions.
    std::vector<PrecedenceType> getGreaterPrecedenceTypes() const;

    OrroSupportLevel getOrroSupportLevel(ArgTypeDirection direction) const;

    // The type expression, with the type variables numbered by index.
    std::string toString(ArgTypeDirection direction, std::size_t index) const;

    // The diagnostic form "KaArrayTypes: <class> <shape> <density> <complexity> <tolerance>".
    std::ostream& operator<<(std::ostream& os) const;

private:
    static std::size_t getDimOfShape(Shape arrayShape);
};

// Writes the diagnostic form, as the member does.
BUILTIN_API std::ostream& operator<<(std::ostream& os, const KaArrayTypes& type);

}  // namespace Norvane::builtin::types
