// The union's double dispatch: isAcceptable and isCompatible over all alternatives, and the
// free functions that visit one ArgType.
#include <gtest/gtest.h>

#include <vector>

#include "TypeTestSupport.hpp"

namespace typestest {
namespace {

// The candidate columns of both matrices: U F N S P O A1 A2.
const std::vector<ArgType> candidates = {
    UnsupportedArgType(), FlagInputType(std::string("on")), realScalar(kaDOUBLE_CLASS),
    KeldorStringType(StringShape::SCALAR), OrroObjectPlaceTypes(classId(25), 3), OrroObjectTypes(classId(25), 3, true),
    array(kaDOUBLE_CLASS, Shape::ROW, 1),
    array(kaUNKNOWN_CLASS, Shape::TWO_D, 2, Density::UNKNOWN, Complexity::UNKNOWN),
};

struct MatrixRow {
    const char* what;
    ArgType type;
    const char* expected;  // one character per candidate column, '1' for true
};

void expectMatrix(const std::vector<MatrixRow>& rows, bool (*relation)(const ArgType&, const ArgType&)) {
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < candidates.size(); ++i) {
            EXPECT_EQ(relation(row.type, candidates[i]), row.expected[i] == '1') << row.what << " / " << i;
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
    const struct { const char* what; ArgType declared, candidate; bool acceptable, toOrro; } cases[] = {
        {"string takes flag", KeldorStringType(), FlagInputType(std::string("x")), true, false},
        {"object takes string", OrroObjectTypes(), KeldorStringType(), true, false},
        {"relaxed array takes scalar", openArray(kaUNKNOWN_CLASS, RELAXED_), realScalar(kaINT8_CLASS), true, false},
        {"relaxed array takes array", openArray(kaUNKNOWN_CLASS, RELAXED_), array(kaINT8_CLASS, Shape::ROW, 1), true,
         true},
        {"strict array refuses array", array(kaINT8_CLASS, Shape::COLUMN, 1), array(kaINT8_CLASS, Shape::ROW, 1), false,
         false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(isAcceptable(c.declared, c.candidate), c.acceptable) << c.what;
        EXPECT_EQ(isAcceptableToOrro(c.declared, c.candidate), c.toOrro) << c.what;
    }
}

TEST(ArgTypeTest, SupportLevelsPerAlternative) {
    constexpr L EQ = L::EQUIVALENT_SUPPORT, NO = L::NO_SUPPORT;
    const struct { ArgType type; L input, output; } cases[] = {
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
              (std::vector<ArgType>{relaxed(array(kaDOUBLE_CLASS, Shape::EMPTY_ROW, 0)), realScalar(kaDOUBLE_CLASS)}));
}

TEST(ArgTypeTest, ElementWiseArrayTypes) {
    const ArgType anyInt8 = relaxed(array(kaINT8_CLASS, Shape::UNKNOWN, ANY_DIM));
    const std::pair<ArgType, ArgType> converted[] = {
        {complexScalar(kaDOUBLE_CLASS),
         array(kaDOUBLE_CLASS, Shape::UNKNOWN, ANY_DIM, Density::FULL, Complexity::COMPLEX, RELAXED_)},
        {realScalar(kaINT8_CLASS), anyInt8},
        {array(kaINT8_CLASS, Shape::ROW, 1), anyInt8},
        {relaxed(array(kaINT8_CLASS, Shape::ND, 3)), anyInt8},
    };
    for (const auto& [type, expected] : converted) {
        EXPECT_EQ(asElementWiseArrayType(type), expected) << type;  // every field, tolerance and dim too
    }
    const ArgType unchanged[] = {
        realScalar(kaVOID_CLASS), array(kaDOUBLE_CLASS, Shape::TWO_D, 2, Density::SPARSE),
        array(kaDOUBLE_CLASS, Shape::ROW, 1, Density::FULL, Complexity::UNKNOWN), array(kaCELL_CLASS, Shape::ROW, 1),
        FlagInputType(std::string("x")), KeldorStringType(StringShape::SCALAR), OrroObjectTypes(classId(25), 3, false),
    };
    for (const auto& type : unchanged) EXPECT_EQ(asElementWiseArrayType(type), type) << type;
}

}  // namespace
}  // namespace typestest
