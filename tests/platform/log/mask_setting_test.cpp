#include <foundation/log/channel_masks.hpp>

#include <gtest/gtest.h>

namespace {

using foundation::log::maskFromSetting;

TEST(MaskSetting, BestMatchingEntryGivesTheMask) {
    struct Case {
        const char* setting;
        const char* channel;
        std::uint32_t expected;
    };
    const Case cases[] = {
        {"builtin2::BuiltinFcn=0x3,builtinservice::registerpkgfcn=256", "builtinservice::registerpkgfcn", 256},
        {"a::b=1", "a::bc", 0},
        {"a::*=4,*=7", "a::b", 4},  // a longer prefix wins whatever the order
        {"a::*=4,a::b=1", "a::b", 1},  // an exact name beats any prefix
        {"x=1,x=2", "x", 2},  // equal patterns: the last wins
        {" x = 0X1f ; y=2 ,", "x", 0x1f},
        {"X=1", "x", 0},  // case-sensitive
        {"x=3,x=0x100000000", "x", 3},
        {"a*b=1", "axb", 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.setting) + " / " + c.channel);
        EXPECT_EQ(maskFromSetting(c.setting, c.channel), c.expected);
    }
}

TEST(MaskSetting, DescribesEachMalformedEntry) {
    std::vector<std::string> problems;
    maskFromSetting("good=1, bad, x=zz, a*b=2, =3", "good", &problems);
    ASSERT_EQ(problems.size(), 4u);
    EXPECT_EQ(problems[0], "'bad': expected pattern=mask");
    EXPECT_EQ(problems[1].rfind("'x=zz': ", 0), 0u);
    EXPECT_EQ(problems[2].rfind("'a*b=2': ", 0), 0u);
    EXPECT_EQ(problems[3].rfind("'=3': ", 0), 0u);
}

}  // namespace
