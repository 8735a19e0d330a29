#include <capabilities/CapabilityList.hpp>

#include <gtest/gtest.h>

#include <sstream>

namespace {

using capabilities::CapabilityList;

TEST(CapabilityList, SetClearAndTestFollowBitMasks) {
    struct Case {
        const char* what;
        CapabilityList::Bits start, set, clear, expected;
    };
    const Case cases[] = {
        {"set keeps earlier bits", 0x1, 0x8, 0, 0x9},
        {"clear one of two", 0x9, 0, 0x1, 0x8},
        {"clear of an absent bit changes nothing", 0x8, 0, 0x2, 0x8},
        {"top bit survives", 0, 0x80000000u, 0, 0x80000000u},
        {"set then clear the same bit", 0, 0x10, 0x10, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        CapabilityList list(c.start);
        list.set(c.set).clear(c.clear);
        EXPECT_EQ(list, CapabilityList(c.expected));
        EXPECT_EQ(list.empty(), c.expected == 0);
    }
    const CapabilityList list(0x5);
    EXPECT_TRUE(list.test(0x5));
    EXPECT_FALSE(list.test(0x3));  // test wants every bit, testAny one
    EXPECT_TRUE(list.testAny(0x3));
    EXPECT_FALSE(list.testAny(0xa));
}

TEST(CapabilityList, PrintsFixedWidthHex) {
    std::ostringstream out;
    out << CapabilityList(0xa) << ' ' << CapabilityList(0xffffffffu) << ' ' << CapabilityList();
    EXPECT_EQ(out.str(),
              "CapabilityList(0x0000000a) CapabilityList(0xffffffff) CapabilityList(0x00000000)");
}

}  // namespace
