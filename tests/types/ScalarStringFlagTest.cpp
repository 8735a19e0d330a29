// The three small alternatives: numeric scalars, strings and literal flags.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "TypeTestSupport.hpp"

namespace typestest {
namespace {

TEST(NumericScalarTypesTest, HashOrderAndDefaults) {
    // The hash is the element alone: the complexity is not mixed in.
    for (const std::int32_t element : {6, -1}) {
        EXPECT_EQ(realScalar(classId(element)).hash(), widened(element));
        EXPECT_EQ(complexScalar(classId(element)).hash(), widened(element));
    }
    EXPECT_LT(realScalar(kaDOUBLE_CLASS), complexScalar(kaDOUBLE_CLASS));
    EXPECT_LT(complexScalar(kaDOUBLE_CLASS), realScalar(kaSINGLE_CLASS));
    EXPECT_LT(realScalar(classId(-1)), realScalar(kaUNKNOWN_CLASS));  // signed, no unknown-last
    std::vector<NumericScalarTypes> values;
    for (std::int32_t element = -2; element <= 20; ++element) {
        values.push_back(realScalar(classId(element)));
        values.push_back(complexScalar(classId(element)));
    }
    expectStrictWeakOrder(values);
    EXPECT_EQ(NumericScalarTypes(), realScalar(kaUNKNOWN_CLASS));
}

TEST(KeldorStringTypeTest, RelationsBetweenShapes) {
    EXPECT_EQ(KeldorStringType().getShape(), StringShape::ANY);
    EXPECT_EQ(KeldorStringType(FlagInputType(std::u16string(u"x"))).getShape(),
              StringShape::SCALAR);
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
        EXPECT_EQ(c.a < c.b, c.less);
        EXPECT_EQ(c.a.isAcceptable(c.b), c.acceptable);
        EXPECT_EQ(c.a.isCompatible(c.b), c.compatible);
    }
}

TEST(KeldorStringTypeTest, TextAndHash) {
    const KeldorStringType scalar(StringShape::SCALAR);
    const KeldorStringType any(StringShape::ANY);
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

TEST(FlagInputTypeTest, AllThreeFormsAreEqualAndHashFnv1aOverTheBytes) {
    const std::u16string owner = u"abc";
    const FlagInputType forms[] = {FlagInputType(std::string("abc")),
                                   FlagInputType(std::u16string(u"abc")),
                                   FlagInputType(std::u16string_view{owner})};
    for (const auto& a : forms) {
        for (const auto& b : forms) {
            EXPECT_EQ(a, b);
        }
        EXPECT_EQ(a.hash(), 0xcec64e155111225dULL);
        EXPECT_EQ(a.getValue(), u"abc");
    }
    EXPECT_EQ(forms[0].value.index(), 0U);
    EXPECT_EQ(forms[2].value.index(), 1U);
    for (const std::u16string text : {u"", u"\u0100", u"\uffff\u0001", u"\u00e9t\u00e9"}) {
        SCOPED_TRACE(testing::Message() << text.size() << " units");
        EXPECT_EQ(FlagInputType(text).hash(), fnv1a(text));
    }
}

TEST(FlagInputTypeTest, CopiesKeepTheForm) {
    std::u16string owner = u"view";
    const FlagInputType viewed(std::u16string_view{owner});
    const FlagInputType viewCopy = viewed;  // NOLINT(performance-unnecessary-copy-initialization)
    ASSERT_EQ(viewCopy.value.index(), 1U);
    EXPECT_EQ(viewCopy.getValue().data(), owner.data());

    FlagInputType owned(std::u16string(u"own"));
    const FlagInputType ownCopy = owned;
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
    EXPECT_LT(flag(u"\u7fff"), flag(u"\u8000"));  // unsigned units
    EXPECT_NE(flag(u"Abc"), flag(u"abc"));        // no folding of case
    std::vector<FlagInputType> values;
    for (const char16_t* text : {u"", u"a", u"ab", u"abc", u"B", u"\u8000", u"\uffff", u"a\uffff"}) {
        values.push_back(flag(text));
    }
    values.push_back(flag(std::u16string(u"abc\0", 4)));
    expectStrictWeakOrder(values);
}

TEST(FlagInputTypeTest, TextIsUtf8AndNotEscaped) {
    EXPECT_EQ(FlagInputType(std::u16string(u"a\"b\u00e9")).toString(),
              "keldor_string<literal_flag<\"a\"b\xc3\xa9\">>");
    EXPECT_EQ(FlagInputType(std::string()).toString(), "keldor_string<literal_flag<\"\">>");
}

}  // namespace
}  // namespace typestest
