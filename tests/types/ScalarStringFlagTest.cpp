// The three small alternatives: numeric scalars, strings and literal flags.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "OrderChecks.hpp"
#include "TypeTestSupport.hpp"

namespace typestest {
namespace {

TEST(NumericScalarTypesTest, PrintsTheElementName) {
    const struct {
        std::int32_t element;
        const char* real;
        const char* complex;
    } cases[] = {
        {3, "boolean", "boolean"},
        {4, "kaChar", "kaChar"},
        {6, "double", "complex_double"},
        {7, "single", "complex_single"},
        {8, "int8", "int8"},
        {9, "uint8", "uint8"},
        {10, "int16", "int16"},
        {11, "uint16", "uint16"},
        {12, "int32", "int32"},
        {13, "uint32", "uint32"},
        {14, "int64", "int64"},
        {15, "uint64", "uint64"},
        {0, "", ""},
        {1, "", ""},
        {5, "", ""},
        {16, "", ""},
        {19, "", ""},
        {-3, "", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.element);
        EXPECT_EQ(realScalar(classId(c.element)).toString(), c.real);
        EXPECT_EQ(complexScalar(classId(c.element)).toString(), c.complex);
    }
}

TEST(NumericScalarTypesTest, HashIsTheElementAloneAndIgnoresComplexity) {
    for (const std::int32_t element : {6, 15, 0, -1}) {
        SCOPED_TRACE(element);
        EXPECT_EQ(realScalar(classId(element)).hash(), widened(element));
        EXPECT_EQ(complexScalar(classId(element)).hash(), widened(element));
    }
    EXPECT_NE(realScalar(kaDOUBLE_CLASS), complexScalar(kaDOUBLE_CLASS));
}

TEST(NumericScalarTypesTest, OrdersByElementThenComplexity) {
    EXPECT_LT(realScalar(kaDOUBLE_CLASS), complexScalar(kaDOUBLE_CLASS));
    EXPECT_LT(complexScalar(kaDOUBLE_CLASS), realScalar(kaSINGLE_CLASS));
    EXPECT_LT(realScalar(classId(-1)), realScalar(kaUNKNOWN_CLASS));  // signed, no unknown-last
    std::vector<NumericScalarTypes> values;
    for (std::int32_t element = -2; element <= 20; ++element) {
        values.push_back(realScalar(classId(element)));
        values.push_back(complexScalar(classId(element)));
    }
    expectStrictWeakOrder(values);
}

TEST(NumericScalarTypesTest, DefaultsAndLevels) {
    const NumericScalarTypes defaulted;
    EXPECT_EQ(defaulted.getElement(), kaUNKNOWN_CLASS);
    EXPECT_EQ(defaulted.getComplexity(), ScalarComplexity::REAL);
    EXPECT_TRUE(NumericScalarTypes::getGreaterPrecedenceTypes().empty());
    for (const auto direction : {IN, OUT}) {
        EXPECT_EQ(realScalar(kaINT8_CLASS).getOrroSupportLevel(direction),
                  OrroSupportLevel::EQUIVALENT_SUPPORT);
        EXPECT_EQ(complexScalar(kaDOUBLE_CLASS).getOrroSupportLevel(direction),
                  OrroSupportLevel::NO_SUPPORT);
    }
}

TEST(KeldorStringTypeTest, ShapesOfTheConstructors) {
    EXPECT_EQ(KeldorStringType().getShape(), StringShape::ANY);
    EXPECT_EQ(KeldorStringType(FlagInputType(std::u16string(u"x"))).getShape(),
              StringShape::SCALAR);
}

TEST(KeldorStringTypeTest, RelationsBetweenShapes) {
    const KeldorStringType scalar(StringShape::SCALAR);
    const KeldorStringType any(StringShape::ANY);
    const struct {
        KeldorStringType a, b;
        bool equal, less, acceptable, compatible;
    } cases[] = {
        {scalar, scalar, true, true, true, true},
        {any, any, true, true, true, true},
        {scalar, any, false, true, false, true},
        {any, scalar, false, false, true, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.a << " vs " << c.b);
        EXPECT_EQ(c.a == c.b, c.equal);
        EXPECT_EQ(c.a != c.b, !c.equal);
        EXPECT_EQ(c.a < c.b, c.less);
        EXPECT_EQ(c.a.isAcceptable(c.b), c.acceptable);
        EXPECT_EQ(c.a.isCompatible(c.b), c.compatible);
    }
}

TEST(KeldorStringTypeTest, PrecedenceLevelsAndText) {
    const KeldorStringType scalar(StringShape::SCALAR);
    const KeldorStringType any(StringShape::ANY);
    EXPECT_TRUE(scalar.getGreaterPrecedenceTypes().empty());
    EXPECT_EQ(any.getGreaterPrecedenceTypes(), std::vector<KeldorStringType>{any});

    EXPECT_EQ(scalar.getOrroSupportLevel(IN), OrroSupportLevel::NO_SUPPORT);
    EXPECT_EQ(scalar.getOrroSupportLevel(OUT), OrroSupportLevel::EQUIVALENT_SUPPORT);
    EXPECT_EQ(any.getOrroSupportLevel(IN), OrroSupportLevel::EQUIVALENT_SUPPORT);

    EXPECT_EQ(any.toString(IN, 3), "keldor_string<$flag_idx3>");
    EXPECT_EQ(any.toString(OUT, 3), "keldor_string<nil>");
    EXPECT_EQ(scalar.toString(IN, 3), "scalar_keldor_string");
    EXPECT_EQ(scalar.toString(OUT, 0), "keldor_string<nil>");

    std::ostringstream member;
    any.operator<<(member);
    EXPECT_EQ(member.str(), "keldor_string<$flag_idx0>");

    EXPECT_EQ(any.hash(), mixStep(0, 1));
    EXPECT_EQ(scalar.hash(), mixStep(0, 0));
}

// FlagInputType ----------------------------------------------------------------------------

std::uint64_t fnv1a(std::u16string_view text) {
    std::uint64_t hash = 0xcbf29ce484222325ULL;
    for (const char16_t unit : text) {
        for (const unsigned byte : {unit & 0xffU, (unit >> 8) & 0xffU}) {
            hash ^= byte;
            hash *= 0x100000001b3ULL;
        }
    }
    return hash;
}

TEST(FlagInputTypeTest, AllThreeFormsOfOneTextAreEqualAndHashAlike) {
    const std::u16string owner = u"abc";
    const FlagInputType fromUtf8(std::string("abc"));
    const FlagInputType owned(std::u16string(u"abc"));
    const FlagInputType viewed(std::u16string_view{owner});
    const FlagInputType* forms[] = {&fromUtf8, &owned, &viewed};
    for (const auto* a : forms) {
        for (const auto* b : forms) {
            EXPECT_EQ(*a, *b);
        }
        EXPECT_EQ(a->hash(), 0xcec64e155111225dULL);
        EXPECT_EQ(a->getValue(), u"abc");
    }
    EXPECT_EQ(fromUtf8.value.index(), 0U);
    EXPECT_EQ(owned.value.index(), 0U);
    EXPECT_EQ(viewed.value.index(), 1U);
}

TEST(FlagInputTypeTest, HashIsFnv1aOverTheBytes) {
    const std::u16string texts[] = {
        u"", u"a", u"\u0100", u"\uffff\u0001", u"-option", u"\u00e9t\u00e9"};
    for (const auto& text : texts) {
        SCOPED_TRACE(testing::Message() << text.size() << " units");
        EXPECT_EQ(FlagInputType(text).hash(), fnv1a(text));
        EXPECT_EQ(FlagInputType(std::u16string_view{text}).hash(), fnv1a(text));
    }
    EXPECT_EQ(FlagInputType(std::u16string()).hash(), 0xcbf29ce484222325ULL);
}

TEST(FlagInputTypeTest, CopiesKeepTheForm) {
    std::u16string owner = u"view";
    const FlagInputType viewed(std::u16string_view{owner});
    const FlagInputType viewCopy = viewed;  // NOLINT(performance-unnecessary-copy-initialization)
    ASSERT_EQ(viewCopy.value.index(), 1U);
    EXPECT_EQ(viewCopy.getValue().data(), owner.data());

    FlagInputType owned(std::u16string(u"own"));
    FlagInputType ownCopy = owned;
    ASSERT_EQ(ownCopy.value.index(), 0U);
    EXPECT_NE(ownCopy.getValue().data(), owned.getValue().data());
    owned = viewed;
    EXPECT_EQ(owned.value.index(), 1U);
    EXPECT_EQ(ownCopy.getValue(), u"own");

    owner[0] = u'V';  // a view follows its text
    EXPECT_EQ(viewCopy.getValue(), u"View");
}

TEST(FlagInputTypeTest, OrdersByUnsignedCodeUnitsWithPrefixesFirst) {
    const auto flag = [](std::u16string text) { return FlagInputType(std::move(text)); };
    EXPECT_LT(flag(u"ab"), flag(u"abc"));
    EXPECT_LT(flag(u"B"), flag(u"a"));
    EXPECT_LT(flag(u""), flag(u"a"));
    EXPECT_LT(flag(u"a"), flag(u"\uffff"));  // unsigned: 0xffff is the greatest unit
    EXPECT_LT(flag(u"\u7fff"), flag(u"\u8000"));
    EXPECT_NE(flag(u"Abc"), flag(u"abc"));  // no folding of case

    std::vector<FlagInputType> values;
    for (const char16_t* text :
         {u"", u"a", u"ab", u"abc", u"b", u"B", u"\u8000", u"\uffff", u"a\uffff"}) {
        values.push_back(flag(text));
    }
    values.push_back(flag(std::u16string(u"abc\0", 4)));
    expectStrictWeakOrder(values);
}

TEST(FlagInputTypeTest, TextAndLevels) {
    EXPECT_EQ(FlagInputType(std::string("abc")).toString(), "keldor_string<literal_flag<\"abc\">>");
    // Not escaped, and converted to UTF-8.
    EXPECT_EQ(FlagInputType(std::u16string(u"a\"b\u00e9")).toString(),
              "keldor_string<literal_flag<\"a\"b\xc3\xa9\">>");
    EXPECT_EQ(FlagInputType(std::string()).toString(), "keldor_string<literal_flag<\"\">>");
    EXPECT_TRUE(FlagInputType::getGreaterPrecedenceTypes().empty());
    EXPECT_EQ(FlagInputType::getOrroSupportLevel(IN), OrroSupportLevel::EQUIVALENT_SUPPORT);
    EXPECT_EQ(FlagInputType::getOrroSupportLevel(OUT), OrroSupportLevel::EQUIVALENT_SUPPORT);
}

}  // namespace
}  // namespace typestest
