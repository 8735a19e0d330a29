// The shape table over the native type constants.
#include "ShapeTable.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>

#include <ka/ka.hpp>

#include "../calling/Converters.hpp"
#include "NativeTypeTable.hpp"

namespace Norvane::builtin::types::detail {

namespace {

using Shape = KaArrayTypes::Shape;

constexpr std::size_t kClassCount = static_cast<std::size_t>(kaFUNCTION_CLASS) + 1;

// Dimension d of an array. The array library keeps at least two dimensions; a shorter list
// reads as trailing ones.
std::size_t extent(std::span<const std::size_t> dims, std::size_t d) {
    return d < dims.size() ? dims[d] : 1;
}

// The element of a full array; the caller has checked that the class has one.
NativeElement elementOf(kaClassID element, bool complex) noexcept {
    return *nativeElementOfClass(element, complex);
}

// A copy of the constant with the shape, and the count where given, of the live array.
ArgType corrected(const ArgType& constant, Shape shape, std::size_t dim) {
    KaArrayTypes type = std::get<KaArrayTypes>(constant);
    type.shape = shape;
    type.dim = dim;
    return type;
}

// 1-by-1 arrays: the scalar constant of the element, unboxed by its own converter where the
// constant is a number; the others stay arrays.
std::pair<ArgType, Converter> classifyOneByOne(NativeElement element, kaClassID id, bool complex) {
    const ArgType& scalar = nativeConstant(element, NativeShape::SCALAR);
    const bool unboxes = std::holds_alternative<NumericScalarTypes>(scalar);
    return {scalar, unboxes ? scalarConverterOf(id, complex) : &passThroughConverter};
}

// A 2-D array that is not 1-by-1.
ArgType typeOf2D(NativeElement element, std::size_t rows, std::size_t columns) {
    const ArgType& empty = nativeConstant(element, NativeShape::EMPTY);
    if (rows == 1) {
        return columns == 0 ? corrected(empty, Shape::EMPTY_ROW, 0)
                            : nativeConstant(element, NativeShape::ROW);
    }
    if (columns == 1) {
        return rows == 0 ? corrected(empty, Shape::EMPTY_COL, 0)
                         : nativeConstant(element, NativeShape::COLUMN);
    }
    return rows >= 2 && columns >= 2 ? nativeConstant(element, NativeShape::MATRIX) : empty;
}

// The scalar constant and converter of each class, side by side, so that the answer for the
// commonest argument is one lookup. Kept out of line, so that the fast path does not pay for
// the registers of its first run.
[[gnu::noinline]] std::array<RealScalar, kClassCount> realScalarRows() noexcept {
    std::array<RealScalar, kClassCount> rows{};
    for (std::size_t id = 0; id < kClassCount; ++id) {
        const auto element = static_cast<kaClassID>(id);
        if (isNumericElementClass(element)) {
            rows[id] = {&std::get<NumericScalarTypes>(
                            nativeConstant(elementOf(element, false), NativeShape::SCALAR)),
                        scalarConverterOf(element, false)};
        }
    }
    return rows;
}

}  // namespace

std::pair<ArgType, Converter> classifyByShape(const kaArray_tag* array, kaClassID id,
                                              bool complex) {
    const NativeElement element = elementOf(id, complex);
    const std::span<const std::size_t> dims = matrix::dimensions(array);
    if (dims.size() > 2) {
        const bool empty = std::find(dims.begin(), dims.end(), std::size_t{0}) != dims.end();
        return {empty ? corrected(nativeConstant(element, NativeShape::EMPTY), Shape::EMPTY,
                                  dims.size())
                      : corrected(nativeConstant(element, NativeShape::ND), Shape::ND, dims.size()),
                &passThroughConverter};
    }
    const std::size_t rows = extent(dims, 0);
    const std::size_t columns = extent(dims, 1);
    if (rows == 1 && columns == 1) {
        return classifyOneByOne(element, id, complex);
    }
    return {typeOf2D(element, rows, columns), &passThroughConverter};
}

const ArgType& sparseTypeOf(kaClassID id, bool complex) noexcept {
    return nativeConstant(elementOf(id, complex), NativeShape::SPARSE);
}

RealScalar classifyRealScalar(const kaArray_tag* array) noexcept {
    static const std::array<RealScalar, kClassCount> byClass = realScalarRows();
    const auto id = static_cast<std::size_t>(array->storedClass);
    if (id >= kClassCount || matrix::isSparse(array) || matrix::isComplex(array)) {
        return {nullptr, nullptr};
    }
    const std::span<const std::size_t> dims = matrix::dimensions(array);
    if (dims.size() > 2 || extent(dims, 0) != 1 || extent(dims, 1) != 1) {
        return {nullptr, nullptr};
    }
    return byClass[id];
}

}  // namespace Norvane::builtin::types::detail
