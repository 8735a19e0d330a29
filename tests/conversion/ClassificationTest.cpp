// Classification of live arrays in a process without any service framework: no StringSupport
// and no class provider.
#include <builtin/types/classifyKaArray.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

#include "ConversionSupport.hpp"
#include "live_arrays.hpp"

namespace conversiontest {
namespace {

using Norvane::builtin::builtinreg::addAsKnownOrroObject;
using Norvane::builtin::builtinreg::isAKnownOrroObject;

class Classification : public testsupport::LiveArrayTest {};

TEST_F(Classification, FullArraysByShape) {
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
        // Only the floating classes have a complex scalar.
        {kaINT8_CLASS, {1, 1}, kaCOMPLEX, full(kaINT8_CLASS, Shape::SCALAR, 0, true)},
        {kaDOUBLE_CLASS, {1, 1}, kaCOMPLEX, scalar(kaDOUBLE_CLASS, true)},
        {kaUINT64_CLASS, {1, 1}, kaREAL, scalar(kaUINT64_CLASS)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.expected));
        const auto array = ka::createNumeric(c.element, c.dims, c.complexity);
        EXPECT_EQ(classifyKaArray(array.get()).first, c.expected);
        ka::makeDimensionsOpaque(array.get());
        EXPECT_EQ(getArgTypeOfKaArray(array.get()), c.expected) << "after hiding the dimensions";
    }
}

TEST_F(Classification, OtherClassesStayArraysEvenAsScalars) {
    const std::pair<ka::ArrayPtr, ArgType> cases[] = {
        {ka::createCell({1, 1}), full(kaCELL_CLASS, Shape::SCALAR, 0)},
        {ka::createStruct({1, 1}, {"a"}), full(kaSTRUCT_CLASS, Shape::SCALAR, 0)},
        {ka::createFunctionHandle("sin"), full(kaFUNCTION_CLASS, Shape::SCALAR, 0)},
        {ka::createSparse(kaDOUBLE_CLASS, 3, 4, {{0, 1, 2.0}}),
         KaArrayTypes(kaDOUBLE_CLASS, Shape::TWO_D, KaArrayTypes::Density::SPARSE,
                      KaArrayTypes::Complexity::NOT_COMPLEX, 2)},
    };
    for (const auto& [array, expected] : cases) {
        SCOPED_TRACE(testing::PrintToString(expected));
        const auto [type, converter] = classifyKaArray(array.get());
        EXPECT_EQ(type, expected);
        EXPECT_EQ(converter, &passThroughConverter);
    }
}

TEST_F(Classification, RefusedArraysAreUnsupported) {
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
        SCOPED_TRACE(testing::Message() << "stored class " << c.record.storedClass);
        EXPECT_THROW(classifyKaArray(&c.record), std::invalid_argument);
        EXPECT_EQ(getArgTypeOfKaArray(&c.record), ArgType(UnsupportedArgType{}));
    }
    EXPECT_EQ(getArgTypeOfKaArray(nullptr), ArgType(UnsupportedArgType{}));
}

TEST_F(Classification, InstancesWithoutServices) {
    // Without StringSupport there is no string class; without a provider no object can be read.
    constexpr auto stringClass = static_cast<kaClassID>(19);
    constexpr auto knownClass = static_cast<kaClassID>(40);
    addAsKnownOrroObject(knownClass);
    const auto payload = std::make_shared<int>(0);
    const auto string = ka::createObject(stringClass, "string", payload);
    const auto known = ka::createObject(knownClass, "Known", payload);
    const auto asStruct = ka::createObject(knownClass, "Known", payload, {1, 1}, kaSTRUCT_CLASS);
    const auto asObject = ka::createObject(knownClass, "Known", payload, {1, 1}, kaOBJECT_CLASS);

    EXPECT_EQ(classifyKaArray(string.get()), std::make_pair(ArgType(UnsupportedArgType{}), Converter{}));
    EXPECT_EQ(classifyKaArray(asObject.get()).second, nullptr);
    EXPECT_THROW(classifyKaArray(known.get()), std::runtime_error);
    EXPECT_EQ(getArgTypeOfKaArray(known.get()), ArgType(UnsupportedArgType{}));
    EXPECT_EQ(getArgTypeOfKaArray(asStruct.get()), full(kaSTRUCT_CLASS, Shape::SCALAR, 0));
}

TEST(KnownOrroObjects, AddOnceAskAlways) {
    constexpr auto id = static_cast<kaClassID>(1234);
    EXPECT_FALSE(isAKnownOrroObject(id));
    EXPECT_FALSE(isAKnownOrroObject(kaUNKNOWN_CLASS));
    EXPECT_TRUE(addAsKnownOrroObject(id));
    EXPECT_FALSE(addAsKnownOrroObject(id));
    EXPECT_TRUE(isAKnownOrroObject(id));

    // Concurrent registrations: each id is new exactly once.
    std::atomic<int> added{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 2000; i < 3000; ++i) added += addAsKnownOrroObject(static_cast<kaClassID>(i));
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(added, 1000);
}

}  // namespace
}  // namespace conversiontest
