#include <builtin/types/KaArrayTypes.hpp>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <span>
#include <stdexcept>

#include <builtin/types/StringClassId.hpp>

namespace Norvane::builtin::types {

namespace {

using Shape = KaArrayTypes::Shape;
using Density = KaArrayTypes::Density;
using Complexity = KaArrayTypes::Complexity;

// Two different values in the order that puts the open value 0 last.
bool unknownLastLess(std::int32_t a, std::int32_t b) {
    if (a == b || a == 0) {
        return false;
    }
    if (b == 0) {
        return true;
    }
    return a < b;
}

template <class Enum>
std::int32_t number(Enum value) {
    return static_cast<std::int32_t>(value);
}

}  // namespace

// Constructors ------------------------------------------------------------------------------

KaArrayTypes::KaArrayTypes(kaClassID elementClass, Shape arrayShape, Density arrayDensity,
                           Complexity arrayComplexity)
    : KaArrayTypes(elementClass, arrayShape, arrayDensity, arrayComplexity,
                   getDimOfShape(arrayShape)) {}

KaArrayTypes::KaArrayTypes(kaClassID elementClass, Shape arrayShape, Density arrayDensity,
                           Complexity arrayComplexity, std::size_t dimensions)
    : element(elementClass),
      shape(arrayShape),
      density(arrayDensity),
      complexity(arrayComplexity),
      dim(dimensions) {}

KaArrayTypes::KaArrayTypes(kaArrayType elementType, Shape arrayShape, Density arrayDensity,
                           Complexity arrayComplexity)
    : KaArrayTypes(static_cast<kaClassID>(elementType), arrayShape, arrayDensity, arrayComplexity) {
}

KaArrayTypes::KaArrayTypes(kaArrayType elementType, Shape arrayShape, Density arrayDensity,
                           Complexity arrayComplexity, std::size_t dimensions)
    : KaArrayTypes(static_cast<kaClassID>(elementType), arrayShape, arrayDensity, arrayComplexity,
                   dimensions) {}

KaArrayTypes::KaArrayTypes(const NumericScalarTypes& scalar)
    : KaArrayTypes(scalar.getElement(), Shape::SCALAR, Density::FULL,
                   scalar.getComplexity() == NumericScalarTypes::Complexity::COMPLEX
                       ? Complexity::COMPLEX
                       : Complexity::NOT_COMPLEX,
                   0) {}

KaArrayTypes::KaArrayTypes(const UnsupportedArgType&)
    : KaArrayTypes(kaUNKNOWN_CLASS, Shape::UNKNOWN, Density::UNKNOWN, Complexity::UNKNOWN,
                   SIZE_MAX) {}

KaArrayTypes::KaArrayTypes(const FlagInputType&)
    : KaArrayTypes(KeldorStringType::getZobjClassId(), Shape::SCALAR, Density::FULL,
                   Complexity::NOT_COMPLEX, 0) {}

KaArrayTypes::KaArrayTypes(const KeldorStringType& string)
    : KaArrayTypes(KeldorStringType::getZobjClassId(), Shape::UNKNOWN, Density::UNKNOWN,
                   Complexity::UNKNOWN, SIZE_MAX) {
    if (string.getShape() == KeldorStringType::Shape::SCALAR) {
        setShape(Shape::SCALAR, 0);
        density = Density::FULL;
        complexity = Complexity::NOT_COMPLEX;
    }
}

KaArrayTypes::KaArrayTypes(const OrroObjectPlaceTypes& place)
    : KaArrayTypes(place.getZobjClassId(), Shape::UNKNOWN, Density::UNKNOWN, Complexity::UNKNOWN,
                   SIZE_MAX) {}

KaArrayTypes::KaArrayTypes(const OrroObjectTypes& object)
    : KaArrayTypes(object.getZobjClassId(), Shape::UNKNOWN, Density::UNKNOWN, Complexity::UNKNOWN,
                   SIZE_MAX) {}

// Shape and dimension count --------------------------------------------------------------------

std::size_t KaArrayTypes::getDimOfShape(Shape arrayShape) {
    switch (arrayShape) {
        case Shape::EMPTY_ROW:
        case Shape::EMPTY_COL:
        case Shape::EMPTY:
        case Shape::SCALAR: return 0;
        case Shape::ROW:
        case Shape::COLUMN:
        case Shape::VECTOR: return 1;
        case Shape::TWO_D: return 2;
        case Shape::UNKNOWN:
        case Shape::ND: break;
    }
    throw std::invalid_argument("cannot convert Shape to numeric dimension");
}

void KaArrayTypes::setShape(Shape arrayShape) {
    const std::size_t dimensions = getDimOfShape(arrayShape);
    shape = arrayShape;
    dim = dimensions;
}

void KaArrayTypes::setShape(Shape arrayShape, std::size_t dimensions) {
    shape = arrayShape;
    dim = dimensions;
}

boost::optional<NumericScalarTypes> KaArrayTypes::asScalar() const {
    if (density != Density::FULL || complexity == Complexity::UNKNOWN ||
        !isNumericElementClass(element)) {
        return boost::none;
    }
    return NumericScalarTypes(element, complexity == Complexity::NOT_COMPLEX
                                           ? NumericScalarTypes::Complexity::REAL
                                           : NumericScalarTypes::Complexity::COMPLEX);
}

// Order and hash -----------------------------------------------------------------------------

bool KaArrayTypes::operator<(const KaArrayTypes& other) const {
    if (tolerance != other.tolerance) {
        return number(tolerance) < number(other.tolerance);
    }
    if (element != other.element) {
        return unknownLastLess(number(element), number(other.element));
    }
    if (density != other.density) {
        return unknownLastLess(number(density), number(other.density));
    }
    if (complexity != other.complexity) {
        return unknownLastLess(number(complexity), number(other.complexity));
    }
    if (dim != other.dim) {
        return dim < other.dim;
    }
    return unknownLastLess(number(shape), number(other.shape));
}

std::size_t KaArrayTypes::hash() const {
    std::size_t seed = 0;
    hash_combine(seed, element);
    hash_combine(seed, shape);
    hash_combine(seed, density);
    hash_combine(seed, complexity);
    hash_combine(seed, dim);
    hash_combine(seed, tolerance);
    return seed;
}

// Matching -----------------------------------------------------------------------------------

namespace {

// The shape lattice of a RELAXED declared type: does `declared` cover `other`?
bool relaxedShapeTakes(Shape declared, std::size_t declaredDim, Shape other, std::size_t otherDim) {
    switch (declared) {
        case Shape::UNKNOWN: return true;
        case Shape::EMPTY_ROW:
        case Shape::EMPTY_COL:
        case Shape::SCALAR: return other == declared;
        case Shape::EMPTY:
            return other == Shape::EMPTY_ROW || other == Shape::EMPTY_COL || other == Shape::EMPTY;
        case Shape::ROW:
            return other == Shape::EMPTY_ROW || other == Shape::SCALAR || other == Shape::ROW;
        case Shape::COLUMN:
            return other == Shape::EMPTY_COL || other == Shape::SCALAR || other == Shape::COLUMN;
        case Shape::VECTOR:
            // Neither EMPTY nor VECTOR itself: a live array is never classified as VECTOR.
            return other == Shape::EMPTY_ROW || other == Shape::EMPTY_COL ||
                   other == Shape::SCALAR || other == Shape::ROW || other == Shape::COLUMN;
        case Shape::TWO_D:
            return number(other) >= number(Shape::EMPTY_ROW) &&
                   number(other) <= number(Shape::TWO_D);
        case Shape::ND: return otherDim <= declaredDim;
    }
    return false;
}

bool isEmptyShape(Shape shape) {
    return shape == Shape::EMPTY_ROW || shape == Shape::EMPTY_COL || shape == Shape::EMPTY;
}

}  // namespace

bool KaArrayTypes::isAcceptable(const KaArrayTypes& other) const {
    const bool relaxed = tolerance == SignatureTolerance::RELAXED;
    if (element != other.element && !(relaxed && element == kaUNKNOWN_CLASS)) {
        return false;
    }
    if (complexity != other.complexity && !(relaxed && complexity == Complexity::UNKNOWN)) {
        return false;
    }
    if (density != other.density && !(relaxed && density == Density::UNKNOWN)) {
        return false;
    }
    if (!relaxed) {
        if (dim != other.dim) {
            return false;
        }
        return shape == other.shape || (shape == Shape::EMPTY && isEmptyShape(other.shape));
    }
    return relaxedShapeTakes(shape, dim, other.shape, other.dim);
}

bool KaArrayTypes::isCompatible(const KaArrayTypes& other) const {
    return element == other.element && complexity == other.complexity && density == other.density;
}

// Precedence ---------------------------------------------------------------------------------

namespace {

// One entry of a precedence list: a shape and its dimension count. (SCALAR, 0) stands for the
// scalar entry, which for a numeric element is a NumericScalarTypes rather than an array.
struct ShapeEntry {
    Shape shape;
    std::size_t dim;
};

// The entries that every list of an open N-d shape starts with; TWO_D lists all but the last.
constexpr ShapeEntry kGeneralEntries[] = {
    {Shape::EMPTY_COL, 0}, {Shape::EMPTY_ROW, 0}, {Shape::EMPTY, 0},  {Shape::SCALAR, 0},
    {Shape::ROW, 1},       {Shape::COLUMN, 1},    {Shape::VECTOR, 1}, {Shape::TWO_D, 2}};
constexpr ShapeEntry kEmptyEntries[] = {{Shape::EMPTY_ROW, 0}, {Shape::EMPTY_COL, 0}};
constexpr ShapeEntry kRowEntries[] = {{Shape::EMPTY_ROW, 0}, {Shape::SCALAR, 0}};
constexpr ShapeEntry kColumnEntries[] = {{Shape::EMPTY_COL, 0}, {Shape::SCALAR, 0}};
constexpr ShapeEntry kVectorEntries[] = {{Shape::EMPTY_COL, 0},
                                         {Shape::EMPTY_ROW, 0},
                                         {Shape::SCALAR, 0},
                                         {Shape::ROW, 1},
                                         {Shape::COLUMN, 1}};

// The fixed entries of each shape, by the shape's number. The shapes that are already as narrow
// as they come (the two empty vectors and the scalar) have none.
constexpr std::span<const ShapeEntry> kFixedEntries[] = {
    kGeneralEntries,                      // UNKNOWN, then N-d entries
    {},                                   // EMPTY_ROW
    {},                                   // EMPTY_COL
    kEmptyEntries,                        // EMPTY
    {},                                   // SCALAR
    kRowEntries,                          // ROW
    kColumnEntries,                       // COLUMN
    kVectorEntries,                       // VECTOR
    std::span(kGeneralEntries).first(7),  // TWO_D
    kGeneralEntries,                      // ND, then N-d entries
};

}  // namespace

std::vector<KaArrayTypes::PrecedenceType> KaArrayTypes::getGreaterPrecedenceTypes() const {
    std::vector<PrecedenceType> result;
    const auto index = static_cast<std::size_t>(number(shape));
    if (tolerance != SignatureTolerance::RELAXED || index >= std::size(kFixedEntries)) {
        return result;
    }
    const auto entry = [this](ShapeEntry e) -> PrecedenceType {
        if (e.shape == Shape::SCALAR && isNumericElementClass(element)) {
            if (complexity == Complexity::UNKNOWN || complexity == Complexity::NOT_COMPLEX) {
                return NumericScalarTypes(element, NumericScalarTypes::Complexity::REAL);
            }
            if (complexity == Complexity::COMPLEX) {
                return NumericScalarTypes(element, NumericScalarTypes::Complexity::COMPLEX);
            }
        }
        KaArrayTypes copy = *this;
        copy.setShape(e.shape, e.dim);
        return copy;
    };
    for (const ShapeEntry e : kFixedEntries[index]) result.push_back(entry(e));

    // An open N-d shape goes on with the N-d arrays of 3 and 4 dimensions, as far as its own
    // count allows, then of any count if it takes any; an UNKNOWN shape ends with its own count.
    if (shape == Shape::ND || shape == Shape::UNKNOWN) {
        const std::size_t maxDim = std::min<std::size_t>(dim, 5);
        for (std::size_t d = 3; d < maxDim; ++d) result.push_back(entry({Shape::ND, d}));
        if (dim == SIZE_MAX) result.push_back(entry({Shape::ND, SIZE_MAX}));
        if (shape == Shape::UNKNOWN) result.push_back(entry({Shape::ND, maxDim}));
    }

    // Arrays before scalars (the index of the variant first), then each by its own order.
    std::sort(result.begin(), result.end());
    result.erase(std::unique(result.begin(), result.end()), result.end());
    return result;
}

// Support level ------------------------------------------------------------------------------

OrroSupportLevel KaArrayTypes::getOrroSupportLevel(ArgTypeDirection direction) const {
    if (number(element) < number(kaOBJECT_CLASS)) {
        // The engine passes a numeric scalar unboxed, so it cannot take one as an array input.
        const bool numericScalarInput = shape == Shape::SCALAR &&
                                        direction == ArgTypeDirection::INPUT &&
                                        isNumericElementClass(element);
        return numericScalarInput ? OrroSupportLevel::NO_SUPPORT
                                  : OrroSupportLevel::EQUIVALENT_SUPPORT;
    }
    if (direction == ArgTypeDirection::OUTPUT) {
        const auto stringClassId = detail::getKnownStringClassId();
        return stringClassId && *stringClassId == element ? OrroSupportLevel::EQUIVALENT_SUPPORT
                                                          : OrroSupportLevel::NO_SUPPORT;
    }
    return OrroSupportLevel::NO_SUPPORT;
}

}  // namespace Norvane::builtin::types
