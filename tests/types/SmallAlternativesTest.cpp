// The alternatives besides arrays (objects, strings, flags) and the shared vocabulary: the fold
// of support levels, its printed form, the numeric element classes.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <string>

#include "TypeTestSupport.hpp"

namespace typestest {
namespace {

TEST(OrroObjectTypesTest, WildcardsInEquality) {
    const kaClassID c25 = classId(25);
    const OrroObjectTypes object(c25, 3, true);
    const struct { OrroObjectTypes other; bool equal; } cases[] = {
        {OrroObjectTypes(c25, 3, false), true},  // the flag is not looked at
        {OrroObjectTypes(kaUNKNOWN_CLASS, 3, false), true},
        {OrroObjectTypes(c25, SIZE_MAX, false), true},
        {OrroObjectTypes(kaUNKNOWN_CLASS, 4, true), false},
        {OrroObjectTypes(classId(26), SIZE_MAX, true), false},
    };
    const OrroObjectPlaceTypes place(object.classId, object.variantId);
    for (const auto& c : cases) {
        EXPECT_EQ(object == c.other, c.equal) << c.other;
        EXPECT_EQ(c.other == object, c.equal) << c.other;
        EXPECT_EQ(place == OrroObjectPlaceTypes(c.other.classId, c.other.variantId), c.equal) << c.other;
    }
    // Strings and flags are objects of the fixed string class.
    for (const OrroObjectTypes& string : {OrroObjectTypes(FlagInputType(std::u16string(u"x"))),
                                          OrroObjectTypes(KeldorStringType(StringShape::ANY))}) {
        EXPECT_EQ(string.classId, classId(19));
        EXPECT_EQ(string.variantId, 0U);
        EXPECT_TRUE(string.typeFlag);
    }
}

TEST(KeldorStringTypeTest, RelationsBetweenShapes) {
    EXPECT_EQ(KeldorStringType().getShape(), StringShape::ANY);
    EXPECT_EQ(KeldorStringType(FlagInputType(std::u16string(u"x"))).getShape(), StringShape::SCALAR);
    const KeldorStringType scalar(StringShape::SCALAR);
    const KeldorStringType any(StringShape::ANY);
    const struct { KeldorStringType a, b; bool equal, less, acceptable, compatible; } cases[] = {
        {scalar, scalar, true, true, true, true},  // equal shapes are "less" both ways
        {any, any, true, true, true, true},
        {scalar, any, false, true, false, true},
        {any, scalar, false, false, true, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.a << " vs " << c.b);
        EXPECT_EQ(c.a == c.b, c.equal);
        EXPECT_EQ(c.a < c.b, c.less);
        EXPECT_EQ(c.a.isAcceptable(c.b), c.acceptable);
        EXPECT_EQ(c.a.isCompatible(c.b), c.compatible);
    }
}

// UTF-8 and UTF-16 texts are owned, a view is not: a copy of a view follows its text.
TEST(FlagInputTypeTest, AllThreeFormsAreEqualAndCopiesKeepTheForm) {
    std::u16string owner = u"abc";
    const FlagInputType forms[] = {FlagInputType(std::string("abc")), FlagInputType(std::u16string(u"abc")),
                                   FlagInputType(std::u16string_view{owner})};
    for (const auto& a : forms) {
        for (const auto& b : forms) EXPECT_EQ(a, b);
    }
    FlagInputType owned(std::u16string(u"own"));
    const FlagInputType ownCopy = owned;
    EXPECT_NE(ownCopy.getValue().data(), owned.getValue().data());
    owned = forms[2];
    owner[0] = u'A';
    EXPECT_EQ(owned.getValue(), u"Abc");
    EXPECT_EQ(ownCopy.getValue(), u"own");
}

TEST(CombineTest, FoldsToTheMoreRestrictiveLevel) {
    const L levels[] = {L::EQUIVALENT_SUPPORT, L::ORRO_ONLY, L::NO_SUPPORT_SCALAR_COMPLEX, L::NO_SUPPORT};
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            EXPECT_EQ(combine(levels[i], levels[j]), levels[std::max(i, j)]) << i << ", " << j;
        }
    }
    // An invalid first level is refused (tests/badinput); an invalid second one is not.
    EXPECT_EQ(combine(L::EQUIVALENT_SUPPORT, static_cast<L>(7)), static_cast<L>(7));
    EXPECT_EQ(combine(L::NO_SUPPORT_SCALAR_COMPLEX, static_cast<L>(7)), L::NO_SUPPORT_SCALAR_COMPLEX);
}

TEST(SupportLevelStreamTest, WritesTheQualifiedNameAndANewline) {
    std::ostringstream os;
    for (int level = 0; level <= 4; ++level) os << static_cast<L>(level);
    EXPECT_EQ(os.str(),
              "OrroSupportLevel::EQUIVALENT_SUPPORT\nOrroSupportLevel::ORRO_ONLY\n"
              "OrroSupportLevel::NO_SUPPORT_SCALAR_COMPLEX\nOrroSupportLevel::NO_SUPPORT\n");
}

TEST(NumericElementClassTest, IsExactlyTheTwelveScalarClasses) {
    for (std::int32_t number = -2; number <= 20; ++number) {
        const bool expected = number == 3 || number == 4 || (number >= 6 && number <= 15);
        EXPECT_EQ(isNumericElementClass(classId(number)), expected) << number;
    }
}

}  // namespace
}  // namespace typestest
