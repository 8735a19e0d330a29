// The object alternatives: wildcard equality, the order that the sort of variants uses,
// hashes that ignore the flag, and the type expressions.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "TypeTestSupport.hpp"

namespace typestest {
namespace {

const kaClassID c25 = classId(25);
const kaClassID c26 = classId(26);

TEST(OrroObjectTypesTest, WildcardsInEquality) {
    const OrroObjectTypes object(c25, 3, true);
    const struct {
        OrroObjectTypes other;
        bool equal;
    } cases[] = {
        {OrroObjectTypes(c25, 3, false), true},  // the flag is not looked at
        {OrroObjectTypes(kaUNKNOWN_CLASS, 3, false), true},
        {OrroObjectTypes(c25, SIZE_MAX, false), true},
        {OrroObjectTypes(kaUNKNOWN_CLASS, 4, true), false},
        {OrroObjectTypes(c26, SIZE_MAX, true), false},
        {OrroObjectTypes(c25, 4, true), false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.other.toString());
        EXPECT_EQ(object == c.other, c.equal);
        EXPECT_EQ(c.other == object, c.equal);
        EXPECT_EQ(object != c.other, !c.equal);
        const OrroObjectPlaceTypes place(object.classId, object.variantId);
        EXPECT_EQ(place == OrroObjectPlaceTypes(c.other.classId, c.other.variantId), c.equal);
    }
}

TEST(OrroObjectTypesTest, Order) {
    const struct {
        OrroObjectTypes a, b;
        bool less;
    } cases[] = {
        {OrroObjectTypes(c25, 3, true), OrroObjectTypes(c25, 4, false), true},
        {OrroObjectTypes(c25, 3, true), OrroObjectTypes(c25, 3, false), false},
        {OrroObjectTypes(c25, 9, true), OrroObjectTypes(c26, 0, true), true},
        {OrroObjectTypes(c26, 0, true), OrroObjectTypes(c25, 9, true), false},
        // An open class and any positive one are each less than the other.
        {OrroObjectTypes(kaUNKNOWN_CLASS, 1, true), OrroObjectTypes(c25, 1, true), true},
        {OrroObjectTypes(c25, 1, true), OrroObjectTypes(kaUNKNOWN_CLASS, 1, true), true},
        {OrroObjectTypes(c25, 1, true), OrroObjectTypes(classId(-5), 1, true), false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.a.toString() + " < " + c.b.toString());
        EXPECT_EQ(c.a < c.b, c.less);
        EXPECT_EQ(OrroObjectPlaceTypes(c.a.classId, c.a.variantId) <
                      OrroObjectPlaceTypes(c.b.classId, c.b.variantId),
                  c.less);
    }
    // Unequal values sort with open variants last.
    std::vector<OrroObjectTypes> values = {
        OrroObjectTypes(c26, SIZE_MAX, true), OrroObjectTypes(c26, 0, true),
        OrroObjectTypes(c25, SIZE_MAX, true), OrroObjectTypes(c25, 2, true),
        OrroObjectTypes(c25, 0, false)};
    std::sort(values.begin(), values.end());
    const std::vector<std::pair<kaClassID, std::size_t>> expected = {
        {c25, 0}, {c25, 2}, {c25, SIZE_MAX}, {c26, 0}, {c26, SIZE_MAX}};
    for (std::size_t i = 0; i < values.size(); ++i) {
        EXPECT_EQ(std::make_pair(values[i].classId, values[i].variantId), expected[i]) << i;
    }
}

TEST(OrroObjectTypesTest, HashMixesClassThenVariantAndIgnoresTheFlag) {
    EXPECT_EQ(OrroObjectTypes(c25, 3, true).hash(), 0x101113e6ce93b40cULL);
    EXPECT_EQ(OrroObjectTypes(c25, 3, false).hash(), 0x101113e6ce93b40cULL);
    for (const auto& [cls, variant] :
         std::vector<std::pair<std::int32_t, std::size_t>>{{0, SIZE_MAX}, {-1, 0}}) {
        const std::uint64_t expected = mixStep(mixStep(0, widened(cls)), variant);
        EXPECT_EQ(OrroObjectTypes(classId(cls), variant, false).hash(), expected) << cls;
        EXPECT_EQ(OrroObjectPlaceTypes(classId(cls), variant).hash(), expected) << cls;
    }
}

TEST(OrroObjectTypesTest, ConstructorsAndFixedStringClass) {
    const OrroObjectTypes defaulted;
    EXPECT_EQ(defaulted.getZobjClassId(), kaUNKNOWN_CLASS);
    EXPECT_EQ(defaulted.getCppClassVariantId(), SIZE_MAX);
    EXPECT_FALSE(defaulted.typeFlag);
    EXPECT_EQ(OrroObjectPlaceTypes().getCppClassVariantId(), SIZE_MAX);
    for (const OrroObjectTypes& string : {OrroObjectTypes(FlagInputType(std::u16string(u"x"))),
                                          OrroObjectTypes(KeldorStringType(StringShape::ANY))}) {
        EXPECT_EQ(string.classId, classId(19));
        EXPECT_EQ(string.variantId, 0U);
        EXPECT_TRUE(string.typeFlag);
    }
}

TEST(OrroObjectTypesTest, TypeExpressions) {
    const struct {
        ArgType type;
        std::size_t index;
        const char* input;
        const char* output;
    } cases[] = {
        {OrroObjectTypes(), 2, "orro_object<$classid2,$variantid2,$bool2,$subType2>",
         "orro_object"},
        {OrroObjectTypes(c25, 3, false), 0, "orro_object<25,3, false,$subType0>",
         "orro_object<25,3, false,nil>"},
        // An open type writes the flag variable even though the flag is set.
        {OrroObjectTypes(c25, SIZE_MAX, true), 2, "orro_object<25,$variantid2,$bool2,$subType2>",
         "orro_object"},
        {OrroObjectTypes(kaUNKNOWN_CLASS, 7, false), 11,
         "orro_object<$classid11,7,$bool11,$subType11>", "orro_object"},
        {OrroObjectTypes(classId(-4), 0, true), 1, "orro_object<-4,0, true,$subType1>",
         "orro_object<-4,0, true,nil>"},
        {OrroObjectPlaceTypes(c25, 3), 1, "orro_object_place<25,3>", "orro_object_place<25,3>"},
        {OrroObjectPlaceTypes(c25, SIZE_MAX), 4, "orro_object_place<25,$variantid4>",
         "orro_object_place"},
        {OrroObjectPlaceTypes(kaUNKNOWN_CLASS, 0), 0, "orro_object_place<$classid0,0>",
         "orro_object_place"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.input);
        EXPECT_EQ(toString(c.type, IN, c.index), c.input);
        EXPECT_EQ(toString(c.type, OUT, c.index), c.output);
    }
    EXPECT_EQ(OrroObjectTypes(c25, 3, true).toString(), "orro_object<25,3, true,$subType0>");
    EXPECT_EQ(OrroObjectPlaceTypes().toString(), "orro_object_place<$classid0,$variantid0>");
}

}  // namespace
}  // namespace typestest
