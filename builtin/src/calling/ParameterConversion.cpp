// Boxing of unboxed values into 1-by-1 arrays, and of engine strings and objects through their
// services.
#include <builtin/calling/ParameterConversion.hpp>

#include <cstring>

#include <ka/ka.hpp>

#include "../types/HeldServices.hpp"

namespace Norvane::builtin::builtinreg::detail {

namespace {

// The stored element has the layout of T: one number, or a complex one as real then imaginary.
template <class T>
void box(kaArray_tag** out, T value, kaClassID classId, kaComplexity complexity) {
    auto array = matrix::detail::do_create_uninitnumeric({1, 1}, classId, complexity);
    std::memcpy(matrix::data(array.get()), &value, sizeof value);
    *out = array.release();
}

}  // namespace

void parameterConversionImpl(kaArray_tag** out, signed char value) {
    box(out, value, kaINT8_CLASS, kaREAL);
}
void parameterConversionImpl(kaArray_tag** out, unsigned char value) {
    box(out, value, kaUINT8_CLASS, kaREAL);
}
void parameterConversionImpl(kaArray_tag** out, short value) {
    box(out, value, kaINT16_CLASS, kaREAL);
}
void parameterConversionImpl(kaArray_tag** out, unsigned short value) {
    box(out, value, kaUINT16_CLASS, kaREAL);
}
void parameterConversionImpl(kaArray_tag** out, int value) {
    box(out, value, kaINT32_CLASS, kaREAL);
}
void parameterConversionImpl(kaArray_tag** out, unsigned int value) {
    box(out, value, kaUINT32_CLASS, kaREAL);
}
void parameterConversionImpl(kaArray_tag** out, std::int64_t value) {
    box(out, value, kaINT64_CLASS, kaREAL);
}
void parameterConversionImpl(kaArray_tag** out, std::uint64_t value) {
    box(out, value, kaUINT64_CLASS, kaREAL);
}
void parameterConversionImpl(kaArray_tag** out, float value) {
    box(out, value, kaSINGLE_CLASS, kaREAL);
}
void parameterConversionImpl(kaArray_tag** out, double value) {
    box(out, value, kaDOUBLE_CLASS, kaREAL);
}
void parameterConversionImpl(kaArray_tag** out, std::complex<float> value) {
    box(out, value, kaSINGLE_CLASS, kaCOMPLEX);
}
void parameterConversionImpl(kaArray_tag** out, std::complex<double> value) {
    box(out, value, kaDOUBLE_CLASS, kaCOMPLEX);
}
void parameterConversionImpl(kaArray_tag** out, bool value) {
    box(out, value, kaLOGICAL_CLASS, kaREAL);
}
void parameterConversionImpl(kaArray_tag** out, char16_t value) {
    box(out, value, kaCHAR_CLASS, kaREAL);
}

void parameterConversionImpl(kaArray_tag** out, Norvane::String::String* value) {
    const StringSupport* strings = types::detail::stringSupport();
    *out = value != nullptr && strings != nullptr ? strings->stringToKaArray(value, 0).release()
                                                  : nullptr;
}

void parameterConversionImpl(kaArray_tag** out, Norvane::orro::OrroObject* value) {
    const IZOBJRegWrapper* provider = types::detail::classProvider();
    *out =
        value != nullptr && provider != nullptr ? provider->toKaArray(value, 0).release() : nullptr;
}

}  // namespace Norvane::builtin::builtinreg::detail
