// The alternatives besides arrays (wildcard equality of the object types, the relations of the
// string shapes, the three forms of a literal flag) and the shared vocabulary: the fold of
// support levels, its printed form and the set of numeric element classes.
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
    const struct {
        OrroObjectTypes other;
        bool equal;
    } cases[] = {
        {OrroObjectTypes(c25, 3, false), true},  // the flag is not looked at
        {OrroObjectTypes(kaUNKNOWN_CLASS, 3, false), true},
        {OrroObjectTypes(c25, SIZE_MAX, false), true},
        {OrroObjectTypes(kaUNKNOWN_CLASS, 4, true), false},
        {OrroObjectTypes(classId(26), SIZE_MAX, true), false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.other.toString());
        EXPECT_EQ(object == c.other, c.equal);
        EXPECT_EQ(c.other == object, c.equal);
        const OrroObjectPlaceTypes place(object.classId, object.variantId);
        EXPECT_EQ(place == OrroObjectPlaceTypes(c.other.classId, c.other.variantId), c.equal);
    }
    const OrroObjectTypes defaulted;
    EXPECT_EQ(defaulted.getZobjClassId(), kaUNKNOWN_CLASS);
    EXPECT_EQ(defaulted.getCppClassVariantId(), SIZE_MAX);
    EXPECT_FALSE(defaulted.typeFlag);
    EXPECT_EQ(OrroObjectPlaceTypes().getCppClassVariantId(), SIZE_MAX);
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
    const struct {
        KeldorStringType a, b;
        bool equal, less, acceptable, compatible;
    } cases[] = {
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

TEST(FlagInputTypeTest, AllThreeFormsAreEqualAndCopiesKeepTheForm) {
    std::u16string owner = u"abc";
    const FlagInputType forms[] = {FlagInputType(std::string("abc")), FlagInputType(std::u16string(u"abc")),
                                   FlagInputType(std::u16string_view{owner})};
    for (const auto& a : forms) {
        for (const auto& b : forms) {
            EXPECT_EQ(a, b);
        }
        EXPECT_EQ(a.getValue(), u"abc");
    }
    EXPECT_EQ(forms[0].value.index(), 0U);
    EXPECT_EQ(forms[2].value.index(), 1U);

    const FlagInputType viewCopy = forms[2];  // NOLINT(performance-unnecessary-copy-initialization)
    ASSERT_EQ(viewCopy.value.index(), 1U);
    EXPECT_EQ(viewCopy.getValue().data(), owner.data());
    FlagInputType owned(std::u16string(u"own"));
    const FlagInputType ownCopy = owned;
    ASSERT_EQ(ownCopy.value.index(), 0U);
    EXPECT_NE(ownCopy.getValue().data(), owned.getValue().data());
    owned = viewCopy;
    EXPECT_EQ(owned.value.index(), 1U);
    EXPECT_EQ(ownCopy.getValue(), u"own");
    owner[0] = u'A';  // a view follows its text
    EXPECT_EQ(viewCopy.getValue(), u"Abc");
}

TEST(CombineTest, FoldsToTheMoreRestrictiveLevel) {
    const L levels[] = {L::EQUIVALENT_SUPPORT, L::ORRO_ONLY, L::NO_SUPPORT_SCALAR_COMPLEX, L::NO_SUPPORT};
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            EXPECT_EQ(combine(levels[i], levels[j]), levels[std::max(i, j)]) << i << ", " << j;
        }
    }
    // An invalid first level is refused, in tests/badinput/DeclarationsTest.cpp; an invalid second
    // level is passed through by the first rows, not refused.
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
