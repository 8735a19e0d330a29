// The 155 native type constants: 25 element types in six shapes, and five sparse views. They are
// made together at first use, so that a getter or a classification afterwards costs one lookup.
#include <builtin/types/NativeArgTypes.hpp>

#include <array>
#include <cstdint>
#include <stdexcept>

#include <builtin/types/StringClassId.hpp>

#include "NativeTypeTable.hpp"

namespace Norvane::builtin::types {

namespace {

using Shape = KaArrayTypes::Shape;
using Density = KaArrayTypes::Density;
using Complexity = KaArrayTypes::Complexity;

constexpr std::size_t kShapeSlots = nativeShapeCount + 1;  // the six shapes, then SPARSE

struct ElementRow {
    kaClassID id;
    bool complex;
};

// The class and complexity of each element, in the order of NativeElement.
constexpr std::array<ElementRow, nativeElementCount> kElements = {{
    {kaINT8_CLASS, false},     {kaUINT8_CLASS, false},   {kaINT16_CLASS, false},
    {kaUINT16_CLASS, false},   {kaINT32_CLASS, false},   {kaUINT32_CLASS, false},
    {kaINT64_CLASS, false},    {kaUINT64_CLASS, false},  {kaSINGLE_CLASS, false},
    {kaDOUBLE_CLASS, false},   {kaLOGICAL_CLASS, false}, {kaCHAR_CLASS, false},
    {kaINT8_CLASS, true},      {kaUINT8_CLASS, true},    {kaINT16_CLASS, true},
    {kaUINT16_CLASS, true},    {kaINT32_CLASS, true},    {kaUINT32_CLASS, true},
    {kaINT64_CLASS, true},     {kaUINT64_CLASS, true},   {kaSINGLE_CLASS, true},
    {kaDOUBLE_CLASS, true},    {kaCELL_CLASS, false},    {kaSTRUCT_CLASS, false},
    {kaFUNCTION_CLASS, false},
}};

// The inverse of kElements, by class id and complexity; -1 where no element has the pair.
// Classification reads it for every argument, so it is a table rather than a search.
constexpr auto kByClass = [] {
    std::array<std::array<std::int8_t, 2>, static_cast<std::size_t>(kaFUNCTION_CLASS) + 1> table{};
    for (auto& row : table) {
        row = {-1, -1};
    }
    for (std::size_t e = 0; e < kElements.size(); ++e) {
        table[static_cast<std::size_t>(kElements[e].id)][kElements[e].complex ? 1 : 0] =
            static_cast<std::int8_t>(e);
    }
    return table;
}();

// Unboxed scalars exist for the real numeric classes and for complex single and double, the
// number types of C++ itself; every other 1-by-1 value stays an array.
ArgType scalarOf(const ElementRow& row) {
    const bool unboxed = row.complex ? (row.id == kaDOUBLE_CLASS || row.id == kaSINGLE_CLASS)
                                     : isNumericElementClass(row.id);
    const Complexity complexity = row.complex ? Complexity::COMPLEX : Complexity::NOT_COMPLEX;
    if (unboxed) {
        return NumericScalarTypes(row.id, row.complex ? NumericScalarTypes::Complexity::COMPLEX
                                                      : NumericScalarTypes::Complexity::REAL);
    }
    return KaArrayTypes(row.id, Shape::SCALAR, Density::FULL, complexity, 0);
}

class NativeConstants {
public:
    NativeConstants() {
        for (std::size_t e = 0; e < nativeElementCount; ++e) {
            const ElementRow& row = kElements[e];
            const Complexity c = row.complex ? Complexity::COMPLEX : Complexity::NOT_COMPLEX;
            auto& slots = types_[e];
            slots[slot(NativeShape::SCALAR)] = scalarOf(row);
            slots[slot(NativeShape::ROW)] = KaArrayTypes(row.id, Shape::ROW, Density::FULL, c, 1);
            slots[slot(NativeShape::COLUMN)] =
                KaArrayTypes(row.id, Shape::COLUMN, Density::FULL, c, 1);
            slots[slot(NativeShape::MATRIX)] =
                KaArrayTypes(row.id, Shape::TWO_D, Density::FULL, c, 2);
            slots[slot(NativeShape::EMPTY)] =
                KaArrayTypes(row.id, Shape::EMPTY, Density::FULL, c, 0);
            slots[slot(NativeShape::ND)] = KaArrayTypes(row.id, Shape::ND, Density::FULL, c, 3);
            if (hasSparseView(static_cast<NativeElement>(e))) {
                slots[slot(NativeShape::SPARSE)] =
                    KaArrayTypes(row.id, Shape::TWO_D, Density::SPARSE, c, 2);
            }
        }
    }

