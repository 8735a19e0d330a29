// The shared vocabulary: the fold of support levels, its printed form, the hash mixing step and
// the set of numeric element classes.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <stdexcept>

#include "TypeTestSupport.hpp"

namespace typestest {
namespace {

TEST(CombineTest, FoldsToTheMoreRestrictiveLevel) {
    const L levels[] = {L::EQUIVALENT_SUPPORT, L::ORRO_ONLY, L::NO_SUPPORT_SCALAR_COMPLEX,
                        L::NO_SUPPORT};
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            SCOPED_TRACE(testing::Message() << "level1 " << i << ", level2 " << j);
            EXPECT_EQ(combine(levels[i], levels[j]), levels[std::max(i, j)]);
        }
    }
    for (int first : {4, -1}) {
        try {
            combine(static_cast<L>(first), L::NO_SUPPORT);
            ADD_FAILURE() << "no exception for level1 " << first;
        } catch (const std::invalid_argument& error) {
            EXPECT_STREQ(error.what(), "level1 is not a valid OrroSupportLevel");
        }
    }
    // An invalid second level is passed through by the first rows, not refused.
    EXPECT_EQ(combine(L::EQUIVALENT_SUPPORT, static_cast<L>(7)), static_cast<L>(7));
    EXPECT_EQ(combine(L::NO_SUPPORT_SCALAR_COMPLEX, static_cast<L>(7)),
              L::NO_SUPPORT_SCALAR_COMPLEX);
}

TEST(SupportLevelStreamTest, WritesTheQualifiedNameAndANewline) {
    const std::pair<int, const char*> cases[] = {
        {0, "OrroSupportLevel::EQUIVALENT_SUPPORT\n"},
        {1, "OrroSupportLevel::ORRO_ONLY\n"},
        {2, "OrroSupportLevel::NO_SUPPORT_SCALAR_COMPLEX\n"},
        {3, "OrroSupportLevel::NO_SUPPORT\n"},
        {4, ""},
    };
    for (const auto& [level, text] : cases) {
        std::ostringstream os;
        os << static_cast<L>(level);
        EXPECT_EQ(os.str(), text) << level;
    }
}

TEST(HashCombineTest, IsTheMixingStepAndSignExtendsThirtyTwoBitEnums) {
    for (const std::uint64_t seed : {std::uint64_t{0}, ~std::uint64_t{0}}) {
        for (const std::uint64_t value : {std::uint64_t{1}, std::uint64_t{SIZE_MAX}}) {
            std::size_t mixed = seed;
            hash_combine(mixed, static_cast<std::size_t>(value));
            EXPECT_EQ(mixed, mixStep(seed, value)) << seed << " " << value;
        }
    }
    for (const std::int32_t number : {6, -2147483647 - 1}) {
        std::size_t seed = 0;
        hash_combine(seed, static_cast<OrroSupportLevel>(number));
        EXPECT_EQ(seed, mixStep(0, widened(number))) << number;
    }
    // Fixed in advance, so that the test and the library cannot share a mistake.
    std::size_t seed = 0;
    hash_combine(seed, classId(-1));
    EXPECT_EQ(seed, 0x5c648fb76e902887ULL);
}

TEST(NumericElementClassTest, IsExactlyTheTwelveScalarClasses) {
    for (std::int32_t number = -2; number <= 20; ++number) {
        const bool expected = number == 3 || number == 4 || (number >= 6 && number <= 15);
        EXPECT_EQ(isNumericElementClass(classId(number)), expected) << number;
    }
}

}  // namespace
}  // namespace typestest
