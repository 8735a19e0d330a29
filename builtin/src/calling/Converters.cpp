// The converters from a live array argument to the Parameter that a chosen variant receives.
// They run once per argument of every interpreted call: the scalar ones read one element and
// neither create nor count anything.
#include "Converters.hpp"

#include <complex>
#include <cstdint>
#include <cstring>
#include <variant>

#include <ka/ka.hpp>

#include "../types/HeldServices.hpp"

namespace Norvane::builtin::types {

Parameter passThroughConverter(kaArray_tag* array, const ArgType*) {
    if (array != nullptr) {
        matrix::takeReference(array);
    }
    return Parameter(array);
}

namespace detail {

namespace {

// Element 0 as stored (Stored), handed on as the alternative of Parameter (Alternative). The
// copy makes no assumption on the alignment of the data; logical elements are bytes, so any
// nonzero byte is true.
template <class Stored, class Alternative>
Parameter scalarConverter(kaArray_tag* array, const ArgType* declared) {
    if (declared != nullptr && std::holds_alternative<NumericScalarTypes>(*declared)) {
        Stored value;
        std::memcpy(&value, matrix::data(array), sizeof value);
        return Parameter(static_cast<Alternative>(value));
    }
    return passThroughConverter(array, declared);
}

}  // namespace

Converter scalarConverterOf(kaClassID element, bool complex) noexcept {
    if (complex) {
        switch (element) {
            case kaDOUBLE_CLASS:
                return &scalarConverter<std::complex<double>, std::complex<double>>;
            case kaSINGLE_CLASS: return &scalarConverter<std::complex<float>, std::complex<float>>;
            default: return nullptr;
        }
    }
    switch (element) {
        case kaLOGICAL_CLASS: return &scalarConverter<std::uint8_t, bool>;
        case kaCHAR_CLASS: return &scalarConverter<char16_t, unsigned short>;
        case kaDOUBLE_CLASS: return &scalarConverter<double, double>;
        case kaSINGLE_CLASS: return &scalarConverter<float, float>;
        case kaINT8_CLASS: return &scalarConverter<signed char, signed char>;
        case kaUINT8_CLASS: return &scalarConverter<unsigned char, unsigned char>;
        case kaINT16_CLASS: return &scalarConverter<short, short>;
        case kaUINT16_CLASS: return &scalarConverter<unsigned short, unsigned short>;
        case kaINT32_CLASS: return &scalarConverter<int, int>;
        case kaUINT32_CLASS: return &scalarConverter<unsigned int, unsigned int>;
        case kaINT64_CLASS: return &scalarConverter<std::int64_t, std::int64_t>;
        case kaUINT64_CLASS: return &scalarConverter<std::uint64_t, std::uint64_t>;
        default: return nullptr;
    }
}

Parameter objectConverter(kaArray_tag* array, const ArgType* declared) {
    if (declared != nullptr && std::holds_alternative<OrroObjectTypes>(*declared)) {
        return unconditionalObjectConverter(array, declared);
    }
    return passThroughConverter(array, declared);
}

Parameter unconditionalObjectConverter(kaArray_tag* array, const ArgType*) {
    auto& object =
        requireClassProvider("read an engine object from an array").fromKaArray(array, false);
    return Parameter(&object);
}

}  // namespace detail
}  // namespace Norvane::builtin::types