    const ArgType& get(NativeElement element, NativeShape shape) const noexcept {
        return types_[static_cast<std::size_t>(element)][slot(shape)];
    }

private:
    static constexpr std::size_t slot(NativeShape shape) { return static_cast<std::size_t>(shape); }

    // The sparse slot of an element without a sparse view stays UnsupportedArgType, unused.
    std::array<std::array<ArgType, kShapeSlots>, nativeElementCount> types_;
};

const NativeConstants& constants() {
    static const NativeConstants made;
    return made;
}

}  // namespace

const ArgType& nativeArgType(NativeElement element, NativeShape shape) {
    if (static_cast<std::size_t>(element) >= nativeElementCount ||
        static_cast<std::size_t>(shape) >= kShapeSlots) {
        throw std::invalid_argument("nativeArgType: no such native element or shape");
    }
    if (shape == NativeShape::SPARSE && !hasSparseView(element)) {
        throw std::invalid_argument("nativeArgType: no sparse view of this element type");
    }
    return constants().get(element, shape);
}

const ArgType& nativeStringArgType(std::size_t index) {
    // Made once: without StringSupport at first use there is no scalar string for the rest of
    // the process, and a declaration drops the signatures that would need it.
    static const std::array<ArgType, nativeStringArgTypeCount> strings = [] {
        const auto stringClassId = detail::getKnownStringClassId();
        return std::array<ArgType, nativeStringArgTypeCount>{
            stringClassId ? ArgType(KaArrayTypes(*stringClassId, Shape::SCALAR, Density::FULL,
                                                 Complexity::NOT_COMPLEX, 0))
                          : ArgType(UnsupportedArgType{}),
            KaArrayTypes(kaCHAR_CLASS, Shape::ROW, Density::FULL, Complexity::NOT_COMPLEX, 1),
            KaArrayTypes(kaCHAR_CLASS, Shape::EMPTY, Density::FULL, Complexity::NOT_COMPLEX, 0),
        };
    }();
    if (index >= strings.size()) {
        detail::throwInvalidSubscript();
    }
    return strings[index];
}

const ArgType& anyShapeArgType(NativeElement element) {
    static const auto types = [] {
        std::array<ArgType, nativeElementCount> made;
        for (std::size_t e = 0; e < nativeElementCount; ++e) {
            const Complexity c =
                kElements[e].complex ? Complexity::COMPLEX : Complexity::NOT_COMPLEX;
            KaArrayTypes type(kElements[e].id, Shape::UNKNOWN, Density::FULL, c, SIZE_MAX);
            type.setSignatureTolerance(SignatureTolerance::RELAXED);
            made[e] = type;
        }
        return made;
    }();
    if (static_cast<std::size_t>(element) >= nativeElementCount) {
        throw std::invalid_argument("anyShapeArgType: no such native element");
    }
    return types[static_cast<std::size_t>(element)];
}

const ArgType& anyArrayArgType(std::size_t index) {
    static const ArgType any = [] {
        KaArrayTypes type(kaUNKNOWN_CLASS, Shape::UNKNOWN, Density::UNKNOWN, Complexity::UNKNOWN,
                          SIZE_MAX);
        type.setSignatureTolerance(SignatureTolerance::RELAXED);
        return ArgType(type);
    }();
    if (index != 0) detail::throwInvalidSubscript();
    return any;
}

const ArgType& plainArrayArgType(std::size_t index) {
    static const ArgType plain = [] {
        KaArrayTypes type;
        type.element = kaUNKNOWN_CLASS;
        type.shape = Shape::UNKNOWN;
        type.density = Density::UNKNOWN;
        type.complexity = Complexity::UNKNOWN;
        type.dim = 0;
        return ArgType(type);
    }();
    if (index != 0) detail::throwInvalidSubscript();
    return plain;
}

namespace detail {

void throwInvalidSubscript() {
    throw std::out_of_range("invalid array<T, N> subscript");
}

std::optional<NativeElement> nativeElementOfClass(kaClassID element, bool complex) noexcept {
    const auto id = static_cast<std::size_t>(element);
    if (id >= kByClass.size()) {
        return std::nullopt;
    }
    const std::int8_t e = kByClass[id][complex ? 1 : 0];
    return e < 0 ? std::nullopt : std::optional<NativeElement>(static_cast<NativeElement>(e));
}

const ArgType& nativeConstant(NativeElement element, NativeShape shape) noexcept {
    return constants().get(element, shape);
}

}  // namespace detail

}  // namespace Norvane::builtin::types
