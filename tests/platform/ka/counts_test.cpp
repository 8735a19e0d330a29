// The take and release rules and the library's holds, on real arrays so that a
// wrong destruction shows in the live-array count.
#include <gtest/gtest.h>

#include <ka/ka.hpp>

#include "live_arrays.hpp"

namespace {

class CountsTest : public testsupport::LiveArrayTest {};

TEST_F(CountsTest, ReleaseFollowsBothCounts) {
    matrix::releaseReference(nullptr);
    matrix::detail::kaDestroy_deleter{}(nullptr);
    struct Case {
        std::uint32_t first;
        std::int32_t second;
        bool destroyed;
        std::uint32_t firstAfter;
    };
    const Case cases[] = {
        {1, 0, true, 0},   // the last reference
        {1, -1, true, 0},  // a second count that is not positive holds nothing
        {1, 1, false, 0},  // held by the library: lives on with no counted reference
        {5, 3, false, 4},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << "counts (" << c.first << "," << c.second << ")");
        kaArray* a = ka::scalar(1.0).release();
        a->refCount = c.first;
        a->pinCount = c.second;
        matrix::releaseReference(a);
        EXPECT_EQ(alive(), c.destroyed ? 0 : 1);
        if (!c.destroyed) {
            EXPECT_EQ(a->refCount, c.firstAfter);
            EXPECT_EQ(a->pinCount, c.second);
            matrix::destroyArray(a);
        }
    }
}

TEST_F(CountsTest, TakeAddsOneAndClearsOnlyTheTemporaryMark) {
    ka::ArrayPtr a = ka::row({1.0, 2.0});
    const std::uint32_t others = a->flags;
    a->flags |= matrix::flags::temporary | matrix::flags::sparse;
    matrix::takeReference(a.get());
    EXPECT_EQ(a->refCount, 2u);
    EXPECT_EQ(a->flags, others | matrix::flags::sparse);
    a->flags = others;
    matrix::releaseReference(a.get());
    EXPECT_EQ(a->refCount, 1u);
}

}  // namespace
