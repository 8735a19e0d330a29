// Classification of live arrays and conversion between arrays and Parameters, string traits and
// the fatal checks, in a process without any service framework (no StringSupport, no provider).
#include <builtin/calling/ParameterChecks.hpp>
#include <builtin/calling/ParameterConversion.hpp>
#include <builtin/types/ClassifyKaArray.hpp>
#include <builtin/types/StringTraits.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <complex>
#include <cstring>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <tuple>
#include <vector>

#include <fl/diag.hpp>
#include <ka/ka.hpp>

#include "../../builtin/src/calling/ParameterToKaArray.hpp"
#include "FatalText.hpp"
#include "LiveArrays.hpp"

namespace conversiontest {
namespace {

using namespace Norvane::builtin::types;
using Norvane::builtin::BuiltinVariant;
using Norvane::builtin::Parameter;
using Norvane::builtin::parameterToKaArray;
using Norvane::builtin::builtinreg::addAsKnownOrroObject;
using Norvane::builtin::builtinreg::isAKnownOrroObject;
using Norvane::builtin::builtinreg::detail::parameterConversionImpl;
using Holders = boost::container::small_vector<ka::ConstArrayPtr, 2>;
using Shape = KaArrayTypes::Shape;
using testsupport::literal;

ArgType full(kaClassID element, Shape shape, std::size_t dim, bool complex = false) {
    return KaArrayTypes(
        element, shape, KaArrayTypes::Density::FULL,
        complex ? KaArrayTypes::Complexity::COMPLEX : KaArrayTypes::Complexity::NOT_COMPLEX, dim);
}

ArgType scalar(kaClassID element, bool complex = false) {
    return NumericScalarTypes(element, complex ? NumericScalarTypes::Complexity::COMPLEX
                                               : NumericScalarTypes::Complexity::REAL);
}

// A 2-D record only read, or released by a holder: the second count keeps it from being destroyed.
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

class NoServices : public testsupport::LiveArrayTest {};

TEST_F(NoServices, FullArraysByShape) {
    struct Case {
        kaClassID element;
        ka::Dims dims;
        kaComplexity complexity;
        ArgType expected;
    };
    const Case cases[] = {
        {kaDOUBLE_CLASS, {1, 0}, kaREAL, full(kaDOUBLE_CLASS, Shape::EMPTY_ROW, 0)},
        {kaDOUBLE_CLASS, {0, 1}, kaREAL, full(kaDOUBLE_CLASS, Shape::EMPTY_COL, 0)},
        {kaDOUBLE_CLASS, {0, 3}, kaREAL, full(kaDOUBLE_CLASS, Shape::EMPTY, 0)},
        {kaDOUBLE_CLASS, {2, 0, 3}, kaREAL, full(kaDOUBLE_CLASS, Shape::EMPTY, 3)},
        {kaINT16_CLASS, {2, 3, 4, 5}, kaREAL, full(kaINT16_CLASS, Shape::ND, 4)},
        {kaSINGLE_CLASS, {2, 3}, kaCOMPLEX, full(kaSINGLE_CLASS, Shape::TWO_D, 2, true)},
        {kaCHAR_CLASS, {1, 5}, kaREAL, full(kaCHAR_CLASS, Shape::ROW, 1)},
        {kaLOGICAL_CLASS, {4, 1}, kaREAL, full(kaLOGICAL_CLASS, Shape::COLUMN, 1)},
        {kaINT8_CLASS,
         {1, 1},
         kaCOMPLEX,
         full(kaINT8_CLASS, Shape::SCALAR, 0, true)},  // no complex integer scalar
        {kaDOUBLE_CLASS, {1, 1}, kaCOMPLEX, scalar(kaDOUBLE_CLASS, true)},
        {kaUINT64_CLASS, {1, 1}, kaREAL, scalar(kaUINT64_CLASS)},
    };
    for (const auto& c : cases) {
        const auto array = ka::createNumeric(c.element, c.dims, c.complexity);
        EXPECT_EQ(classifyKaArray(array.get()).first, c.expected);
        ka::makeDimensionsOpaque(array.get());
        EXPECT_EQ(getArgTypeOfKaArray(array.get()), c.expected) << "hidden dimensions";
    }
}

TEST_F(NoServices, RefusedArraysAreUnsupported) {
    const std::size_t ndDims[] = {2, 2, 2};
    FakeArray sparseND(kaDOUBLE_CLASS, matrix::flags::sparse, 0, 0);
    sparseND.record.flags = matrix::flags::sparse;
    sparseND.record.dims.nd = {ndDims, 3};
    FakeArray cases[] = {
        {kaLOGICAL_CLASS, matrix::flags::sparse | matrix::flags::complex, 3, 3},
        {kaINT8_CLASS, matrix::flags::sparse, 3, 3},
        {kaCHAR_CLASS, matrix::flags::complex, 1, 3},
        {kaVOID_CLASS, 0, 1, 1},
        sparseND,
    };
    for (auto& c : cases) {
        EXPECT_THROW(classifyKaArray(&c.record), std::invalid_argument);
        EXPECT_EQ(getArgTypeOfKaArray(&c.record), ArgType(UnsupportedArgType{}));
    }
    EXPECT_EQ(getArgTypeOfKaArray(nullptr), ArgType(UnsupportedArgType{}));
}

// Other classes stay arrays even as scalars. Without StringSupport there is no string class;
// without a provider no object can be read.
TEST_F(NoServices, OtherClassesAndInstances) {
    const std::pair<ka::ArrayPtr, ArgType> cases[] = {
        {ka::createCell({1, 1}), full(kaCELL_CLASS, Shape::SCALAR, 0)},
        {ka::createStruct({1, 1}, {"a"}), full(kaSTRUCT_CLASS, Shape::SCALAR, 0)},
        {ka::createFunctionHandle("sin"), full(kaFUNCTION_CLASS, Shape::SCALAR, 0)},
        {ka::createSparse(kaDOUBLE_CLASS, 3, 4, {{0, 1, 2.0}}),
         KaArrayTypes(kaDOUBLE_CLASS, Shape::TWO_D, KaArrayTypes::Density::SPARSE,
                      KaArrayTypes::Complexity::NOT_COMPLEX, 2)},
    };
    for (const auto& [array, expected] : cases) {
        EXPECT_EQ(classifyKaArray(array.get()),
                  std::make_pair(expected, Converter(&passThroughConverter)));
    }
    constexpr auto knownClass = static_cast<kaClassID>(40);
    addAsKnownOrroObject(knownClass);
    const auto payload = std::make_shared<int>(0);
    const auto string = ka::createObject(static_cast<kaClassID>(19), "string", payload);
    const auto known = ka::createObject(knownClass, "Known", payload);
    const auto asStruct = ka::createObject(knownClass, "Known", payload, {1, 1}, kaSTRUCT_CLASS);
    const auto asObject = ka::createObject(knownClass, "Known", payload, {1, 1}, kaOBJECT_CLASS);
    EXPECT_EQ(classifyKaArray(string.get()),
              std::make_pair(ArgType(UnsupportedArgType{}), Converter{}));
    EXPECT_EQ(classifyKaArray(asObject.get()).second, nullptr);
    EXPECT_THROW(classifyKaArray(known.get()), std::runtime_error);
    EXPECT_EQ(getArgTypeOfKaArray(known.get()), ArgType(UnsupportedArgType{}));
    EXPECT_EQ(getArgTypeOfKaArray(asStruct.get()), full(kaSTRUCT_CLASS, Shape::SCALAR, 0));
}

TEST(KnownOrroObjects, EachIdIsNewExactlyOnceEvenUnderConcurrentRegistration) {
    EXPECT_FALSE(isAKnownOrroObject(kaUNKNOWN_CLASS));
    std::atomic<int> added{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 2000; i < 3000; ++i)
                added += addAsKnownOrroObject(static_cast<kaClassID>(i));
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(added, 1000);
    EXPECT_TRUE(isAKnownOrroObject(static_cast<kaClassID>(2999)));
    EXPECT_FALSE(isAKnownOrroObject(static_cast<kaClassID>(3000)));
}

// A value boxes into a 1-by-1 array of its class, which unboxes into alternative `which` for a
// declared scalar and stays the array (one more reference, temporary mark cleared) otherwise.
template <class T, class U = T>
void roundTrip(T value, kaClassID element, int which, bool complex = false) {
    SCOPED_TRACE(testing::Message() << "class " << element << " which " << which);
    kaArray_tag* out = nullptr;
    parameterConversionImpl(&out, value);
    const ka::ArrayPtr array(out);
    ASSERT_NE(array, nullptr);
    EXPECT_EQ(array->refCount, 1u);
    EXPECT_EQ(std::memcmp(matrix::data(array.get()), &value, sizeof value), 0);
    const auto [type, converter] = classifyKaArray(array.get());
    EXPECT_EQ(type, scalar(element, complex));
    ASSERT_NE(converter, nullptr);
    const ArgType declaredScalar = scalar(kaDOUBLE_CLASS);
    const ArgType declaredArray = full(kaDOUBLE_CLASS, Shape::SCALAR, 0);
    const Parameter unboxed = converter(array.get(), &declaredScalar);
    EXPECT_EQ(unboxed.which(), which);
    EXPECT_EQ(boost::get<U>(unboxed), static_cast<U>(value));
    array->flags |= matrix::flags::temporary;
    EXPECT_EQ(boost::get<kaArray_tag*>(converter(array.get(), &declaredArray)), array.get());
    EXPECT_EQ(array->refCount, 2u);
    EXPECT_EQ(array->flags & matrix::flags::temporary, 0u);
    EXPECT_EQ(converter(array.get(), nullptr).which(), 13);
    matrix::releaseReference(array.get());
    matrix::releaseReference(array.get());
}

TEST_F(NoServices, ScalarsBoxAndUnboxOnlyForDeclaredScalars) {
    roundTrip(std::uint64_t{1} << 40, kaUINT64_CLASS, 0);
    roundTrip(2.5, kaDOUBLE_CLASS, 1);
    roundTrip(1.5f, kaSINGLE_CLASS, 2);
    roundTrip(true, kaLOGICAL_CLASS, 3);
    roundTrip(static_cast<signed char>(-3), kaINT8_CLASS, 4);
    roundTrip(short{-300}, kaINT16_CLASS, 5);
    roundTrip(-70000, kaINT32_CLASS, 6);
    roundTrip(-(std::int64_t{1} << 40), kaINT64_CLASS, 7);
    roundTrip(static_cast<unsigned char>(200), kaUINT8_CLASS, 8);
    roundTrip(static_cast<unsigned short>(60000), kaUINT16_CLASS, 9);
    roundTrip<char16_t, unsigned short>(u'\u00e9', kaCHAR_CLASS, 9);
    roundTrip(4000000000u, kaUINT32_CLASS, 10);
    roundTrip(std::complex<double>(1, 2), kaDOUBLE_CLASS, 11, true);
    roundTrip(std::complex<float>(3, 4), kaSINGLE_CLASS, 12, true);
    // Without the services, strings and objects box to null, whatever out held.
    kaArray_tag stale{};
    kaArray_tag* out = &stale;
    parameterConversionImpl(&out, static_cast<Norvane::String::String*>(nullptr));
    EXPECT_EQ(out, nullptr);
    out = &stale;
    parameterConversionImpl(&out, reinterpret_cast<Norvane::orro::OrroObject*>(&stale));
    EXPECT_EQ(out, nullptr);
}

TEST_F(NoServices, ResultsBecomeArraysByTheDeclaredOutput) {
    BuiltinVariant charOutput, uint16Output, noOutput;
    charOutput.outputArgTypes = {scalar(kaCHAR_CLASS)};
    uint16Output.outputArgTypes = {scalar(kaUINT16_CLASS)};
    const std::pair<const BuiltinVariant*, kaClassID> cases[] = {
        {&charOutput, kaCHAR_CLASS}, {&uint16Output, kaUINT16_CLASS}, {&noOutput, kaUINT16_CLASS}};
    for (const auto& [variant, element] : cases) {
        const ka::ArrayPtr array(
            parameterToKaArray(Parameter(static_cast<unsigned short>(u'A')), *variant));
        EXPECT_EQ(getArgTypeOfKaArray(array.get()), scalar(element));
        EXPECT_EQ(*static_cast<const char16_t*>(matrix::data(array.get())), u'A');
    }
    auto row = ka::row({1.0, 2.0});
    EXPECT_EQ(parameterToKaArray(Parameter(row.get()), noOutput), row.get());
    EXPECT_EQ(row->refCount, 1u);
    EXPECT_EQ(
        parameterToKaArray(Parameter(static_cast<Norvane::String::String*>(nullptr)), noOutput),
        nullptr);
    const ka::ArrayPtr fromDouble(parameterToKaArray(Parameter(2.0), charOutput));
    EXPECT_EQ(getArgTypeOfKaArray(fromDouble.get()), scalar(kaDOUBLE_CLASS));
}

TEST_F(NoServices, CharArraysReadAsStrings) {
    char16_t text[] = u"abc";  // declared ahead of the holders, which release the records last
    FakeArray complexRow(kaCHAR_CLASS, matrix::flags::complex, 1, 3, text);
    FakeArray sparseRow(kaCHAR_CLASS, matrix::flags::sparse, 1, 3, text);
    Holders holders;
    TypeTraitsImpl<std::u16string> u16;
    EXPECT_EQ(u16(ka::charArray(std::u16string_view(u"abc")).release(), holders), u"abc");
    EXPECT_EQ(u16(ka::createNumeric(kaCHAR_CLASS, {1, 0}).release(), holders), u"");
    EXPECT_EQ(TypeTraitsImpl<std::string>()(
                  ka::charArray(std::u16string_view(u"h\u00e9")).release(), holders),
              "h\xc3\xa9");
    const kaArray_tag* chars = ka::charArray(std::u16string_view(u"xy")).release();
    const std::u16string_view seen = TypeTraitsImpl<std::u16string_view>()(chars, holders);
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

TEST_F(NoServices, StringsBecomeCharRowsWithoutStringSupport) {
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

using NoServicesDeathTest = NoServices;

TEST_F(NoServicesDeathTest, ChecksStopWithTheirTexts) {
    namespace td = Norvane::builtin::types::detail;
    namespace bd = Norvane::builtin::builtinreg::detail;
    const Parameter number(2.0);
    const auto chars = ka::charArray(std::u16string_view(u"ab"));
    std::ostringstream charType;
    charType << getArgTypeOfKaArray(chars.get());
    const std::string conversionPath = ".*builtin2/interface/builtin/ParameterConversion";

    EXPECT_DEATH(
        td::assertFromParameterType(typeid(double), chars.get()),
        literal("expected kaArray to be double but was " + charType.str()) + conversionPath);
    EXPECT_DEATH(td::assertOrroObjectFromParameterType(typeid(Norvane::orro::OrroObject*), number),
                 literal("expected Parameter to contain Norvane::orro::OrroObject* but actually "
                         "contains double") +
                     conversionPath);
    EXPECT_DEATH(
        td::assertParameterContainsType(typeid(float), number),
        literal("Parameter created with incorrect type.\nExpected: float\nActual: double") +
            conversionPath);
    EXPECT_DEATH(
        bd::assertParameterWrongType(typeid(float), number, scalar(kaSINGLE_CLASS)),
        literal("expected Parameter containing: float\nactual Parameter containing: double\n"
                "Expected ArgType: single") +
            ".*builtin2/interface/builtin/getFunctionDescriptor");
    EXPECT_DEATH(
        TypeTraitsImpl<const td::ScalarKeldorStringPlaceholder*>()(nullptr),
        literal(
            "ScalarKeldorStringPlaceholder is not a real type and should not actually be used.") +
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
