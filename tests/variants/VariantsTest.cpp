// The variant record (derived level, fatal check of the throwing declaration, order with
// boxing variants, printed form); boxing variants (levels, fatal consistency checks, record of
// conversions, failed conversions); and the road from a declaration to sorted variants (native
// type constants, cross product of types, flags). No service here, so no scalar string type.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>
#include <stdexcept>
#include <typeinfo>

#include <fl/diag.hpp>
#include <foundation/log/test/memory_sink.hpp>

#include <builtin/variants/ArgTypes.hpp>
#include <builtin/variants/BoxingVariants.hpp>
#include <builtin/variants/MakeVariant.hpp>

#include "EngineEnvironment.hpp"
#include "FatalText.hpp"
#include "VariantBuilders.hpp"

namespace varianttest {
namespace {

using namespace builtinreg::detail;
using enum OrroSupportLevel;
constexpr auto CanThrow = JIT_CALLING_CONVENTION::CanThrow;
constexpr auto YES = V::IsElementWise::YES;

TEST(VariantRecord, SupportLevelFoldsFlagsAndTypes) {
    EXPECT_EQ(BuiltinVariant().orroSupportLevel, NO_SUPPORT);
    const struct {
        const char* name;
        Declaration declaration;
        OrroSupportLevel expected;
    } cases[] = {
        {"quiet scalar function", {.in = {scalar()}, .out = {scalar()}}, EQUIVALENT_SUPPORT},
        {"calls back", {.in = {scalar()}, .callsBack = V::CallsIntoKeldor::YES}, NO_SUPPORT},
        {"unsupported input", {.in = {scalar(), scalar(kaDOUBLE_CLASS, true)}}, NO_SUPPORT},
        {"unsupported output",
         {.in = {scalar()}, .out = {scalar(kaDOUBLE_CLASS, true)}},
         NO_SUPPORT},
        {"warns, not lifted",
         {.convention = CanThrow, .warns = V::HasWarnings::YES},
         EQUIVALENT_SUPPORT},
        {"lifted, quiet", {.in = {scalar()}, .elementWise = YES}, EQUIVALENT_SUPPORT},
        {"lifted, effects",
         {.in = {scalar()}, .sideEffects = V::HasSideEffects::YES, .elementWise = YES},
         NO_SUPPORT},
        {"no typed entry",
         {.typedEntry = nullptr, .throws = V::HasExceptions::YES},
         EQUIVALENT_SUPPORT},
    };
    for (const auto& c : cases)
        EXPECT_EQ(makeVariant(c.declaration).orroSupportLevel, c.expected) << c.name;
}

TEST(VariantRecordDeathTest, ReportingMustGoWithCanThrow) {
    const struct {
        JIT_CALLING_CONVENTION convention;
        V::HasWarnings warns;
        V::HasExceptions throws;
    } broken[] = {
        {CanThrow, V::HasWarnings::NO, V::HasExceptions::NO},
        {JIT_CALLING_CONVENTION::Direct, V::HasWarnings::NO, V::HasExceptions::YES},
        {JIT_CALLING_CONVENTION::DirectWithDescriptor, V::HasWarnings::YES, V::HasExceptions::NO},
    };
    for (const auto& c : broken) {
        EXPECT_DEATH(
            makeVariant({.convention = c.convention, .warns = c.warns, .throws = c.throws}),
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
        EXPECT_TRUE(expected[i] < expected[i + 1] && !(expected[i + 1] < expected[i]))
            << expected[i].cppFunctionName;
    }
    // Equality and order ignore output types; boxing variants of equal sources order by their
    // own boxed inputs.
    const BuiltinVariant otherOutput = makeVariant({.in = {scalar()}, .out = {anyArray()}});
    const BuiltinVariant otherOutputToo = makeVariant({.in = {scalar()}, .out = {scalar()}});
    EXPECT_TRUE(otherOutput == otherOutputToo && !(otherOutput < otherOutputToo) &&
                !(otherOutputToo < otherOutput));
    EXPECT_FALSE(otherOutput == declared);
    const BuiltinVariant twin = makeVariant({.in = {scalar()}, .name = "twin"});
    EXPECT_TRUE(boxingOf(declared, makeVariant({.in = {scalar(kaSINGLE_CLASS)}})) <
                boxingOf(twin, makeVariant({.in = {anyArray()}})));
}

TEST(VariantPrint, GoldenText) {
    const BuiltinVariant declared =
        makeVariant({.in = {scalar(), flag("fast")},
                     .out = {scalar()},
                     .developerFunction = reinterpret_cast<void*>(0x1234)});
    const BuiltinVariant boxing =
        boxingOf(declared, makeVariant({.in = {anyArray(), flag("fast")}}));
    std::ostringstream text;
    text << std::boolalpha << declared << boxing;
    const std::string head =
        "==================================\nBuiltinVariant:\n c++ function name: native\n"
        "\t keldor function name: fn\n\t dominant class: double\n\t developer function pointer: ";
    const std::string flags =
        "\n\t Flags:\n\t\t mayCallIntoKeldor: 0\n\t\t mayRaiseWarnings: 0\n\t\t mayThrowErrors: 0\n"
        "\t\t mayHaveSideEffects: 0\n\t OrroSupportLevel: OrroSupportLevel::EQUIVALENT_SUPPORT\n";
    const std::string rule = "==================================\n";
    EXPECT_EQ(
        text.str(),
        head + "0x1234" + flags +
            "\n\t Input types: [double], [keldor_string<literal_flag<\"fast\">>]\n"
            "\t Output types: [double]\n" +
            rule + head + "0" + flags +
            "\n\t Input types: [kaArray_of<double,$Shape0,ka_full,$Complexity0>], "
            "[keldor_string<literal_flag<\"fast\">>]\n\t Output types: NULL\n"
            "\t Original Output types: [double]\n\t Original developer function pointer: 0x1234\n" +
            rule);
}

TEST(FillBoxedVariants, LevelsStartAtOrroOnly) {
    const BuiltinVariant declared =
        makeVariant({.in = {scalar(kaSINGLE_CLASS)}, .out = {scalar()}});
    const BuiltinVariant prototype = boxingOf(declared, declared);
    ASSERT_EQ(prototype.orroSupportLevel, EQUIVALENT_SUPPORT);
    std::vector<std::vector<ArgType>> boxed = {{scalar()}, {scalar(kaDOUBLE_CLASS, true)}};
    std::vector<BuiltinVariant> variants;
    fillBoxedVariants(prototype, variants, std::move(boxed));
    ASSERT_EQ(variants.size(), 2u);
    EXPECT_EQ(variants[0].inputArgTypes, std::vector<ArgType>{scalar()});
    EXPECT_EQ(variants[0].inputTypes, std::vector<std::string>{"double"});
    EXPECT_EQ(variants[0].orroSupportLevel, ORRO_ONLY);
    EXPECT_EQ(variants[1].orroSupportLevel, NO_SUPPORT);  // a complex scalar input
    EXPECT_EQ(variants[1].originalVariant, prototype.originalVariant);
    EXPECT_EQ(variants[1].outputTypes, declared.outputTypes);
}

TEST(BoxingVariantDeathTest, InconsistentBoxingVariantsStop) {
    const BuiltinVariant original = makeVariant({.in = {scalar()}, .out = {scalar()}});
    assertBoxingVariantConsistent(makeVariant({.in = {scalar(kaSINGLE_CLASS)}, .out = {scalar()}}),
                                  original);
    BuiltinVariant fewerInputTypes = original, fewerInputs = original, otherOutputType = original;
    fewerInputTypes.inputTypes.clear();
    fewerInputs.inputArgTypes.clear();
    otherOutputType.outputArgTypes = {
        scalar(kaSINGLE_CLASS)};  // the same text: only the ArgTypes differ
    const auto equal = [](const std::string& member) {
        return "std::equal(boxingVariant." + member + ".cbegin(), boxingVariant." + member +
               ".cend(), originalVariant." + member + ".cbegin(), originalVariant." + member +
               ".cend())";
    };
    const std::pair<BuiltinVariant, std::string> broken[] = {
        {fewerInputTypes, "boxingVariant.inputTypes.size() == originalVariant.inputTypes.size()"},
        {fewerInputs, "boxingVariant.inputArgTypes.size() == originalVariant.inputArgTypes.size()"},
        {makeVariant({.in = {scalar()}}), equal("outputTypes")},
        {otherOutputType, equal("outputArgTypes")},
    };
    for (const auto& [boxing, text] : broken) {
        EXPECT_DEATH(assertBoxingVariantConsistent(boxing, original),
                     testsupport::fatalReport(text, "builtin2/interface/builtin/MakeVariant"));
    }
}

TEST(BoxingVariant, ConversionRecord) {
    const BuiltinVariant variant = makeVariant({.in = {scalar(), anyArray()}});
    foundation::log::test::memory_sink sink("builtin2::Boxing");
    logBoxingInputConversions({typeid(double)}, {typeid(int)}, variant);
    EXPECT_EQ(sink.size(), 0u) << "the mask is off";
    foundation::log::test::scoped_channel_mask mask("builtin2::Boxing", 4);
    logBoxingInputConversions({typeid(double), typeid(kaArray_tag*)}, {typeid(int), typeid(float)},
                              variant);
    logBoxingInputConversions({}, {}, makeVariant({}));
    const auto name = [](const std::type_info& t) {
        return foundation::core::diag::detail::demangle_typeid_name(t.name(), true);
    };
    ASSERT_EQ(sink.size(), 2u);
    EXPECT_EQ(sink.records()[0].severity, 4u);
    EXPECT_EQ(sink.texts()[0], "Developer inputs: \"" + name(typeid(double)) + "\", \"" +
                                   name(typeid(kaArray_tag*)) + "\"\nBoxed inputs: \"" +
                                   name(typeid(int)) + "\", \"" + name(typeid(float)) +
                                   "\"\nArgTypes: \"" + variant.inputTypes[0] + "\"\n" +
                                   variant.inputTypes[1]);
    EXPECT_EQ(sink.texts()[1], "Developer inputs: \"\"\nBoxed inputs: \"\"\nArgTypes: \"");
}

TEST(BoxingVariant, FailedConversionIsReportedLikeCanThrow) {
    bool pending = false;
    handleBoxingException(pending, nullptr);
    EXPECT_TRUE(pending);
    testsupport::EngineEnvironment environment;
    pending = false;
    try {
        throw std::invalid_argument("conversion failed");
    } catch (...) {
        handleBoxingException(pending, &environment);
    }
    EXPECT_TRUE(pending);
    EXPECT_THROW(std::rethrow_exception(environment.error), std::invalid_argument);
}

using builtinreg::getArgTypes;
using NE = NativeElement;
using NS = NativeShape;

KaArrayTypes array(kaClassID element, Shape shape, std::size_t dim, bool complex = false,
                   KaArrayTypes::Density density = KaArrayTypes::Density::FULL) {
    using C = KaArrayTypes::Complexity;
    return {element, shape, density, complex ? C::COMPLEX : C::NOT_COMPLEX, dim};
}

TEST(NativeArgTypes, OneStrictConstantPerElementAndShape) {
    std::set<const ArgType*> distinct;
    for (std::size_t e = 0; e < nativeElementCount; ++e) {
        for (std::size_t s = 0; s <= nativeShapeCount; ++s) {
            const auto element = static_cast<NE>(e);
            const auto shape = static_cast<NS>(s);
            if (shape == NS::SPARSE && !hasSparseView(element)) {
                EXPECT_THROW(nativeArgType(element, shape), std::invalid_argument);
                continue;
            }
            const ArgType& type = nativeArgType(element, shape);
            const auto* a = std::get_if<KaArrayTypes>(&type);
            EXPECT_TRUE(!a || a->tolerance == SignatureTolerance::STRICT);
            distinct.insert(&type);
            distinct.insert(&nativeArgType(element, shape));  // made once
        }
    }
    EXPECT_EQ(distinct.size(), 155u);
    const struct {
        const char* name;
        const ArgType& constant;
        ArgType expected;
    } rows[] = {
        {"double", getNativeArgType<double, NS::SCALAR>(0), scalar()},
        {"complex double", getNativeArgType<std::complex<double>, NS::SCALAR>(0),
         scalar(kaDOUBLE_CLASS, true)},
        {"char16_t", getNativeArgType<char16_t, NS::SCALAR>(0), scalar(kaCHAR_CLASS)},
        {"complex int8 scalar", getNativeArgType<std::complex<std::int8_t>, NS::SCALAR>(0),
         array(kaINT8_CLASS, Shape::SCALAR, 0, true)},
        {"cell scalar", getNativeArgType<matrix::cell, NS::SCALAR>(0),
         array(kaCELL_CLASS, Shape::SCALAR, 0)},
        {"struct matrix", getNativeArgType<matrix::structure, NS::MATRIX>(0),
         array(kaSTRUCT_CLASS, Shape::TWO_D, 2)},
        {"uint16 empty", getNativeArgType<std::uint16_t, NS::EMPTY>(0),
         array(kaUINT16_CLASS, Shape::EMPTY, 0)},
        {"complex single N-d", getNativeArgType<std::complex<float>, NS::ND>(0),
         array(kaSINGLE_CLASS, Shape::ND, 3, true)},
        {"sparse complex double", getNativeArgType<std::complex<double>, NS::SPARSE>(0),
         array(kaDOUBLE_CLASS, Shape::TWO_D, 2, true, KaArrayTypes::Density::SPARSE)},
    };
    for (const auto& row : rows) EXPECT_EQ(row.constant, row.expected) << row.name;
    // The char forms of a string exist without StringSupport; the scalar string does not.
    EXPECT_TRUE(std::holds_alternative<UnsupportedArgType>(nativeStringArgType(0)));
    EXPECT_EQ(nativeStringArgType(1), ArgType(array(kaCHAR_CLASS, Shape::ROW, 1)));
    EXPECT_EQ(nativeStringArgType(2), ArgType(array(kaCHAR_CLASS, Shape::EMPTY, 0)));
    EXPECT_THROW(nativeStringArgType(3), std::out_of_range);  // its text: tests/badinput
}

// Getters over fixed tables, to see which index went where.
const std::vector<ArgType> kFirst = {scalar(kaINT8_CLASS), scalar(kaINT16_CLASS)};
const std::vector<ArgType> kSecond = {scalar(kaUINT8_CLASS), scalar(kaUINT16_CLASS),
                                      scalar(kaUINT32_CLASS)};
const ArgType& first(std::size_t i) {
    return kFirst.at(i);
}
const ArgType& second(std::size_t i) {
    return kSecond.at(i);
}
const ArgType& doubleRow(std::size_t) {
    static const ArgType type = array(kaDOUBLE_CLASS, Shape::ROW, 1);
    return type;
}
using builtinreg::ArgTypes;
constexpr auto STRICT = SignatureTolerance::STRICT;

TEST(GetArgTypes, CrossProductWithTheFirstParameterFastest) {
    const ArgTypes types = getArgTypes(STRICT, {2, 3}, {&first, &second}, nullptr);
    const std::vector<std::pair<std::size_t, std::size_t>> order = {{0, 0}, {1, 0}, {0, 1},
                                                                    {1, 1}, {0, 2}, {1, 2}};
    ASSERT_EQ(types.inputs.size(), order.size());
    for (std::size_t k = 0; k < order.size(); ++k) {
        EXPECT_EQ(types.inputs[k],
                  (std::vector<ArgType>{kFirst[order[k].first], kSecond[order[k].second]}));
    }
    EXPECT_TRUE(types.outputs.empty());
    const ArgTypes none = getArgTypes(STRICT, {}, {}, &first);
    EXPECT_EQ(none.inputs, (std::vector<std::vector<ArgType>>{{}}));
    EXPECT_EQ(none.outputs, (std::vector<ArgType>{kFirst[0]}));
    EXPECT_THROW(getArgTypes(STRICT, {SIZE_MAX / 2, 3}, {&first, &second}, nullptr),
                 std::length_error);
    // The tolerance goes on copies of array types only.
    const ArgTypes relaxed =
        getArgTypes(SignatureTolerance::RELAXED, {1, 1}, {&doubleRow, &first}, &doubleRow);
    ASSERT_EQ(relaxed.inputs.size(), 1u);
    EXPECT_EQ(std::get<KaArrayTypes>(relaxed.inputs[0][0]).tolerance, SignatureTolerance::RELAXED);
    EXPECT_EQ(relaxed.inputs[0][1], kFirst[0]);
    EXPECT_EQ(std::get<KaArrayTypes>(relaxed.outputs[0]).tolerance, SignatureTolerance::RELAXED);
    EXPECT_EQ(std::get<KaArrayTypes>(doubleRow(0)).tolerance, STRICT);
    std::ostringstream both, inputsOnly;
    inputsOnly << getArgTypes(STRICT, {1, 1}, {&first, &second}, nullptr);
    EXPECT_EQ(inputsOnly.str(), "outputs: nil\ninputs: [  [ int8, uint8 ]\n]\n");
    both << getArgTypes(STRICT, {2}, {&first}, &second);
    EXPECT_EQ(both.str(), "outputs: [ uint8 ]\ninputs: [  [ int8 ],\n  [ int16 ]\n]\n");
}

TEST(DeclaringDeathTest, CountsMustMatch) {
    const std::string at = "builtin2/interface/builtin/";
    using testsupport::fatalReport;
    EXPECT_DEATH(
        getArgTypes(STRICT, {1, 1}, {&first}, nullptr),
        testsupport::fatalReport("numArgTypes.size() == getArgType.size()", at + "getArgTypes"));
    assertNumberOfArgTypes(1, 2, 1, 2);
    EXPECT_DEATH(assertNumberOfArgTypes(1, 2, 0, 2),
                 fatalReport("expectedNLhs == actualNLhs", at + "MakeVariant"));
    EXPECT_DEATH(assertNumberOfArgTypes(1, 2, 1, 3),
                 fatalReport("expectedNRhs == actualNRhs", at + "MakeVariant"));
}

void append(std::vector<BuiltinVariant>& variants, ArgTypes types, const FlagList& flags = {}) {
    appendNewVariants(variants, nullptr, V::CallsIntoKeldor::NO, V::HasSideEffects::NO, "native",
                      "fn", "double", flags, V::HasExceptions::NO,
                      {&unusedEntry, nullptr, JIT_CALLING_CONVENTION::Direct}, V::IsElementWise::NO,
                      V::HasWarnings::NO, std::move(types.outputs), std::move(types.inputs));
}

TEST(AppendNewVariants, DropsUnsupportedSignaturesSortsAndPlacesFlags) {
    std::vector<BuiltinVariant> variants;
    // The string getter without StringSupport: only its own signature goes.
    append(variants, getArgTypes(STRICT, {2, 3}, {&first, &nativeStringArgType}, nullptr));
    ASSERT_EQ(variants.size(), 4u);
    EXPECT_TRUE(std::is_sorted(variants.begin(), variants.end()));
    for (const BuiltinVariant& v : variants) EXPECT_FALSE(isUnsupportedBuiltinVariant(v));
    std::vector<BuiltinVariant> unsupportedOutput;
    append(unsupportedOutput, getArgTypes(STRICT, {1}, {&first}, &nativeStringArgType));
    EXPECT_TRUE(unsupportedOutput.empty());
    // No signatures: nothing added, what is there sorted all the same.
    std::vector<BuiltinVariant> unsorted = {makeVariant({.in = {scalar(), scalar()}}),
                                            makeVariant({.in = {scalar()}})};
    append(unsorted, {});
    ASSERT_EQ(unsorted.size(), 2u);
    EXPECT_EQ(unsorted[0].inputArgTypes.size(), 1u);
    FlagList flags = {{2, "y"}, {0, "x"}};
    sortFlags(flags);
    std::vector<BuiltinVariant> flagged;
    append(flagged, getArgTypes(STRICT, {1, 1}, {&first, &second}, &first), flags);
    ASSERT_EQ(flagged.size(), 1u);
    EXPECT_EQ(flagged[0].inputArgTypes,
              (std::vector<ArgType>{flag("x"), kFirst[0], flag("y"), kSecond[0]}));
    EXPECT_EQ(flagged[0].inputTypes.at(0), "keldor_string<literal_flag<\"x\">>");
    EXPECT_EQ(flagged[0].orroSupportLevel, OrroSupportLevel::EQUIVALENT_SUPPORT);
}

TEST(MakeVariant, FindLastVariantWithSupportLevel) {
    using enum OrroSupportLevel;
    const std::vector<BuiltinVariant> levels = {makeVariant({}),
                                                makeVariant({.callsBack = V::CallsIntoKeldor::YES}),
                                                makeVariant({.name = "c"})};
    EXPECT_EQ(findLastVariantWithSupportLevel(levels, {EQUIVALENT_SUPPORT, ORRO_ONLY}), &levels[2]);
    EXPECT_EQ(findLastVariantWithSupportLevel(levels, {NO_SUPPORT}), &levels[1]);
    EXPECT_EQ(findLastVariantWithSupportLevel(levels, {}), nullptr);
    EXPECT_EQ(findLastVariantWithSupportLevel({}, {NO_SUPPORT}), nullptr);
}

}  // namespace
}  // namespace varianttest
