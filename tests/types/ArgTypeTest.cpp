// The union's double dispatch (isAcceptable, isCompatible over all alternatives), the free
// functions that visit one ArgType, the alternatives besides arrays (objects, strings, flags)
// and the shared vocabulary: the fold of support levels, its printed form, the numeric classes.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <vector>

#include "TypeTestSupport.hpp"

namespace typestest {
namespace {

// The candidate columns of both matrices: U F N S P O A1 A2.
const std::vector<ArgType> candidates = {
    UnsupportedArgType(),
    FlagInputType(std::string("on")),
    realScalar(kaDOUBLE_CLASS),
    KeldorStringType(StringShape::SCALAR),
    OrroObjectPlaceTypes(classId(25), 3),
    OrroObjectTypes(classId(25), 3, true),
    array(kaDOUBLE_CLASS, Shape::ROW, 1),
    array(kaUNKNOWN_CLASS, Shape::TWO_D, 2, Density::UNKNOWN, Complexity::UNKNOWN),
};

struct MatrixRow {
    const char* what;
    ArgType type;
    const char* expected;  // one character per candidate column, '1' for true
};

void expectMatrix(const std::vector<MatrixRow>& rows,
                  bool (*relation)(const ArgType&, const ArgType&)) {
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < candidates.size(); ++i) {
            EXPECT_EQ(relation(row.type, candidates[i]), row.expected[i] == '1')
                << row.what << " / " << i;
        }
    }
}

TEST(ArgTypeTest, AcceptanceMatrix) {
    expectMatrix(
        {
            // Columns: U F N S P O A1 A2.
            {"unsupported", UnsupportedArgType(), "10000000"},
            {"flag on", FlagInputType(std::string("on")), "01000000"},
            {"real double", realScalar(kaDOUBLE_CLASS), "00100000"},
            {"complex double", complexScalar(kaDOUBLE_CLASS), "00000000"},
            {"string scalar", KeldorStringType(StringShape::SCALAR), "01010000"},
            {"open place", OrroObjectPlaceTypes(), "00001000"},
            {"open object", OrroObjectTypes(), "01010100"},
            {"object of 19", OrroObjectTypes(classId(19), SIZE_MAX, false), "01010000"},
            {"other object", OrroObjectTypes(classId(26), 0, true), "00000000"},
            {"open relaxed array", openArray(kaUNKNOWN_CLASS, RELAXED_), "11111111"},
            {"strict double row", array(kaDOUBLE_CLASS, Shape::ROW, 1), "00000010"},
            {"relaxed double row", relaxed(array(kaDOUBLE_CLASS, Shape::ROW, 1)), "00100010"},
            // A strict array takes no scalar, even one it would take as a 1-by-1 array.
            {"strict double scalar", array(kaDOUBLE_CLASS, Shape::SCALAR, 0), "00000000"},
            {"relaxed double scalar", relaxed(array(kaDOUBLE_CLASS, Shape::SCALAR, 0)), "00100000"},
            // A relaxed array takes a flag as a scalar string.
            {"relaxed open-element scalar", relaxed(array(kaUNKNOWN_CLASS, Shape::SCALAR, 0)),
             "01110000"},
        },
        &isAcceptable);
}

TEST(ArgTypeTest, CompatibilityMatrix) {
    expectMatrix(
        {
            // Columns: U F N S P O A1 A2.
            {"unsupported", UnsupportedArgType(), "10000001"},
            {"flag on", FlagInputType(std::string("on")), "01000000"},
            {"real double", realScalar(kaDOUBLE_CLASS), "00100010"},
            {"complex double", complexScalar(kaDOUBLE_CLASS), "00000000"},
            {"string scalar", KeldorStringType(StringShape::SCALAR), "01010000"},
            {"open place", OrroObjectPlaceTypes(), "00001001"},
            {"open object", OrroObjectTypes(), "01010101"},
            {"other object", OrroObjectTypes(classId(26), 0, true), "00000000"},
            {"strict double row", array(kaDOUBLE_CLASS, Shape::ROW, 1), "00100010"},
            {"relaxed double 2-D", relaxed(array(kaDOUBLE_CLASS, Shape::TWO_D, 2)), "00100010"},
            {"open array",
             array(kaUNKNOWN_CLASS, Shape::SCALAR, 0, Density::UNKNOWN, Complexity::UNKNOWN),
             "10000001"},
            {"array of class 25", openArray(classId(25)), "00001100"},
            {"open relaxed array", openArray(kaUNKNOWN_CLASS, RELAXED_), "10000001"},
        },
        &isCompatible);
}

