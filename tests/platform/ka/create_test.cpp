// Numeric, char, function-handle and object arrays, shared data, and the data blocks beneath.
#include <gtest/gtest.h>

#include <complex>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <ka/ka.hpp>

#include "live_arrays.hpp"

namespace {

using testsupport::LiveArrayTest;

class CreateTest : public LiveArrayTest {};

bool aligned64(const void* p) { return reinterpret_cast<std::uintptr_t>(p) % 64 == 0; }

template <class T>
std::vector<T> values(const kaArray* a) {
    const T* first = static_cast<const T*>(matrix::data(a));
    return std::vector<T>(first, first + matrix::numberOfElements(a) * (matrix::isComplex(a) ? 2 : 1));
}

TEST_F(CreateTest, FactoryMakesEveryNumericClassRealAndComplex) {
    const kaClassID classes[] = {kaLOGICAL_CLASS, kaCHAR_CLASS,   kaDOUBLE_CLASS, kaSINGLE_CLASS,
                                 kaINT8_CLASS,    kaUINT8_CLASS,  kaINT16_CLASS,  kaUINT16_CLASS,
                                 kaINT32_CLASS,   kaUINT32_CLASS, kaINT64_CLASS,  kaUINT64_CLASS};
    const std::size_t dims[] = {3, 5};
    for (kaClassID id : classes) {
        for (kaComplexity c : {kaREAL, kaCOMPLEX}) {
            if (c == kaCOMPLEX && (id == kaLOGICAL_CLASS || id == kaCHAR_CLASS)) continue;
            SCOPED_TRACE(testing::Message() << ka::className(id) << (c ? " complex" : ""));
            ka::ArrayPtr a = matrix::detail::do_create_uninitnumeric(dims, id, c);
            EXPECT_EQ(matrix::classId(a.get()), id);
            EXPECT_EQ(matrix::isComplex(a.get()), c == kaCOMPLEX);
            EXPECT_FALSE(matrix::isSparse(a.get()));
            EXPECT_EQ(a->refCount, 1u);
            EXPECT_EQ(a->pinCount, 0);
            EXPECT_TRUE(aligned64(a->data));
            // Every byte is writable: the sanitizer build catches a short block.
            std::memset(a->data, 0xab, 15 * ka::elementSize(id) * (c == kaCOMPLEX ? 2 : 1));
        }
    }
}

TEST_F(CreateTest, FactoryRefusesWhatIsNotNumeric) {
    struct Case {
        kaClassID id;
        kaComplexity c;
    };
    const Case cases[] = {{kaCELL_CLASS, kaREAL},         {kaUNKNOWN_CLASS, kaREAL},
                          {static_cast<kaClassID>(40), kaREAL}, {kaLOGICAL_CLASS, kaCOMPLEX},
                          {kaDOUBLE_CLASS, static_cast<kaComplexity>(2)}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "class " << c.id << ", complexity " << c.c);
        EXPECT_THROW(matrix::detail::do_create_uninitnumeric({1, 1}, c.id, c.c),
                     std::invalid_argument);
    }
    const std::size_t huge[] = {SIZE_MAX / 2, 3};
    EXPECT_THROW(matrix::detail::do_create_uninitnumeric(huge, kaDOUBLE_CLASS, kaREAL),
                 std::bad_alloc);
}

TEST_F(CreateTest, DataIsAlignedAndZeroedAtEverySize) {
    // Sizes across the inline buffer, the C heap and the huge-page mapping.
    for (std::size_t n : {0u, 1u, 3u, 1000u, 600000u}) {
        SCOPED_TRACE(n);
        ka::ArrayPtr a = ka::createNumeric(kaINT32_CLASS, {1, n}, kaCOMPLEX);
        ASSERT_NE(a->data, nullptr);
        EXPECT_TRUE(aligned64(a->data));
        EXPECT_EQ(values<std::int32_t>(a.get()), std::vector<std::int32_t>(2 * n, 0));
    }
}

TEST_F(CreateTest, ValuesGoInColumnMajorOrder) {
    ka::ArrayPtr m = ka::fromRows<double>(2, 3, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(values<double>(m.get()), (std::vector<double>{1, 4, 2, 5, 3, 6}));

    ka::ArrayPtr z = ka::scalar(std::complex<double>(1, 2));
    EXPECT_EQ(values<double>(z.get()), (std::vector<double>{1, 2}));
    EXPECT_TRUE(matrix::isComplex(z.get()));

    ka::ArrayPtr flags = ka::row({true, false, true});
    EXPECT_EQ(matrix::classId(flags.get()), kaLOGICAL_CLASS);
    EXPECT_EQ(values<bool>(flags.get()), (std::vector<bool>{true, false, true}));
    EXPECT_THROW(ka::fromRows<float>(2, 2, {1, 2, 3}), std::invalid_argument);  // and leaks nothing

}

TEST_F(CreateTest, CharArraysHoldUtf16CodeUnits) {
    struct Case {
        ka::ArrayPtr array;
        std::u16string text;
    };
    Case cases[] = {{ka::charArray("h\xC3\xA9llo"), u"h\u00e9llo"},
                    {ka::charArray(u"\U0001F600"), u"\U0001F600"},  // a surrogate pair: 2 units
                    {ka::charArray(""), u""}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.text.size()));
        EXPECT_EQ(matrix::classId(c.array.get()), kaCHAR_CLASS);
        EXPECT_EQ(matrix::dimensions(c.array.get())[0], 1u);
        const auto* units = static_cast<const char16_t*>(c.array->data);
        EXPECT_EQ(std::u16string(units, matrix::numberOfElements(c.array.get())), c.text);
    }
}

