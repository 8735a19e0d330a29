// The shared vocabulary: the fold of support levels, its printed form, the hash mixing step and
// the set of numeric element classes.
#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>

#include "TypeTestSupport.hpp"

namespace typestest {
namespace {

using L = OrroSupportLevel;

TEST(CombineTest, FoldsToTheMoreRestrictiveLevel) {
    // Rows level1, columns level2, in the order of the enum.
    const L levels[] = {L::EQUIVALENT_SUPPORT, L::ORRO_ONLY, L::NO_SUPPORT_SCALAR_COMPLEX,
                        L::NO_SUPPORT};
    const L expected[4][4] = {
        {L::EQUIVALENT_SUPPORT, L::ORRO_ONLY, L::NO_SUPPORT_SCALAR_COMPLEX, L::NO_SUPPORT},
        {L::ORRO_ONLY, L::ORRO_ONLY, L::NO_SUPPORT_SCALAR_COMPLEX, L::NO_SUPPORT},
        {L::NO_SUPPORT_SCALAR_COMPLEX, L::NO_SUPPORT_SCALAR_COMPLEX, L::NO_SUPPORT_SCALAR_COMPLEX,
         L::NO_SUPPORT},
        {L::NO_SUPPORT, L::NO_SUPPORT, L::NO_SUPPORT, L::NO_SUPPORT},
    };
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            SCOPED_TRACE(testing::Message() << "level1 " << i << ", level2 " << j);
            EXPECT_EQ(combine(levels[i], levels[j]), expected[i][j]);
        }
    }
}

TEST(CombineTest, ThrowsForAnInvalidFirstLevelOnly) {
    for (int second : {0, 3, 4, -1}) {
        SCOPED_TRACE(second);
        const auto level2 = static_cast<L>(second);
        for (int first : {4, -1, 100}) {
            try {
                combine(static_cast<L>(first), level2);
                ADD_FAILURE() << "no exception for level1 " << first;
            } catch (const std::invalid_argument& error) {
                EXPECT_STREQ(error.what(), "level1 is not a valid OrroSupportLevel");
            }
        }
    }
    // An invalid second level is passed through by the first rows, not refused.
    EXPECT_EQ(combine(L::EQUIVALENT_SUPPORT, static_cast<L>(7)), static_cast<L>(7));
    EXPECT_EQ(combine(L::NO_SUPPORT_SCALAR_COMPLEX, static_cast<L>(7)),
              L::NO_SUPPORT_SCALAR_COMPLEX);
}

TEST(SupportLevelStreamTest, WritesTheQualifiedNameAndANewline) {
    const struct {
        int level;
        const char* text;
    } cases[] = {
        {0, "OrroSupportLevel::EQUIVALENT_SUPPORT\n"},
        {1, "OrroSupportLevel::ORRO_ONLY\n"},
        {2, "OrroSupportLevel::NO_SUPPORT_SCALAR_COMPLEX\n"},
        {3, "OrroSupportLevel::NO_SUPPORT\n"},
        {4, ""},
        {-1, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.level);
        std::ostringstream os;
        os << static_cast<L>(c.level);
        EXPECT_EQ(os.str(), c.text);
    }
}

TEST(HashCombineTest, IsTheWrittenOutMixingStep) {
    const std::uint64_t values[] = {0, 1, 6, 0x9e3779b9, SIZE_MAX, 0x8000000000000000ULL};
    for (const std::uint64_t seed : {std::uint64_t{0}, std::uint64_t{42}, ~std::uint64_t{0}}) {
        for (const std::uint64_t value : values) {
            SCOPED_TRACE(testing::Message() << seed << " " << value);
            std::size_t mixed = seed;
            hash_combine(mixed, static_cast<std::size_t>(value));
            EXPECT_EQ(mixed, mixStep(seed, value));
        }
    }
}

TEST(HashCombineTest, SignExtendsThirtyTwoBitEnums) {
    for (const std::int32_t number : {0, 6, 19, -1, -2147483647 - 1}) {
        SCOPED_TRACE(number);
        std::size_t seed = 0;
        hash_combine(seed, classId(number));
        EXPECT_EQ(seed, mixStep(0, widened(number)));
        std::size_t levelSeed = 0;
        hash_combine(levelSeed, static_cast<OrroSupportLevel>(number));
        EXPECT_EQ(levelSeed, mixStep(0, widened(number)));
    }
    // One value fixed in advance, so that the test and the library cannot share a mistake.
    std::size_t seed = 0;
    hash_combine(seed, classId(-1));
    EXPECT_EQ(seed, 0x5c648fb76e902887ULL);
}

TEST(NumericElementClassTest, IsExactlyTheTwelveScalarClasses) {
    for (std::int32_t number = -2; number <= 20; ++number) {
        SCOPED_TRACE(number);
        const bool expected = number == 3 || number == 4 || (number >= 6 && number <= 15);
        EXPECT_EQ(isNumericElementClass(classId(number)), expected);
    }
}

}  // namespace
}  // namespace typestest