TEST(ArgTypeTest, AcceptableToOrroNeedsTheSameAlternative) {
    const struct {
        const char* what;
        ArgType declared, candidate;
        bool acceptable, toOrro;
    } cases[] = {
        {"string takes flag", KeldorStringType(), FlagInputType(std::string("x")), true, false},
        {"object takes string", OrroObjectTypes(), KeldorStringType(), true, false},
        {"relaxed array takes scalar", openArray(kaUNKNOWN_CLASS, RELAXED_),
         realScalar(kaINT8_CLASS), true, false},
        {"relaxed array takes array", openArray(kaUNKNOWN_CLASS, RELAXED_),
         array(kaINT8_CLASS, Shape::ROW, 1), true, true},
        {"strict array refuses array", array(kaINT8_CLASS, Shape::COLUMN, 1),
         array(kaINT8_CLASS, Shape::ROW, 1), false, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(isAcceptable(c.declared, c.candidate), c.acceptable) << c.what;
        EXPECT_EQ(isAcceptableToOrro(c.declared, c.candidate), c.toOrro) << c.what;
    }
}

TEST(ArgTypeTest, SupportLevelsPerAlternative) {
    constexpr L EQ = L::EQUIVALENT_SUPPORT, NO = L::NO_SUPPORT;
    const struct {
        ArgType type;
        L input, output;
    } cases[] = {
        {UnsupportedArgType(), NO, NO},
        {realScalar(kaDOUBLE_CLASS), EQ, EQ},
        {complexScalar(kaDOUBLE_CLASS), NO, NO},
        {KeldorStringType(StringShape::SCALAR), NO, EQ},
        {KeldorStringType(StringShape::ANY), EQ, EQ},
        {OrroObjectPlaceTypes(), EQ, EQ},
        {OrroObjectTypes(classId(25), 1, true), EQ, EQ},
        {array(kaDOUBLE_CLASS, Shape::SCALAR, 0), NO, EQ},
        {array(kaDOUBLE_CLASS, Shape::ROW, 1), EQ, EQ},
        {array(kaCELL_CLASS, Shape::SCALAR, 0), EQ, EQ},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(getOrroSupportLevel(c.type, IN), c.input) << c.type;
        EXPECT_EQ(getOrroSupportLevel(c.type, OUT), c.output) << c.type;
    }
}

TEST(ArgTypeTest, GreaterPrecedenceTypesAndSkipping) {
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        EXPECT_TRUE(getGreaterPrecedenceTypes(candidates[i]).empty()) << i;
        EXPECT_EQ(skipDuringInvoke(candidates[i]), i == 1) << i;  // only flags
    }
    const ArgType any = KeldorStringType(StringShape::ANY);
    EXPECT_EQ(getGreaterPrecedenceTypes(any), std::vector<ArgType>{any});
    // Arrays go into the array alternative, scalars into the scalar one, in the same order.
    EXPECT_EQ(getGreaterPrecedenceTypes(relaxed(array(kaDOUBLE_CLASS, Shape::ROW, 1))),
              (std::vector<ArgType>{relaxed(array(kaDOUBLE_CLASS, Shape::EMPTY_ROW, 0)),
                                    realScalar(kaDOUBLE_CLASS)}));
}

TEST(ArgTypeTest, ElementWiseArrayTypes) {
    const ArgType anyInt8 = relaxed(array(kaINT8_CLASS, Shape::UNKNOWN, ANY_DIM));
    const std::pair<ArgType, ArgType> converted[] = {
        {complexScalar(kaDOUBLE_CLASS), array(kaDOUBLE_CLASS, Shape::UNKNOWN, ANY_DIM,
                                              Density::FULL, Complexity::COMPLEX, RELAXED_)},
        {realScalar(kaINT8_CLASS), anyInt8},
        {array(kaINT8_CLASS, Shape::ROW, 1), anyInt8},
        {relaxed(array(kaINT8_CLASS, Shape::ND, 3)), anyInt8},
    };
    for (const auto& [type, expected] : converted) {
        EXPECT_EQ(asElementWiseArrayType(type), expected)
            << type;  // every field, tolerance and dim too
    }
    const ArgType unchanged[] = {
        realScalar(kaVOID_CLASS),
        array(kaDOUBLE_CLASS, Shape::TWO_D, 2, Density::SPARSE),
        array(kaDOUBLE_CLASS, Shape::ROW, 1, Density::FULL, Complexity::UNKNOWN),
        array(kaCELL_CLASS, Shape::ROW, 1),
        FlagInputType(std::string("x")),
        KeldorStringType(StringShape::SCALAR),
        OrroObjectTypes(classId(25), 3, false),
    };
    for (const auto& type : unchanged) EXPECT_EQ(asElementWiseArrayType(type), type) << type;
}

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
    const OrroObjectPlaceTypes place(object.classId, object.variantId);
    for (const auto& c : cases) {
        EXPECT_EQ(object == c.other, c.equal) << c.other;
        EXPECT_EQ(c.other == object, c.equal) << c.other;
        EXPECT_EQ(place == OrroObjectPlaceTypes(c.other.classId, c.other.variantId), c.equal)
            << c.other;
    }
    // Strings and flags are objects of the fixed string class.
    for (const OrroObjectTypes& string : {OrroObjectTypes(FlagInputType(std::u16string(u"x"))),
                                          OrroObjectTypes(KeldorStringType(StringShape::ANY))}) {
        EXPECT_TRUE(string.classId == classId(19) && string.variantId == 0U && string.typeFlag);
    }
}

