// Numeric, char, function-handle and object arrays.
#include <gtest/gtest.h>

#include <complex>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <ka/ka.hpp>

#include "array_values.hpp"
#include "live_arrays.hpp"

namespace {

class CreateTest : public testsupport::LiveArrayTest {};

bool aligned64(const void* p) { return reinterpret_cast<std::uintptr_t>(p) % 64 == 0; }

using testsupport::elementsOf;

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
    EXPECT_THROW(matrix::detail::do_create_uninitnumeric({1, 1}, kaCELL_CLASS, kaREAL), std::invalid_argument);
    EXPECT_THROW(matrix::detail::do_create_uninitnumeric({1, 1}, kaLOGICAL_CLASS, kaCOMPLEX),
                 std::invalid_argument);
    EXPECT_THROW(matrix::detail::do_create_uninitnumeric({1, 1}, kaDOUBLE_CLASS, static_cast<kaComplexity>(2)),
                 std::invalid_argument);
    const std::size_t huge[] = {SIZE_MAX / 2, 3};
    EXPECT_THROW(matrix::detail::do_create_uninitnumeric(huge, kaDOUBLE_CLASS, kaREAL), std::bad_alloc);
}

TEST_F(CreateTest, ValuesGoInColumnMajorOrder) {
    ka::ArrayPtr m = ka::fromRows<double>(2, 3, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(elementsOf<double>(m.get()), (std::vector<double>{1, 4, 2, 5, 3, 6}));
    ka::ArrayPtr z = ka::scalar(std::complex<double>(1, 2));
    EXPECT_EQ(elementsOf<double>(z.get()), (std::vector<double>{1, 2}));
    ka::ArrayPtr flags = ka::row({true, false, true});
    EXPECT_EQ(matrix::classId(flags.get()), kaLOGICAL_CLASS);
    EXPECT_EQ(elementsOf<bool>(flags.get()), (std::vector<bool>{true, false, true}));
    EXPECT_THROW(ka::fromRows<float>(2, 2, {1, 2, 3}), std::invalid_argument);  // and leaks nothing

    // UTF-8 in, UTF-16 code units stored: a surrogate pair takes two.
    ka::ArrayPtr text = ka::charArray("h\xC3\xA9\xF0\x9F\x98\x80");
    EXPECT_EQ(matrix::classId(text.get()), kaCHAR_CLASS);
    EXPECT_EQ(elementsOf<char16_t>(text.get()), (std::vector<char16_t>{u'h', u'\u00e9', 0xD83D, 0xDE00}));
}

TEST_F(CreateTest, FunctionHandlesAndObjectsAnswerTheirClassThroughTheLibrary) {
    ka::ArrayPtr f = ka::createFunctionHandle("sin");
    EXPECT_EQ(matrix::classId(f.get()), kaFUNCTION_CLASS);
    EXPECT_EQ(ka::functionName(f.get()), "sin");
    EXPECT_THROW(ka::createFunctionHandle(""), std::invalid_argument);

    // An object stored opaque or as an object reads as its class; one stored as a struct as one.
    const auto stringClass = static_cast<kaClassID>(19);
    for (const kaClassID stored : {kaOPAQUE_CLASS, kaOBJECT_CLASS, kaSTRUCT_CLASS}) {
        SCOPED_TRACE(testing::Message() << "stored " << stored);
        auto text = std::make_shared<std::vector<std::u16string>>(std::vector<std::u16string>{u"a", u"bc"});
        ka::ArrayPtr s = ka::createObject(stringClass, "string", text, {1, 2}, stored);
        EXPECT_EQ(s->storedClass, stored);
        EXPECT_EQ(matrix::classId(s.get()), stored == kaSTRUCT_CLASS ? kaSTRUCT_CLASS : stringClass);
        EXPECT_EQ(ka::objectClassId(s.get()), stringClass);
        EXPECT_EQ(ka::objectClassName(s.get()), "string");
        EXPECT_EQ(ka::payloadAs<std::vector<std::u16string>>(s.get()), text.get());
        EXPECT_EQ(ka::payloadAs<std::string>(s.get()), nullptr);
        EXPECT_EQ(matrix::numberOfElements(s.get()), 2u);
        s.reset();
        EXPECT_EQ(text.use_count(), 1);
    }
    // Only classes of the class system make objects, and only stored as one of those three.
    ka::ObjectDescription description;
    description.classId = kaOBJECT_CLASS;
    EXPECT_THROW(ka::createObject(description), std::invalid_argument);
    description.classId = static_cast<kaClassID>(25);
    description.storedClass = kaDOUBLE_CLASS;
    EXPECT_THROW(ka::createObject(description), std::invalid_argument);
    EXPECT_EQ(ka::objectClassName(ka::scalar(1.0).get()), "");  // plain arrays are no objects
}

}  // namespace
