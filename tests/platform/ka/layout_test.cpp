// The public fields and what the inline reads make of them: field order, class ids, flag
// bits, dimensions in both forms, opaque dimensions and the shape questions.
#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include <ka/ka.hpp>

#include "live_arrays.hpp"

namespace {

using testsupport::LiveArrayTest;
using Dims = std::vector<std::size_t>;

Dims dimsOf(const kaArray* a) {
    std::span<const std::size_t> d = matrix::dimensions(a);
    return {d.begin(), d.end()};
}

TEST(LayoutTest, FieldsLieInTheirOrder) {
    EXPECT_EQ(offsetof(kaArray_tag, storedClass), 0u);
    EXPECT_EQ(offsetof(kaArray_tag, refCount), 4u);
    EXPECT_EQ(offsetof(kaArray_tag, pinCount), 8u);
    EXPECT_EQ(offsetof(kaArray_tag, flags), 12u);
    EXPECT_EQ(offsetof(kaArray_tag, dims), 16u);
    EXPECT_EQ(offsetof(kaArray_tag, data), 32u);
    EXPECT_EQ(sizeof(kaClassID), 4u);
    EXPECT_LT(static_cast<kaClassID>(-1), kaUNKNOWN_CLASS);  // signed
}

TEST(LayoutTest, ComplexNeedsBothBits) {
    struct Case {
        std::uint32_t flags;
        bool complex;
    };
    const Case cases[] = {{0x80, false}, {0x800, false}, {0x880 | 0x10, true}};
    kaArray_tag a{};
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "flags 0x" << std::hex << c.flags);
        a.flags = c.flags;
        EXPECT_EQ(matrix::isComplex(&a), c.complex);
    }
    a.flags = 0x10 | 0x80000;
    EXPECT_TRUE(matrix::isSparse(&a));
    EXPECT_TRUE(matrix::isTwoD(&a));
}

TEST(LayoutTest, DimensionsOfBothForms) {
    const std::size_t list[] = {2, 3, 4, 0};
    struct Case {
        const char* what;
        bool twoD;
        std::size_t word0, count;
        Dims dims;
        std::size_t numel;
    };
    const Case cases[] = {
        {"2-D in the record", true, 3, 4, {3, 4}, 12},
        {"N-d list", false, 0, 3, {2, 3, 4}, 24},
        {"empty list", false, 0, 0, {}, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        kaArray_tag a{};
        if (c.twoD) {
            a.flags = matrix::flags::twoD;
            a.dims.shape[0] = c.word0;
            a.dims.shape[1] = c.count;
        } else {
            a.dims.nd.list = list;
            a.dims.nd.count = c.count;
        }
        EXPECT_EQ(dimsOf(&a), c.dims);
        EXPECT_EQ(matrix::numberOfElements(&a), c.numel);
        EXPECT_EQ(matrix::numberOfDimensions(&a), c.dims.size());
    }
}

class ShapeTest : public LiveArrayTest {};

TEST_F(ShapeTest, CreationNormalisesDimensions) {
    struct Case {
        Dims given, stored;
        bool twoD;
        bool scalar, empty;
        std::size_t n;
    };
    const Case cases[] = {
        {{}, {1, 1}, true, true, false, 1},
        {{5}, {5, 1}, true, false, false, 1},
        {{2, 3, 1, 1}, {2, 3}, true, false, false, 3},
        {{2, 3, 4, 1}, {2, 3, 4}, false, false, false, 12},
        {{0, 3}, {0, 3}, true, false, true, 3},
        {{2, 0, 3}, {2, 0, 3}, false, false, true, 0},
    };
    namespace api = matrix::detail::noninlined::ka_array_api;
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "given " << testing::PrintToString(c.given));
        ka::ArrayPtr a = ka::createNumeric(kaDOUBLE_CLASS, c.given);
        EXPECT_EQ(dimsOf(a.get()), c.stored);
        EXPECT_EQ(matrix::isTwoD(a.get()), c.twoD);
        EXPECT_EQ(api::kaIsScalar(a.get()), c.scalar);
        EXPECT_EQ(api::kaIsEmpty(a.get()), c.empty);
        EXPECT_EQ(api::kaGetN(a.get()), c.n);
    }
}

TEST_F(ShapeTest, OpaqueDimensionsAreCompletedOnFirstRead) {
    for (const Dims& dims : {Dims{2, 3}, Dims{2, 3, 4}}) {
        SCOPED_TRACE(testing::PrintToString(dims));
        ka::ArrayPtr a = ka::createNumeric(kaINT16_CLASS, dims);
        ka::makeDimensionsOpaque(a.get());
        ASSERT_TRUE(a->flags & matrix::flags::opaqueDimensions);
        EXPECT_EQ(a->dims.shape[0], SIZE_MAX);  // stale until completed

        const kaArray* reader = a.get();
        EXPECT_EQ(matrix::numberOfElements(reader), dims[0] * dims[1] * (dims.size() > 2 ? dims[2] : 1));
        EXPECT_FALSE(reader->flags & matrix::flags::opaqueDimensions);
        EXPECT_EQ(dimsOf(reader), dims);
        EXPECT_EQ(matrix::isTwoD(reader), dims.size() == 2);
    }
}

}  // namespace