TEST_F(CreateTest, SharedCopySharesDataUntilOneDiesExceptForScalars) {
    ka::ArrayPtr original = ka::row({1.0, 2.0, 3.0, 4.0});
    EXPECT_FALSE(matrix::isDataShared(original.get()));

    ka::ArrayPtr copy = ka::sharedDataCopy(original.get());
    EXPECT_EQ(copy->data, original->data);
    EXPECT_TRUE(matrix::isDataShared(original.get()));
    EXPECT_TRUE(matrix::isDataShared(copy.get()));

    original.reset();
    EXPECT_TRUE(copy->flags & matrix::flags::mayShareData);
    EXPECT_FALSE(matrix::isDataShared(copy.get()));
    EXPECT_EQ(values<double>(copy.get()), (std::vector<double>{1, 2, 3, 4}));

    // A scalar's data lives inline, so its copy copies it.
    ka::ArrayPtr scalar = ka::scalar(std::complex<float>(1, -1));
    ka::ArrayPtr scalarCopy = ka::sharedDataCopy(scalar.get());
    EXPECT_NE(scalarCopy->data, scalar->data);
    EXPECT_EQ(values<float>(scalarCopy.get()), (std::vector<float>{1, -1}));
    EXPECT_THROW(ka::sharedDataCopy(ka::createCell({1, 1}).get()), std::invalid_argument);
}

TEST_F(CreateTest, FunctionHandleIsStoredClassSixteen) {
    ka::ArrayPtr f = ka::createFunctionHandle("sin");
    EXPECT_EQ(matrix::classId(f.get()), kaFUNCTION_CLASS);
    EXPECT_EQ(ka::functionName(f.get()), "sin");
    EXPECT_TRUE(matrix::detail::noninlined::ka_array_api::kaIsScalar(f.get()));
    EXPECT_THROW(ka::createFunctionHandle(""), std::invalid_argument);
    EXPECT_THROW(ka::functionName(ka::scalar(1.0).get()), std::invalid_argument);
}

TEST_F(CreateTest, ObjectsAnswerTheirClassThroughTheLibrary) {
    const auto stringClass = static_cast<kaClassID>(19);
    struct Case {
        kaClassID stored;
        kaClassID inlineRead;  // what matrix::classId says
    };
    const Case cases[] = {{kaOPAQUE_CLASS, stringClass},
                          {kaOBJECT_CLASS, stringClass},
                          {kaSTRUCT_CLASS, kaSTRUCT_CLASS}};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "stored " << c.stored);
        auto text = std::make_shared<std::vector<std::u16string>>(
            std::vector<std::u16string>{u"a", u"bc"});
        ka::ArrayPtr s = ka::createObject(stringClass, "string", text, {1, 2}, c.stored);
        EXPECT_EQ(s->storedClass, c.stored);
        EXPECT_EQ(matrix::classId(s.get()), c.inlineRead);
            EXPECT_EQ(ka::objectClassId(s.get()), stringClass);
        EXPECT_EQ(ka::objectClassName(s.get()), "string");
        EXPECT_EQ(ka::payloadAs<std::vector<std::u16string>>(s.get()), text.get());
        EXPECT_EQ(ka::payloadAs<std::string>(s.get()), nullptr);
        EXPECT_EQ(s->data, text.get());
        EXPECT_EQ(matrix::numberOfElements(s.get()), 2u);
        EXPECT_EQ(text.use_count(), 2);
        s.reset();
        EXPECT_EQ(text.use_count(), 1);
    }
}

TEST_F(CreateTest, ObjectsNeedAClassOfTheClassSystem) {
    ka::ObjectDescription description;
    description.classId = kaOBJECT_CLASS;
    EXPECT_THROW(ka::createObject(description), std::invalid_argument);
    description.classId = static_cast<kaClassID>(25);
    description.storedClass = kaDOUBLE_CLASS;
    EXPECT_THROW(ka::createObject(description), std::invalid_argument);
    description.storedClass = kaOBJECT_CLASS;
    ka::ArrayPtr bare = ka::createObject(description);
    EXPECT_EQ(matrix::classId(bare.get()), 25);
    EXPECT_EQ(ka::objectPayload(bare.get()), nullptr);
    EXPECT_NE(bare->data, nullptr);
    EXPECT_EQ(ka::objectClassName(ka::scalar(1.0).get()), "");  // plain arrays are no objects
}

}  // namespace
