// The public fields and what the inline reads make of them: field order, class ids, flag
// bits, dimensions in both forms, opaque dimensions and the shape questions.
#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include <ka/ka.hpp>

#include "array_values.hpp"
#include "live_arrays.hpp"

namespace {

using Dims = std::vector<std::size_t>;

using testsupport::dimsOf;

TEST(LayoutTest, FieldsLieInTheirOrderAndComplexNeedsBothBits) {
    EXPECT_EQ(offsetof(kaArray_tag, storedClass), 0u);
    EXPECT_EQ(offsetof(kaArray_tag, refCount), 4u);
    EXPECT_EQ(offsetof(kaArray_tag, pinCount), 8u);
    EXPECT_EQ(offsetof(kaArray_tag, flags), 12u);
    EXPECT_EQ(offsetof(kaArray_tag, dims), 16u);
    EXPECT_EQ(offsetof(kaArray_tag, data), 32u);
    EXPECT_EQ(sizeof(kaClassID), 4u);
    EXPECT_LT(static_cast<kaClassID>(-1), kaUNKNOWN_CLASS);  // signed

    kaArray_tag a{};
    for (const std::uint32_t flags : {0x80u, 0x800u, 0x890u}) {
        a.flags = flags;
        EXPECT_EQ(matrix::isComplex(&a), flags == 0x890u) << std::hex << flags;
    }
    a.flags = 0x10 | 0x80000;
    EXPECT_TRUE(matrix::isSparse(&a));
    EXPECT_TRUE(matrix::isTwoD(&a));
}

TEST(LayoutTest, DimensionsOfTheListForm) {
    const std::size_t list[] = {2, 3, 4};
    kaArray_tag a{};
    a.dims.nd.list = list;
    a.dims.nd.count = 3;
    EXPECT_EQ(dimsOf(&a), (Dims{2, 3, 4}));
    EXPECT_EQ(matrix::numberOfElements(&a), 24u);
    a.dims.nd.count = 0;  // no dimensions: one element
    EXPECT_EQ(matrix::numberOfElements(&a), 1u);
    EXPECT_EQ(matrix::numberOfDimensions(&a), 0u);
}

class ShapeTest : public testsupport::LiveArrayTest {};

TEST_F(ShapeTest, CreationNormalisesDimensions) {
    struct Case {
        Dims given, stored;
        bool twoD, scalar, empty;
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
        EXPECT_EQ(matrix::numberOfDimensions(a.get()), c.stored.size());
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
