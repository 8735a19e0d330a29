// The printed forms of KaArrayTypes: the type expression that the engine's type system reads,
// and the diagnostic stream form. The engine parses the expressions, so every character below
// counts, the blanks inside "ka_empty<...>" included.

#include <builtin/types/KaArrayTypes.hpp>

#include <cstdint>
#include <ostream>

#include "TypeNames.hpp"

namespace Norvane::builtin::types {

namespace {

using Shape = KaArrayTypes::Shape;
using Density = KaArrayTypes::Density;
using Complexity = KaArrayTypes::Complexity;

std::string elementText(kaClassID element) {
    switch (element) {
        case kaCELL_CLASS:
        case kaSTRUCT_CLASS:
        case kaVOID_CLASS:
        case kaOBJECT_CLASS: return "kaArray";
        default:
            // Numeric names; the empty text for function handles and negative values.
            return std::string(detail::numericElementName(element));
    }
}

std::string shapeText(const KaArrayTypes& type, const std::string& index) {
    const bool relaxed = type.tolerance == SignatureTolerance::RELAXED;
    const std::string variable = "$Shape" + index;
    switch (type.shape) {
        case Shape::UNKNOWN: return relaxed ? variable : std::string();
        case Shape::EMPTY_ROW: return "ka_empty<vector<row>, false>";
        case Shape::EMPTY_COL: return "ka_empty<vector<column>, false>";
        case Shape::EMPTY: return "ka_empty<" + variable + ", $IsZeroByZero" + index + ">";
        case Shape::SCALAR: return "ka_scalar";
        case Shape::ROW: return relaxed ? variable + ":B2IsShapeRowVector" : "vector<row>";
        case Shape::COLUMN: return relaxed ? variable + ":B2IsShapeColumnVector" : "vector<column>";
        case Shape::VECTOR: return variable + ":B2IsShapeAnyVector";
        case Shape::TWO_D:
            if (!relaxed) {
                return "ka_2d_array";
            }
            return type.density == Density::SPARSE ? variable : variable + ":B2IsShape2d";
        case Shape::ND: {
            const std::string fixed = "ka_nd_array<" + std::to_string(type.dim) + ">";
            if (!relaxed) {
                return fixed;
            }
            if (type.dim == 3) {
                return variable + ":B2IsShape3d";
            }
            if (type.dim == 4) {
                return variable + ":B2IsShape4d";
            }
            return type.dim == SIZE_MAX ? variable : fixed;
        }
    }
    return {};
}

std::string attributeText(const KaArrayTypes& type, const std::string& index) {
    if (type.element == kaCELL_CLASS) {
        return "ka_cell";
    }
    if (type.element == kaSTRUCT_CLASS) {
        return "ka_struct";
    }
    switch (type.density) {
        case Density::FULL: return "ka_full";
        case Density::SPARSE: return "ka_sparse";
        case Density::UNKNOWN: return "$Attribute" + index;
    }
    return {};
}

std::string complexityText(Complexity complexity, const std::string& index) {
    switch (complexity) {
        case Complexity::NOT_COMPLEX: return "false";
        case Complexity::COMPLEX: return "true";
        case Complexity::UNKNOWN: return "$Complexity" + index;
    }
    return {};
}

// Elements whose class the expression leaves open: none known, opaque, or a class of the
// class system. kaOBJECT_CLASS itself is a plain array of arrays.
bool hasOpenElement(kaClassID element) {
    const auto number = static_cast<std::int32_t>(element);
    return element == kaUNKNOWN_CLASS || element == kaOPAQUE_CLASS ||
           number > static_cast<std::int32_t>(kaOBJECT_CLASS);
}

std::string expression(const KaArrayTypes& type, const std::string& index) {
    if (hasOpenElement(type.element)) {
        return "kaArray_of<$a" + index + ",$b" + index + ",$c" + index + ",$d" + index + ">";
    }
    return "kaArray_of<" + elementText(type.element) + ',' + shapeText(type, index) + ',' +
           attributeText(type, index) + ',' + complexityText(type.complexity, index) + '>';
}

std::string_view shapeName(Shape shape) {
    switch (shape) {
        case Shape::UNKNOWN: return "Unknown Shape";
        case Shape::EMPTY_ROW: return "EMPTY_ROW";
        case Shape::EMPTY_COL: return "EMPTY_COL";
        case Shape::EMPTY: return "EMPTY";
        case Shape::SCALAR: return "SCALAR";
        case Shape::ROW: return "ROW";
        case Shape::COLUMN: return "COLUMN";
        case Shape::VECTOR: return "VECTOR";
        case Shape::TWO_D: return "2D";
        case Shape::ND: return {};  // the dimension count and "D", written by the caller
    }
    return {};
}

std::string_view densityName(Density density) {
    switch (density) {
        case Density::UNKNOWN: return "Unknown Density";
        case Density::FULL: return "FULL";
        case Density::SPARSE: return "SPARSE";
    }
    return {};
}

std::string_view complexityName(Complexity complexity) {
    switch (complexity) {
        case Complexity::UNKNOWN: return "Unknown Complexity";
        case Complexity::NOT_COMPLEX: return "NOT_COMPLEX";
        case Complexity::COMPLEX: return "COMPLEX";
    }
    return {};
}

std::string_view toleranceName(SignatureTolerance tolerance) {
    switch (tolerance) {
        case SignatureTolerance::STRICT: return "STRICT";
        case SignatureTolerance::RELAXED: return "RELAXED";
    }
    return {};
}

void writeClass(std::ostream& os, kaClassID element) {
    const auto number = static_cast<std::int32_t>(element);
    if (number < 0) {
        os << '?' << number << '?';
    } else if (number >= static_cast<std::int32_t>(kaOBJECT_CLASS)) {
        os << "kaOBJECT_CLASS(" << number << ')';
    } else {
        os << detail::classIdName(element);
    }
}

}  // namespace

std::string KaArrayTypes::toString(ArgTypeDirection direction, std::size_t index) const {
    std::string text = expression(*this, std::to_string(index));
    if (direction == ArgTypeDirection::OUTPUT) {
        // The engine cannot name an output whose type is left open, nor one it passes unboxed.
        const bool numericScalar = shape == Shape::SCALAR && isNumericElementClass(element);
        if (numericScalar || text.find('$') != std::string::npos) {
            return "kaArray";
        }
    }
    return text;
}

std::ostream& KaArrayTypes::operator<<(std::ostream& os) const {
    os << "KaArrayTypes: ";
    writeClass(os, element);
    os << ' ';
    if (shape == Shape::ND) {
        os << dim << 'D';
    } else {
        os << shapeName(shape);
    }
    os << ' ' << densityName(density) << ' ' << complexityName(complexity) << ' '
       << toleranceName(tolerance);
    return os;
}

std::ostream& operator<<(std::ostream& os, const KaArrayTypes& type) {
    return type.operator<<(os);
}

}  // namespace Norvane::builtin::types
