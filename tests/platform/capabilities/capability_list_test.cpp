#include <capabilities/CapabilityList.hpp>

#include <gtest/gtest.h>

#include <sstream>

namespace {

using capabilities::CapabilityList;

TEST(CapabilityList, BitMasksAndTheirPrintedForm) {
    CapabilityList list(0x1);
    list.set(0x8 | 0x80000000u).clear(0x1 | 0x2);  // clearing an absent bit changes nothing
    EXPECT_EQ(list, CapabilityList(0x80000008u));
    EXPECT_FALSE(list.empty());
    EXPECT_TRUE(CapabilityList(0x10).clear(0x10).empty());
    EXPECT_TRUE(CapabilityList(0x5).test(0x5));
    EXPECT_FALSE(CapabilityList(0x5).test(0x3));  // test wants every bit, testAny one
    EXPECT_TRUE(CapabilityList(0x5).testAny(0x3));
    EXPECT_FALSE(CapabilityList(0x5).testAny(0xa));

    std::ostringstream out;
    out << CapabilityList(0xa) << ' ' << CapabilityList(0xffffffffu);
    EXPECT_EQ(out.str(), "CapabilityList(0x0000000a) CapabilityList(0xffffffff)");
}

}  // namespace
