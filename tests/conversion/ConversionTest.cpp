// Conversion between arrays and Parameters, string traits and the fatal checks, in a process
// without any service framework.
#include <builtin/calling/ParameterChecks.hpp>
#include <builtin/calling/ParameterConversion.hpp>
#include <builtin/types/StringTraits.hpp>
#include <builtin/types/classifyKaArray.hpp>

#include <gtest/gtest.h>

#include <complex>
#include <cstring>
#include <sstream>
#include <stdexcept>
#include <tuple>

#include <fl/diag.hpp>

#include "../../builtin/src/calling/parameterToKaArray.hpp"
#include "ConversionSupport.hpp"
#include "live_arrays.hpp"

namespace conversiontest {
namespace {

using Norvane::builtin::BuiltinVariant;
using Norvane::builtin::Parameter;
using Norvane::builtin::parameterToKaArray;
using Norvane::builtin::builtinreg::detail::parameterConversionImpl;
using Holders = boost::container::small_vector<ka::ConstArrayPtr, 2>;

class Conversion : public testsupport::LiveArrayTest {};

// Every numeric class unboxes into its alternative for a declared scalar and stays the array,
// with one more reference and without its temporary mark, for a declared array.
TEST_F(Conversion, ScalarsUnboxOnlyForDeclaredScalars) {
    const ArgType declaredScalar = scalar(kaDOUBLE_CLASS);
    const ArgType declaredArray = full(kaDOUBLE_CLASS, Shape::SCALAR, 0);
    const auto check = [&](ka::ArrayPtr array, kaClassID element, bool complex, int which,
                           auto value) {
        SCOPED_TRACE(testing::Message() << "class " << element << " which " << which);
        const auto [type, converter] = classifyKaArray(array.get());
        EXPECT_EQ(type, scalar(element, complex));
        ASSERT_NE(converter, nullptr);
        const Parameter unboxed = converter(array.get(), &declaredScalar);
        EXPECT_EQ(unboxed.which(), which);
        EXPECT_EQ(boost::get<decltype(value)>(unboxed), value);
        EXPECT_EQ(array->refCount, 1u);
        array->flags |= matrix::flags::temporary;
        const Parameter boxed = converter(array.get(), &declaredArray);
        ASSERT_EQ(boxed.which(), 13);
        EXPECT_EQ(boost::get<kaArray_tag*>(boxed), array.get());
        EXPECT_EQ(array->refCount, 2u);
        EXPECT_EQ(array->flags & matrix::flags::temporary, 0u);
        matrix::releaseReference(array.get());
        EXPECT_EQ(converter(array.get(), nullptr).which(), 13);
        matrix::releaseReference(array.get());
    };
    check(ka::scalar<std::uint64_t>(1ull << 40), kaUINT64_CLASS, false, 0, std::uint64_t{1} << 40);
    check(ka::scalar(2.5), kaDOUBLE_CLASS, false, 1, 2.5);
    check(ka::scalar(1.5f), kaSINGLE_CLASS, false, 2, 1.5f);
    check(ka::scalar(true), kaLOGICAL_CLASS, false, 3, true);
    check(ka::scalar<std::int8_t>(-3), kaINT8_CLASS, false, 4, static_cast<signed char>(-3));
    check(ka::scalar<std::int16_t>(-300), kaINT16_CLASS, false, 5, short{-300});
    check(ka::scalar(-70000), kaINT32_CLASS, false, 6, -70000);
    check(ka::scalar<std::int64_t>(-(1ll << 40)), kaINT64_CLASS, false, 7, -(std::int64_t{1} << 40));
    check(ka::scalar<std::uint8_t>(200), kaUINT8_CLASS, false, 8, static_cast<unsigned char>(200));
    check(ka::scalar<std::uint16_t>(60000), kaUINT16_CLASS, false, 9, static_cast<unsigned short>(60000));
    check(ka::scalar(u'\u00e9'), kaCHAR_CLASS, false, 9, static_cast<unsigned short>(0xe9));
    check(ka::scalar(4000000000u), kaUINT32_CLASS, false, 10, 4000000000u);
    check(ka::scalar(std::complex<double>(1, 2)), kaDOUBLE_CLASS, true, 11, std::complex<double>(1, 2));
    check(ka::scalar(std::complex<float>(3, 4)), kaSINGLE_CLASS, true, 12, std::complex<float>(3, 4));
}

template <class T>
void expectBoxed(T value, kaClassID element, bool complex) {
    SCOPED_TRACE(testing::Message() << "class " << element);
    kaArray_tag* out = nullptr;
    parameterConversionImpl(&out, value);
    const ka::ArrayPtr array(out);
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(getArgTypeOfKaArray(array.get()), scalar(element, complex));
    EXPECT_EQ(array->refCount, 1u);
    EXPECT_EQ(std::memcmp(matrix::data(array.get()), &value, sizeof value), 0);
}

TEST_F(Conversion, ValuesBoxIntoOneByOneArrays) {
    expectBoxed(static_cast<signed char>(-5), kaINT8_CLASS, false);
    expectBoxed(static_cast<unsigned char>(5), kaUINT8_CLASS, false);
    expectBoxed(short{-5}, kaINT16_CLASS, false);
    expectBoxed(static_cast<unsigned short>(5), kaUINT16_CLASS, false);
    expectBoxed(-5, kaINT32_CLASS, false);
    expectBoxed(5u, kaUINT32_CLASS, false);
    expectBoxed(std::int64_t{-5}, kaINT64_CLASS, false);
    expectBoxed(std::uint64_t{5}, kaUINT64_CLASS, false);
    expectBoxed(0.5f, kaSINGLE_CLASS, false);
    expectBoxed(0.5, kaDOUBLE_CLASS, false);
    expectBoxed(std::complex<float>(1, 2), kaSINGLE_CLASS, true);
    expectBoxed(true, kaLOGICAL_CLASS, false);
    expectBoxed(u'x', kaCHAR_CLASS, false);

    expectBoxed(std::complex<double>(1, 2), kaDOUBLE_CLASS, true);

    // Without the services, strings and objects box to null, whatever out held.
    kaArray_tag stale{};
    kaArray_tag* out = &stale;
    parameterConversionImpl(&out, static_cast<Norvane::String::String*>(nullptr));
    EXPECT_EQ(out, nullptr);
    out = &stale;
    parameterConversionImpl(&out, reinterpret_cast<Norvane::orro::OrroObject*>(&stale));
    EXPECT_EQ(out, nullptr);
}

TEST_F(Conversion, ResultsBecomeArraysByTheDeclaredOutput) {
    BuiltinVariant charOutput, uint16Output, noOutput;
    charOutput.outputArgTypes = {scalar(kaCHAR_CLASS)};
    uint16Output.outputArgTypes = {scalar(kaUINT16_CLASS)};
    const Parameter code(static_cast<unsigned short>(u'A'));
    const std::pair<const BuiltinVariant*, kaClassID> cases[] = {
        {&charOutput, kaCHAR_CLASS}, {&uint16Output, kaUINT16_CLASS}, {&noOutput, kaUINT16_CLASS}};
    for (const auto& [variant, element] : cases) {
        const ka::ArrayPtr array(parameterToKaArray(code, *variant));
        EXPECT_EQ(getArgTypeOfKaArray(array.get()), scalar(element));
        EXPECT_EQ(*static_cast<const char16_t*>(matrix::data(array.get())), u'A');
    }

    auto row = ka::row({1.0, 2.0});
    EXPECT_EQ(parameterToKaArray(Parameter(row.get()), noOutput), row.get());
    EXPECT_EQ(row->refCount, 1u);
    EXPECT_EQ(parameterToKaArray(Parameter(static_cast<Norvane::String::String*>(nullptr)), noOutput),
              nullptr);
    const ka::ArrayPtr fromDouble(parameterToKaArray(Parameter(2.0), charOutput));
    EXPECT_EQ(getArgTypeOfKaArray(fromDouble.get()), scalar(kaDOUBLE_CLASS));
}

TEST_F(Conversion, CharArraysReadAsStrings) {
    // Declared ahead of the holders, which release them last.
    char16_t text[] = u"abc";
    FakeArray complexRow(kaCHAR_CLASS, matrix::flags::complex, 1, 3, text);
    FakeArray sparseRow(kaCHAR_CLASS, matrix::flags::sparse, 1, 3, text);
    Holders holders;
    TypeTraitsImpl<std::u16string> u16;
    TypeTraitsImpl<std::string> utf8;
    TypeTraitsImpl<std::u16string_view> view;
    EXPECT_EQ(u16(ka::charArray(std::u16string_view(u"abc")).release(), holders), u"abc");
    EXPECT_EQ(u16(ka::createNumeric(kaCHAR_CLASS, {1, 0}).release(), holders), u"");
    EXPECT_EQ(utf8(ka::charArray(std::u16string_view(u"h\u00e9")).release(), holders), "h\xc3\xa9");
    const kaArray_tag* chars = ka::charArray(std::u16string_view(u"xy")).release();
    const std::u16string_view seen = view(chars, holders);
    EXPECT_EQ(seen, u"xy");
    EXPECT_EQ(seen.data(), matrix::data(chars));
    EXPECT_EQ(holders.size(), 4u) << "the holders own every array read";

    const kaArray_tag* refused[] = {ka::createNumeric(kaCHAR_CLASS, {2, 2}).release(),
                                    &complexRow.record, &sparseRow.record,
                                    ka::scalar(1.0).release(), nullptr};
    for (const kaArray_tag* array : refused) {
        EXPECT_THROW(u16(array, holders), std::invalid_argument);
    }
    EXPECT_EQ(holders.size(), 9u) << "a refused array is held too";
}

TEST_F(Conversion, StringsBecomeCharRowsWithoutStringSupport) {
    const std::tuple<ka::ArrayPtr, ArgType, std::u16string> cases[] = {
        {ka::ArrayPtr(TypeTraitsImpl<std::u16string>()(std::u16string(u"abc"))),
         full(kaCHAR_CLASS, Shape::ROW, 1), u"abc"},
        {ka::ArrayPtr(TypeTraitsImpl<std::u16string>()(std::u16string())),
         full(kaCHAR_CLASS, Shape::EMPTY_ROW, 0), u""},
        {ka::ArrayPtr(TypeTraitsImpl<std::string>()(std::string("\xc3\xa9"))), scalar(kaCHAR_CLASS),
         u"\u00e9"},
    };
    for (const auto& [array, type, text] : cases) {
        EXPECT_EQ(getArgTypeOfKaArray(array.get()), type);
        Holders holders;
        matrix::takeReference(array.get());
        EXPECT_EQ(TypeTraitsImpl<std::u16string>()(array.get(), holders), text);
    }
    using Traits = TypeTraitsImpl<std::u16string_view>;
    EXPECT_EQ(Traits::getArgType(0), ArgType(UnsupportedArgType{}));
    EXPECT_EQ(Traits::getArgType(1), full(kaCHAR_CLASS, Shape::ROW, 1));
    EXPECT_EQ(TypeTraitsImpl<std::string>::getArgType(2), full(kaCHAR_CLASS, Shape::EMPTY, 0));
    EXPECT_EQ(Traits::getArgType(3), ArgType(UnsupportedArgType{}));
}

using ConversionDeathTest = Conversion;

TEST_F(ConversionDeathTest, ChecksStopWithTheirTexts) {
    namespace td = Norvane::builtin::types::detail;
    namespace bd = Norvane::builtin::builtinreg::detail;
    const Parameter number(2.0);
    const auto chars = ka::charArray(std::u16string_view(u"ab"));
    std::ostringstream charType;
    charType << getArgTypeOfKaArray(chars.get());
    const std::string conversionPath = ".*builtin2/interface/builtin/ParameterConversion";

    EXPECT_DEATH(td::assertFromParameterType(typeid(double), chars.get()),
                 literal("expected kaArray to be double but was " + charType.str()) + conversionPath);
    EXPECT_DEATH(td::assertOrroObjectFromParameterType(typeid(Norvane::orro::OrroObject*), number),
                 literal("expected Parameter to contain Norvane::orro::OrroObject* but actually "
                         "contains double") +
                     conversionPath);
    EXPECT_DEATH(td::assertParameterContainsType(typeid(float), number),
                 literal("Parameter created with incorrect type.\nExpected: float\nActual: double") +
                     conversionPath);
    EXPECT_DEATH(bd::assertParameterWrongType(typeid(float), number, scalar(kaSINGLE_CLASS)),
                 literal("expected Parameter containing: float\nactual Parameter containing: double\n"
                         "Expected ArgType: single") +
                     ".*builtin2/interface/builtin/getFunctionDescriptor");
    EXPECT_DEATH(TypeTraitsImpl<const td::ScalarKeldorStringPlaceholder*>()(nullptr),
                 literal("ScalarKeldorStringPlaceholder is not a real type and should not "
                         "actually be used.") +
                     ".*builtin2/interface/builtin/StringTraits");

    td::assertParameterContainsType(typeid(double), number);
    const bool previous = fl_set_diag_terminate(false);
    td::assertParameterContainsType(typeid(float), number);
    fl_set_diag_terminate(previous);
    EXPECT_EQ(TypeTraitsImpl<const td::ScalarKeldorStringPlaceholder*>::getArgType(),
              ArgType(KeldorStringType(KeldorStringType::Shape::SCALAR)));
}

}  // namespace
}  // namespace conversiontest
