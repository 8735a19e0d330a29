// Helpers of the conversion tests: short names for the types a classification gives, and
// stand-alone array records for states that the array library never builds.
#pragma once

#include <cstddef>
#include <string>

#include <ka/ka.hpp>

#include <builtin/types/ArgType.hpp>

#include "fatal_text.hpp"

namespace conversiontest {

using namespace Norvane::builtin::types;
using Shape = KaArrayTypes::Shape;

inline ArgType full(kaClassID element, Shape shape, std::size_t dim, bool complex = false) {
    return KaArrayTypes(element, shape, KaArrayTypes::Density::FULL,
                        complex ? KaArrayTypes::Complexity::COMPLEX
                                : KaArrayTypes::Complexity::NOT_COMPLEX,
                        dim);
}

inline ArgType scalar(kaClassID element, bool complex = false) {
    return NumericScalarTypes(element, complex ? NumericScalarTypes::Complexity::COMPLEX
                                               : NumericScalarTypes::Complexity::REAL);
}

// A 2-D record that is only read, or released by a holder: the second count keeps the array
// library from ever destroying it.
struct FakeArray {
    kaArray_tag record{};
    FakeArray(kaClassID storedClass, std::uint32_t flags, std::size_t rows, std::size_t columns,
              void* data = nullptr) {
        record.storedClass = storedClass;
        record.refCount = 1;
        record.pinCount = 1;
        record.flags = flags | matrix::flags::twoD;
        record.dims.shape[0] = rows;
        record.dims.shape[1] = columns;
        record.data = data;
    }
};

using testsupport::literal;

}  // namespace conversiontest
