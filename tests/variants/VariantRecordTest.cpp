// The variant record on its own: the derived support level, the fatal check of the throwing
// declaration, equality and the total order with boxing variants, and the printed form.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "VariantBuilders.hpp"

namespace varianttest {
namespace {

using enum OrroSupportLevel;
constexpr auto CanThrow = JIT_CALLING_CONVENTION::CanThrow;
constexpr auto YES = V::IsElementWise::YES;

TEST(VariantRecord, SupportLevelFoldsFlagsAndTypes) {
    EXPECT_EQ(BuiltinVariant().orroSupportLevel, NO_SUPPORT);
    const struct { const char* name; Declaration declaration; OrroSupportLevel expected; } cases[] = {
        {"quiet scalar function", {.in = {scalar()}, .out = {scalar()}}, EQUIVALENT_SUPPORT},
        {"calls back", {.in = {scalar()}, .callsBack = V::CallsIntoKeldor::YES}, NO_SUPPORT},
        {"unsupported input", {.in = {scalar(), scalar(kaDOUBLE_CLASS, true)}}, NO_SUPPORT},
        {"unsupported output", {.in = {scalar()}, .out = {scalar(kaDOUBLE_CLASS, true)}}, NO_SUPPORT},
        {"warns, not lifted", {.convention = CanThrow, .warns = V::HasWarnings::YES}, EQUIVALENT_SUPPORT},
        {"lifted, quiet", {.in = {scalar()}, .elementWise = YES}, EQUIVALENT_SUPPORT},
        {"lifted, effects", {.in = {scalar()}, .sideEffects = V::HasSideEffects::YES, .elementWise = YES}, NO_SUPPORT},
        {"no typed entry", {.typedEntry = nullptr, .throws = V::HasExceptions::YES}, EQUIVALENT_SUPPORT},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(makeVariant(c.declaration).orroSupportLevel, c.expected);
    }
}

TEST(VariantRecordDeathTest, ReportingMustGoWithCanThrow) {
    const struct { JIT_CALLING_CONVENTION convention; V::HasWarnings warns; V::HasExceptions throws; } broken[] = {
        {CanThrow, V::HasWarnings::NO, V::HasExceptions::NO},
        {JIT_CALLING_CONVENTION::Direct, V::HasWarnings::NO, V::HasExceptions::YES},
        {JIT_CALLING_CONVENTION::DirectWithDescriptor, V::HasWarnings::YES, V::HasExceptions::NO},
    };
    for (const auto& c : broken) {
        EXPECT_DEATH(makeVariant({.convention = c.convention, .warns = c.warns, .throws = c.throws}),
                     "isDefaultImpl \\|\\| canThrowIsConsistent\n"
                     "  at builtin2/interface/builtin/BuiltinVariant:[0-9]+\n  in .*BuiltinVariant\\(");
    }
}

TEST(VariantOrder, CountsLeadThenInputTypesAndBoxingFollowsItsSource) {
    const BuiltinVariant declared = makeVariant({.in = {scalar()}, .name = "declared"});
    std::vector<BuiltinVariant> expected = {
        makeVariant({.name = "none"}),
        makeVariant({.out = {scalar()}, .name = "one output"}),
        makeVariant({.in = {flag("fast")}, .name = "flag"}),
        declared,
        // Boxed to an array, which alone would sort behind the single scalar.
        boxingOf(declared, makeVariant({.in = {anyArray()}, .name = "boxing"})),
        makeVariant({.in = {scalar(kaSINGLE_CLASS)}, .name = "single"}),
        makeVariant({.in = {anyArray()}, .name = "array"}),
        makeVariant({.in = {scalar(), scalar()}, .name = "two"}),
    };
    for (std::size_t i = 0; i + 1 < expected.size(); ++i) {
        SCOPED_TRACE(expected[i].cppFunctionName);
        EXPECT_TRUE(expected[i] < expected[i + 1]);
        EXPECT_FALSE(expected[i + 1] < expected[i]);
    }
    std::vector<BuiltinVariant> sorted(expected.rbegin(), expected.rend());
    std::sort(sorted.begin(), sorted.end());
    EXPECT_TRUE(std::equal(sorted.begin(), sorted.end(), expected.begin(), [](const auto& a, const auto& b) {
        return a.cppFunctionName == b.cppFunctionName;
    }));

    // Equality and order ignore output types; boxing variants of equal sources order by their
    // own boxed inputs.
    const BuiltinVariant otherOutput = makeVariant({.in = {scalar()}, .out = {anyArray()}});
    const BuiltinVariant otherOutputToo = makeVariant({.in = {scalar()}, .out = {scalar()}});
    EXPECT_TRUE(otherOutput == otherOutputToo && !(otherOutput < otherOutputToo) && !(otherOutputToo < otherOutput));
    EXPECT_FALSE(otherOutput == declared);
    const BuiltinVariant twin = makeVariant({.in = {scalar()}, .name = "twin"});
    EXPECT_TRUE(boxingOf(declared, makeVariant({.in = {scalar(kaSINGLE_CLASS)}})) <
                boxingOf(twin, makeVariant({.in = {anyArray()}})));
}

TEST(VariantPrint, GoldenText) {
    const BuiltinVariant declared = makeVariant(
        {.in = {scalar(), flag("fast")}, .out = {scalar()}, .developerFunction = reinterpret_cast<void*>(0x1234)});
    const BuiltinVariant boxing = boxingOf(declared, makeVariant({.in = {anyArray(), flag("fast")}}));
    std::ostringstream text;
    text << std::boolalpha << declared << boxing;
    const std::string head =
        "==================================\nBuiltinVariant:\n c++ function name: native\n"
        "\t keldor function name: fn\n\t dominant class: double\n\t developer function pointer: ";
    const std::string flags =
        "\n\t Flags:\n\t\t mayCallIntoKeldor: 0\n\t\t mayRaiseWarnings: 0\n\t\t mayThrowErrors: 0\n"
        "\t\t mayHaveSideEffects: 0\n\t OrroSupportLevel: OrroSupportLevel::EQUIVALENT_SUPPORT\n";
    const std::string rule = "==================================\n";
    EXPECT_EQ(text.str(),
              head + "0x1234" + flags +
                  "\n\t Input types: [double], [keldor_string<literal_flag<\"fast\">>]\n"
                  "\t Output types: [double]\n" + rule +
              head + "0" + flags +
                  "\n\t Input types: [kaArray_of<double,$Shape0,ka_full,$Complexity0>], "
                  "[keldor_string<literal_flag<\"fast\">>]\n\t Output types: NULL\n"
                  "\t Original Output types: [double]\n\t Original developer function pointer: 0x1234\n" +
                  rule);
}

}  // namespace
}  // namespace varianttest
