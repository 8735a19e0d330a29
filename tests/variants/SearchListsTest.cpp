// The search lists of a builtin: cleanup by rule, distribution by level, and their log. How
// invoke picks among the lists is tests/invoke's.
#include <gtest/gtest.h>

#include <foundation/log/test/memory_sink.hpp>

#include <builtin/variants/BuiltinVariantLists.hpp>

#include "../invoke/InvokeSupport.hpp"

namespace invoketest {
namespace {

using builtinreg::BuiltinVariantLists;
using enum OrroSupportLevel;

std::vector<std::string> names(const std::vector<BuiltinVariant>& list) {
    std::vector<std::string> result;
    for (const BuiltinVariant& v : list) result.push_back(v.cppFunctionName);
    return result;
}

BuiltinVariant named(BuiltinVariant variant, const char* name, OrroSupportLevel level) {
    variant.cppFunctionName = name;
    variant.orroSupportLevel = level;
    return variant;
}

using Names = std::vector<std::string>;

TEST(SearchLists, CleanupByRule) {
    const BuiltinVariant source = doubleVariant("source", {scalar(kaSINGLE_CLASS)});
    const BuiltinVariant otherSource = doubleVariant("other source", {anyArray()});
    // Boxing variants with the double scalar signature, which the declared variant "declared" has too.
    const BuiltinVariant boxed = makeVariant({.in = {scalar()}, .out = {scalar()}});
    const BuiltinVariant boxedInt = makeVariant({.in = {scalar(kaINT32_CLASS)}, .out = {scalar()}});
    // Two boxing variants of one source object, with equal boxed signatures.
    const BuiltinVariant box1 = named(boxingOf(source, boxedInt), "box 1", ORRO_ONLY);
    const BuiltinVariant box2 = named(box1, "box 2", ORRO_ONLY);
    const struct { const char* name; std::vector<BuiltinVariant> variants; Names all; } cases[] = {
        {"an unsupported output goes, though the inputs are fine",
         {doubleVariant("fine"), makeVariant({.in = {scalar()}, .out = {UnsupportedArgType{}}, .name = "bad"})},
         {"fine"}},
        {"equal declared variants both stay",
         {doubleVariant("first"), doubleVariant("second")}, {"first", "second"}},
        {"a boxing variant behind an equal declared one is unreachable",
         {doubleVariant("declared"), named(boxingOf(source, boxed), "boxed", ORRO_ONLY), source},
         {"declared", "source"}},
        {"two boxing variants of one source both stay",
         {box1, source, box2}, {"source", "box 1", "box 2"}},
        {"of two sources, the first in the order stays",
         {source, otherSource, named(boxingOf(source, boxedInt), "box of source", ORRO_ONLY),
          named(boxingOf(otherSource, boxedInt), "box of other", ORRO_ONLY)},
         {"source", "box of source", "other source"}},
        {"a shadowed boxing variant goes",
         {named(doubleVariant("callsback", {scalar(kaINT32_CLASS)}), "callsback", NO_SUPPORT),
          named(boxingOf(otherSource, boxedInt), "box", ORRO_ONLY), otherSource},
         {"callsback", "other source"}},
        {"nothing", {}, {}},
    };
    for (const auto& c : cases) {
        Names all = names(BuiltinVariantLists(std::vector<BuiltinVariant>(c.variants)).all);
        EXPECT_TRUE(std::is_permutation(all.begin(), all.end(), c.all.begin(), c.all.end()))
            << c.name << ": " << ::testing::PrintToString(all);
    }
}

// A NO_SUPPORT variant lowers the variants behind it of the same input count that would take
// its inputs, and those lower others in turn; the output count does not matter.
TEST(SearchLists, ShadowingLowersAndChains) {
    KaArrayTypes strictRow(kaDOUBLE_CLASS, Shape::ROW, KaArrayTypes::Density::FULL,
                           KaArrayTypes::Complexity::NOT_COMPLEX, 1);
    KaArrayTypes openRow = strictRow;  // takes a row of any element
    openRow.element = kaUNKNOWN_CLASS;
    KaArrayTypes openStrictRow = openRow;  // takes only rows of open element
    openRow.tolerance = SignatureTolerance::RELAXED;
    std::vector<BuiltinVariant> variants = {
        named(makeVariant({.in = {strictRow}}), "v", NO_SUPPORT),
        named(makeVariant({.in = {openRow}}), "w1", EQUIVALENT_SUPPORT),
        named(makeVariant({.in = {openStrictRow}, .out = {scalar()}}), "w2", EQUIVALENT_SUPPORT),
        named(makeVariant({.in = {strictRow, strictRow}}), "three", EQUIVALENT_SUPPORT),
    };
    ASSERT_FALSE(isAcceptableToOrro(openStrictRow, strictRow)) << "w2 is lowered only through w1";
    const BuiltinVariantLists lists(std::move(variants));
    EXPECT_EQ(names(lists.all), (Names{"v", "w1", "w2", "three"}));
    for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(lists.all[i].orroSupportLevel, NO_SUPPORT) << i;
    EXPECT_EQ(lists.all[3].orroSupportLevel, EQUIVALENT_SUPPORT);
    EXPECT_EQ(names(lists.searchedByOrro), Names{"three"});
}

TEST(SearchLists, DistributionByLevel) {
    const BuiltinVariantLists lists({
        {named(doubleVariant("equivalent"), "equivalent", EQUIVALENT_SUPPORT),
         named(doubleVariant("orro only", {scalar(kaSINGLE_CLASS)}), "orro only", ORRO_ONLY)},
        {named(doubleVariant("complex", {scalar(kaDOUBLE_CLASS, true)}), "complex", NO_SUPPORT_SCALAR_COMPLEX),
         named(doubleVariant("none", {scalar(kaINT8_CLASS)}), "none", NO_SUPPORT)},
    });
    EXPECT_EQ(names(lists.all), (Names{"equivalent", "complex", "orro only", "none"}));
    EXPECT_EQ(names(lists.searchedByOrro), (Names{"equivalent", "complex", "orro only"}));
    EXPECT_EQ(names(lists.searchedByInvokeAfterOrro), Names{"none"});
    EXPECT_EQ(names(lists.searchedByInvokeAfterOrroComplexScalarRhs), (Names{"complex", "none"}));
    EXPECT_EQ(lists.searchedByInvokeAfterOrroComplexScalarRhs[0].orroSupportLevel, NO_SUPPORT_SCALAR_COMPLEX);
    EXPECT_EQ(names(lists.searchedByInvokeNoOrro), (Names{"equivalent", "complex", "none"}));

    // Without an engine variant that takes a complex scalar the two lists after Orro are alike.
    const BuiltinVariantLists real({lists.all[0], lists.all[3]});
    EXPECT_EQ(names(real.searchedByInvokeAfterOrroComplexScalarRhs), names(real.searchedByInvokeAfterOrro));
    EXPECT_EQ(BuiltinVariantLists(BuiltinVariantLists::concatenateVariantSpans({lists.all, real.all})).all.size(), 6u);
}

TEST(SearchLists, RecordsOfEachStageAndList) {
    foundation::log::test::scoped_channel_mask cleanupMask("builtin2::cleanupVariants", 4);
    foundation::log::test::scoped_channel_mask listsMask("builtin2::BuiltinVariantLists", 4);
    foundation::log::test::memory_sink cleanup("builtin2::cleanupVariants"), listed("builtin2::BuiltinVariantLists");
    const BuiltinVariant variant = doubleVariant("only");
    const BuiltinVariantLists lists({variant});
    std::ostringstream printed;
    printed << variant << '\n';
    const std::vector<std::string> stages = {"before cleanup:\n", "removed unsupported:\n", "removed unreachable:\n",
                                             "removed shadowed:\n", "removed unsupported boxing variants:\n"};
    ASSERT_EQ(cleanup.size(), stages.size());
    for (std::size_t i = 0; i < stages.size(); ++i) EXPECT_EQ(cleanup.texts()[i], stages[i] + printed.str());
    EXPECT_EQ(listed.texts(), (std::vector<std::string>{
                                  "all:\n" + printed.str(), "searchedByOrro:\n" + printed.str(),
                                  "searchedByInvokeAfterOrro:\n", "searchedByInvokeAfterOrroComplexScalarRhs:\n",
                                  "searchedByInvokeNoOrro:\n" + printed.str()}));
}

}  // namespace
}  // namespace invoketest
