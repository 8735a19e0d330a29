// A variant against a live call of real arrays (count rules, the element-wise retry and its
// shape test, what the signature's cache keeps), and the search lists of a builtin (cleanup by
// rule, distribution by level, their log). How invoke picks among the lists is tests/invoke's.
#include <gtest/gtest.h>

#include <foundation/log/test/memory_sink.hpp>
#include <ka/ka.hpp>

#include <builtin/types/ClassifyKaArray.hpp>
#include <builtin/variants/BuiltinVariantLists.hpp>
#include <builtin/variants/VariantAcceptance.hpp>
#include <builtin/variants/VariantSignature.hpp>

#include "../invoke/InvokeSupport.hpp"
#include "LiveArrays.hpp"

namespace invoketest {
namespace {

class VariantAcceptance : public testsupport::LiveArrayTest {};

// The verdict on a call of fresh double arrays of these shapes (and a char row where a shape is
// empty of dimensions), checked against the yes-or-no answer that invoke asks for.
AcceptanceVerdict verdictOn(const BuiltinVariant& variant, std::size_t nlhs,
                            const std::vector<ka::Dims>& shapes) {
    std::vector<ka::ArrayPtr> arrays;
    std::vector<kaArray_tag*> args;
    for (const ka::Dims& d : shapes) {
        args.push_back(arrays
                           .emplace_back(d.empty() ? ka::charArray("text")
                                                   : ka::createNumeric(kaDOUBLE_CLASS, d))
                           .get());
    }
    ClassificationCache cache;
    const VariantSignature signature(nlhs, args.size(), args.data(), &cache);
    const AcceptanceVerdict verdict = judgeCall(variant, signature);
    EXPECT_EQ(variant == signature, verdict.takes());
    return verdict;
}

TEST_F(VariantAcceptance, VerdictsOfCountsTypesAndShapes) {
    using O = AcceptanceVerdict::Outcome;
    constexpr std::size_t none = AcceptanceVerdict::kNone;
    const auto lifted = [](std::size_t inputs) {
        return makeVariant(
            {.in = std::vector<ArgType>(inputs, scalar()), .elementWise = V::IsElementWise::YES});
    };
    const ka::Dims one = {1, 1}, text = {};
    const struct {
        const char* name;
        BuiltinVariant variant;
        std::size_t nlhs;
        std::vector<ka::Dims> shapes;
        O outcome;
        std::size_t input = none, arrayInput = none;
    } cases[] = {
        {"nothing for nothing", makeVariant({}), 0, {}, O::TAKES},
        {"one output for none asked", makeVariant({.out = {scalar()}}), 0, {}, O::TAKES},
        {"two outputs for none asked",
         makeVariant({.out = {scalar(), scalar()}}),
         0,
         {},
         O::REFUSED_BY_COUNT},
        {"one input, two arguments",
         makeVariant({.in = {scalar()}}),
         0,
         {one, one},
         O::REFUSED_BY_COUNT},
        {"text for a double",
         makeVariant({.in = {scalar(), scalar()}}),
         0,
         {one, text},
         O::REFUSED_BY_TYPE,
         1},
        {"an array, not element-wise",
         makeVariant({.in = {scalar()}}),
         0,
         {{2, 3}},
         O::REFUSED_BY_TYPE,
         0},
        {"2x3 with 2x1", lifted(2), 0, {{2, 3}, {2, 1}}, O::TAKES_ELEMENT_WISE, 0},
        {"2x3 with text", lifted(2), 0, {{2, 3}, text}, O::REFUSED_BY_TYPE, 0, 1},
        {"2x3 with 3x2", lifted(2), 0, {{2, 3}, {3, 2}}, O::SHAPES_DO_NOT_BROADCAST, 0},
        {"0x3 with 0x3", lifted(2), 0, {{0, 3}, {0, 3}}, O::SHAPES_DO_NOT_BROADCAST, 0},
        {"2x3 with 2x3x4: third not compared",
         lifted(2),
         0,
         {{2, 3}, {2, 3, 4}},
         O::TAKES_ELEMENT_WISE,
         0},
        {"2x3x4 with 2x3x5", lifted(2), 0, {{2, 3, 4}, {2, 3, 5}}, O::SHAPES_DO_NOT_BROADCAST, 0},
        {"one empty array", lifted(1), 0, {{0, 3}}, O::TAKES_ELEMENT_WISE, 0},
        {"three arrays", lifted(3), 0, {{2, 2}, {2, 2}, {2, 2}}, O::SHAPES_DO_NOT_BROADCAST, 0},
        {"flag between two arrays that disagree",
         makeVariant({.in = {scalar(), flag("x"), scalar()}, .elementWise = V::IsElementWise::YES}),
         0,
         {{2, 3}, {1, 1}, {3, 2}},
         O::REFUSED_BY_TYPE,
         0,
         1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const AcceptanceVerdict verdict = verdictOn(c.variant, c.nlhs, c.shapes);
        EXPECT_EQ(verdict.outcome, c.outcome);
        EXPECT_EQ(verdict.input, c.input);
        EXPECT_EQ(verdict.arrayInput, c.arrayInput);
    }
}

TEST_F(VariantAcceptance, CacheKeepsOnlyWhatWasReachedAndClassified) {
    const ka::ArrayPtr x = ka::scalar(1.0);
    const ka::ArrayPtr widget =
        ka::createObject(static_cast<kaClassID>(50), "Widget", std::make_shared<int>(1));
    kaArray_tag* args[] = {widget.get(), x.get(), nullptr};
    ClassificationCache cache;
    const VariantSignature signature(0, 3, args, &cache);
    // Refused at the first input: nothing behind it is classified. An instance of an unknown
    // class is unsupported and not kept, so it is asked about again.
    for (int round = 0; round < 2; ++round) {
        EXPECT_FALSE(makeVariant({.in = {anyArray(kaUNKNOWN_CLASS), scalar(), scalar()}}) ==
                     signature);
        ASSERT_EQ(cache.size(), 1u);
        EXPECT_EQ(cache[0].converter, nullptr);
    }
    EXPECT_EQ(signature.getArgType(1), scalar());
    EXPECT_NE(cache[1].converter, nullptr);
    // A null argument is unsupported and passes on as null.
    EXPECT_EQ(signature.getArgType(2).index(), 0u);
    EXPECT_EQ(boost::get<kaArray_tag*>(signature.toParameter(2, nullptr)), nullptr);
    // An unknown instance handed on anyway comes with a reference of its own.
    const Parameter passed = signature.toParameter(0, nullptr);
    EXPECT_EQ(widget->refCount, 2u);
    matrix::releaseReference(boost::get<kaArray_tag*>(passed));
}

// The signature answers plain scalars without the general classification; whatever the way, it
// must agree with classifyKaArray on the type and the converter.
TEST_F(VariantAcceptance, SignatureClassifiesAsTheCommonCore) {
    const ka::ArrayPtr arrays[] = {
        ka::scalar(2.0),
        ka::scalar(true),
        ka::scalar(u'x'),
        ka::scalar<std::uint64_t>(7),
        ka::scalar(std::complex<double>(1, 2)),
        ka::createNumeric(kaINT8_CLASS, {1, 1}, kaCOMPLEX),
        ka::createSparse(kaDOUBLE_CLASS, 1, 1, {}),
        ka::createNumeric(kaDOUBLE_CLASS, {1, 1, 2}),
        ka::createNumeric(kaDOUBLE_CLASS, {1, 0}),
        ka::row({1.0, 2.0}),
        ka::createCell({1, 1}),
    };
    for (const ka::ArrayPtr& array : arrays) {
        kaArray_tag* args[] = {array.get()};
        ClassificationCache cache;
        const VariantSignature signature(0, 1, args, &cache);
        const auto [type, converter] = types::classifyKaArray(array.get());
        EXPECT_EQ(signature.getArgType(0), type) << array->storedClass;
        EXPECT_EQ(cache[0].converter, converter) << array->storedClass;
    }
}

using builtinreg::BuiltinVariantLists;
using enum OrroSupportLevel;

using Names = std::vector<std::string>;
Names names(const std::vector<BuiltinVariant>& list) {
    Names result;
    for (const BuiltinVariant& v : list) result.push_back(v.cppFunctionName);
    return result;
}

BuiltinVariant named(BuiltinVariant variant, const char* name, OrroSupportLevel level) {
    variant.cppFunctionName = name;
    variant.orroSupportLevel = level;
    return variant;
}

TEST(SearchLists, CleanupByRule) {
    const BuiltinVariant source = doubleVariant("source", {scalar(kaSINGLE_CLASS)});
    const BuiltinVariant otherSource = doubleVariant("other source", {anyArray()});
    // Boxing variants with the double scalar signature, which the declared variant "declared" has
    // too.
    const BuiltinVariant boxed = makeVariant({.in = {scalar()}, .out = {scalar()}});
    const BuiltinVariant boxedInt = makeVariant({.in = {scalar(kaINT32_CLASS)}, .out = {scalar()}});
    // Two boxing variants of one source object, with equal boxed signatures.
    const BuiltinVariant box1 = named(boxingOf(source, boxedInt), "box 1", ORRO_ONLY);
    const BuiltinVariant box2 = named(box1, "box 2", ORRO_ONLY);
    const struct {
        const char* name;
        std::vector<BuiltinVariant> variants;
        Names all;
    } cases[] = {
        {"an unsupported output goes, though the inputs are fine",
         {doubleVariant("fine"),
          makeVariant({.in = {scalar()}, .out = {UnsupportedArgType{}}, .name = "bad"})},
         {"fine"}},
        {"equal declared variants both stay",
         {doubleVariant("first"), doubleVariant("second")},
         {"first", "second"}},
        {"a boxing variant behind an equal declared one is unreachable",
         {doubleVariant("declared"), named(boxingOf(source, boxed), "boxed", ORRO_ONLY), source},
         {"declared", "source"}},
        {"two boxing variants of one source both stay",
         {box1, source, box2},
         {"source", "box 1", "box 2"}},
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
                           KaArrayTypes::Complexity::NOT_COMPLEX);
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
        {named(doubleVariant("complex", {scalar(kaDOUBLE_CLASS, true)}), "complex",
               NO_SUPPORT_SCALAR_COMPLEX),
         named(doubleVariant("none", {scalar(kaINT8_CLASS)}), "none", NO_SUPPORT)},
    });
    EXPECT_EQ(names(lists.all), (Names{"equivalent", "complex", "orro only", "none"}));
    EXPECT_EQ(names(lists.searchedByOrro), (Names{"equivalent", "complex", "orro only"}));
    EXPECT_EQ(names(lists.searchedByInvokeAfterOrro), Names{"none"});
    EXPECT_EQ(names(lists.searchedByInvokeAfterOrroComplexScalarRhs), (Names{"complex", "none"}));
    EXPECT_EQ(lists.searchedByInvokeAfterOrroComplexScalarRhs[0].orroSupportLevel,
              NO_SUPPORT_SCALAR_COMPLEX);
    EXPECT_EQ(names(lists.searchedByInvokeNoOrro), (Names{"equivalent", "complex", "none"}));
    // Without an engine variant that takes a complex scalar the two lists after Orro are alike.
    const BuiltinVariantLists real({lists.all[0], lists.all[3]});
    EXPECT_EQ(names(real.searchedByInvokeAfterOrroComplexScalarRhs),
              names(real.searchedByInvokeAfterOrro));
    EXPECT_EQ(
        BuiltinVariantLists(BuiltinVariantLists::concatenateVariantSpans({lists.all, real.all}))
            .all.size(),
        6u);
}

TEST(SearchLists, RecordsOfEachStageAndList) {
    foundation::log::test::scoped_channel_mask cleanupMask("builtin2::cleanupVariants", 4);
    foundation::log::test::scoped_channel_mask listsMask("builtin2::BuiltinVariantLists", 4);
    foundation::log::test::memory_sink cleanup("builtin2::cleanupVariants"),
        listed("builtin2::BuiltinVariantLists");
    const BuiltinVariant variant = doubleVariant("only");
    const BuiltinVariantLists lists({variant});
    std::ostringstream printed;
    printed << variant << '\n';
    const std::vector<std::string> stages = {"before cleanup:\n", "removed unsupported:\n",
                                             "removed unreachable:\n", "removed shadowed:\n",
                                             "removed unsupported boxing variants:\n"};
    ASSERT_EQ(cleanup.size(), stages.size());
    for (std::size_t i = 0; i < stages.size(); ++i)
        EXPECT_EQ(cleanup.texts()[i], stages[i] + printed.str());
    EXPECT_EQ(listed.texts(),
              (std::vector<std::string>{
                  "all:\n" + printed.str(), "searchedByOrro:\n" + printed.str(),
                  "searchedByInvokeAfterOrro:\n", "searchedByInvokeAfterOrroComplexScalarRhs:\n",
                  "searchedByInvokeNoOrro:\n" + printed.str()}));
}

}  // namespace
}  // namespace invoketest