TEST(KeldorStringTypeTest, RelationsBetweenShapes) {
    EXPECT_EQ(KeldorStringType().getShape(), StringShape::ANY);
    EXPECT_EQ(KeldorStringType(FlagInputType(std::u16string(u"x"))).getShape(),
              StringShape::SCALAR);
    const KeldorStringType scalar(StringShape::SCALAR), any(StringShape::ANY);
    EXPECT_TRUE(scalar == scalar && any == any && !(scalar == any));
    EXPECT_TRUE(scalar < scalar && any < any && scalar < any &&
                !(any < scalar));  // equal shapes: "less" both ways
    EXPECT_TRUE(scalar.isAcceptable(scalar) && any.isAcceptable(any) && any.isAcceptable(scalar));
    EXPECT_FALSE(scalar.isAcceptable(any));
    EXPECT_TRUE(scalar.isCompatible(scalar) && any.isCompatible(any) && scalar.isCompatible(any));
    EXPECT_FALSE(any.isCompatible(scalar));
}

// UTF-8 and UTF-16 texts are owned, a view is not: a copy of a view follows its text.
TEST(FlagInputTypeTest, AllThreeFormsAreEqualAndCopiesKeepTheForm) {
    std::u16string owner = u"abc";
    const FlagInputType forms[] = {FlagInputType(std::string("abc")),
                                   FlagInputType(std::u16string(u"abc")),
                                   FlagInputType(std::u16string_view{owner})};
    EXPECT_TRUE(forms[0] == forms[1] && forms[1] == forms[2] && forms[2] == forms[0]);
    FlagInputType owned(std::u16string(u"own"));
    const FlagInputType ownCopy = owned;
    EXPECT_NE(ownCopy.getValue().data(), owned.getValue().data());
    owned = forms[2];
    owner[0] = u'A';
    EXPECT_EQ(owned.getValue(), u"Abc");
    EXPECT_EQ(ownCopy.getValue(), u"own");
}

// The fold of support levels, the printed level and the numeric element classes.
TEST(VocabularyTest, CombineStreamAndNumericClasses) {
    const L levels[] = {L::EQUIVALENT_SUPPORT, L::ORRO_ONLY, L::NO_SUPPORT_SCALAR_COMPLEX,
                        L::NO_SUPPORT};
    for (int i = 0; i < 4; ++i) {
        for (int j = 0; j < 4; ++j) {
            EXPECT_EQ(combine(levels[i], levels[j]), levels[std::max(i, j)]) << i << ", " << j;
        }
    }
    // An invalid first level is refused (tests/badinput); an invalid second one is not.
    EXPECT_EQ(combine(L::EQUIVALENT_SUPPORT, static_cast<L>(7)), static_cast<L>(7));
    EXPECT_EQ(combine(L::NO_SUPPORT_SCALAR_COMPLEX, static_cast<L>(7)),
              L::NO_SUPPORT_SCALAR_COMPLEX);
    std::ostringstream os;
    for (int level = 0; level <= 4; ++level) os << static_cast<L>(level);
    EXPECT_EQ(os.str(),
              "OrroSupportLevel::EQUIVALENT_SUPPORT\nOrroSupportLevel::ORRO_ONLY\n"
              "OrroSupportLevel::NO_SUPPORT_SCALAR_COMPLEX\nOrroSupportLevel::NO_SUPPORT\n");
    for (std::int32_t number = -2; number <= 20; ++number) {
        const bool expected = number == 3 || number == 4 || (number >= 6 && number <= 15);
        EXPECT_EQ(isNumericElementClass(classId(number)), expected) << number;
    }
}

}  // namespace
}  // namespace typestest
