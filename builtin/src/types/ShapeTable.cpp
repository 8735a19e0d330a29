// The shape table. The types of its rows with a fixed number of dimensions are process-wide
// constants, made at first use for every class of a full array, so that classifying an array
// builds nothing but the copy it returns.
#include "ShapeTable.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#include <ka/ka.hpp>

#include "../calling/Converters.hpp"

namespace Norvane::builtin::types::detail {

namespace {

using Shape = KaArrayTypes::Shape;
using Density = KaArrayTypes::Density;
using Complexity = KaArrayTypes::Complexity;

constexpr std::size_t classCount = static_cast<std::size_t>(kaFUNCTION_CLASS) + 1;
constexpr std::size_t shapeCount = static_cast<std::size_t>(Shape::ND) + 1;

Complexity complexityOf(bool complex) {
    return complex ? Complexity::COMPLEX : Complexity::NOT_COMPLEX;
}

class ShapeConstants {
public:
    ShapeConstants() {
        struct Row {
            Shape shape;
            std::size_t dim;
        };
        static constexpr Row rows[] = {
            {Shape::EMPTY_ROW, 0}, {Shape::EMPTY_COL, 0}, {Shape::EMPTY, 0}, {Shape::SCALAR, 0},
            {Shape::ROW, 1},       {Shape::COLUMN, 1},    {Shape::TWO_D, 2},
        };
        for (std::size_t element = 0; element < classCount; ++element) {
            for (const bool complex : {false, true}) {
                for (const Row& row : rows) {
                    at(static_cast<kaClassID>(element), complex, row.shape) =
                        KaArrayTypes(static_cast<kaClassID>(element), row.shape, Density::FULL,
                                     complexityOf(complex), row.dim);
                }
            }
        }
    }

    const KaArrayTypes& get(kaClassID element, bool complex, Shape shape) const {
        return types_[static_cast<std::size_t>(element)][complex ? 1 : 0]
                     [static_cast<std::size_t>(shape)];
    }

private:
    KaArrayTypes& at(kaClassID element, bool complex, Shape shape) {
        return types_[static_cast<std::size_t>(element)][complex ? 1 : 0]
                     [static_cast<std::size_t>(shape)];
    }

    std::array<std::array<std::array<KaArrayTypes, shapeCount>, 2>, classCount> types_;
};

const ShapeConstants& shapeConstants() {
    static const ShapeConstants constants;
    return constants;
}

// Dimension d of an array. The array library keeps at least two dimensions; a shorter list
// reads as trailing ones.
std::size_t extent(std::span<const std::size_t> dims, std::size_t d) {
    return d < dims.size() ? dims[d] : 1;
}

// The shape of a 2-D array that is not 1-by-1.
Shape shapeOf(std::size_t rows, std::size_t columns) {
    if (rows == 1) {
        return columns == 0 ? Shape::EMPTY_ROW : Shape::ROW;
    }
    if (columns == 1) {
        return rows == 0 ? Shape::EMPTY_COL : Shape::COLUMN;
    }
    return rows >= 2 && columns >= 2 ? Shape::TWO_D : Shape::EMPTY;
}

// A real scalar of every numeric class unboxes; a complex one only for the floating classes,
// since a Parameter has no complex integer. Everything else stays an array.
std::pair<ArgType, Converter> classifyOneByOne(kaClassID element, bool complex) {
    const bool unboxes = complex ? (element == kaDOUBLE_CLASS || element == kaSINGLE_CLASS)
                                 : isNumericElementClass(element);
    if (unboxes) {
        return {NumericScalarTypes(element, complex ? NumericScalarTypes::Complexity::COMPLEX
                                                    : NumericScalarTypes::Complexity::REAL),
                scalarConverterOf(element, complex)};
    }
    return {shapeConstants().get(element, complex, Shape::SCALAR), &passThroughConverter};
}

}  // namespace

std::pair<ArgType, Converter> classifyByShape(const kaArray_tag* array, kaClassID element,
                                              bool complex) {
    const std::span<const std::size_t> dims = matrix::dimensions(array);
    if (dims.size() > 2) {
        const bool empty = std::find(dims.begin(), dims.end(), std::size_t{0}) != dims.end();
        return {KaArrayTypes(element, empty ? Shape::EMPTY : Shape::ND, Density::FULL,
                             complexityOf(complex), dims.size()),
                &passThroughConverter};
    }
    const std::size_t rows = extent(dims, 0);
    const std::size_t columns = extent(dims, 1);
    if (rows == 1 && columns == 1) {
        return classifyOneByOne(element, complex);
    }
    return {shapeConstants().get(element, complex, shapeOf(rows, columns)), &passThroughConverter};
}

Converter realScalarConverter(const kaArray_tag* array) noexcept {
    const Converter converter = scalarConverterOf(static_cast<kaClassID>(array->storedClass), false);
    if (converter == nullptr || matrix::isSparse(array) || matrix::isComplex(array)) {
        return nullptr;
    }
    const std::span<const std::size_t> dims = matrix::dimensions(array);
    const bool oneByOne = dims.size() <= 2 && extent(dims, 0) == 1 && extent(dims, 1) == 1;
    return oneByOne ? converter : nullptr;
}

}  // namespace Norvane::builtin::types::detail
