// Boxing variants: their levels, the fatal consistency checks, the record of conversions, and
// the report of a failed conversion.
#include <gtest/gtest.h>

#include <stdexcept>
#include <typeinfo>

#include <fl/diag.hpp>
#include <foundation/log/test/memory_sink.hpp>

#include <builtin/variants/BoxingVariants.hpp>

#include "VariantBuilders.hpp"
#include "engine_environment.hpp"
#include "fatal_text.hpp"

namespace varianttest {
namespace {

using namespace builtinreg::detail;
using enum OrroSupportLevel;

TEST(FillBoxedVariants, LevelsStartAtOrroOnly) {
    const BuiltinVariant declared = makeVariant({.in = {scalar(kaSINGLE_CLASS)}, .out = {scalar()}});
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

    std::vector<BuiltinVariant> noInputs;
    fillBoxedVariants(boxingOf(makeVariant({}), makeVariant({})), noInputs, {{}});
    ASSERT_EQ(noInputs.size(), 1u);
    EXPECT_EQ(noInputs[0].orroSupportLevel, ORRO_ONLY);
}

TEST(BoxingVariantDeathTest, InconsistentBoxingVariantsStop) {
    const BuiltinVariant original = makeVariant({.in = {scalar()}, .out = {scalar()}});
    assertBoxingVariantConsistent(makeVariant({.in = {scalar(kaSINGLE_CLASS)}, .out = {scalar()}}), original);
    BuiltinVariant fewerInputTypes = original, fewerInputs = original, otherOutputType = original;
    fewerInputTypes.inputTypes.clear();
    fewerInputs.inputArgTypes.clear();
    otherOutputType.outputArgTypes = {scalar(kaSINGLE_CLASS)};  // the same text: only the ArgTypes differ
    const auto equal = [](const std::string& member) {
        return "std::equal(boxingVariant." + member + ".cbegin(), boxingVariant." + member + ".cend(), originalVariant." +
               member + ".cbegin(), originalVariant." + member + ".cend())";
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
    logBoxingInputConversions({typeid(double), typeid(kaArray_tag*)}, {typeid(int), typeid(float)}, variant);
    logBoxingInputConversions({}, {}, makeVariant({}));
    const auto name = [](const std::type_info& t) {
        return foundation::core::diag::detail::demangle_typeid_name(t.name(), true);
    };
    ASSERT_EQ(sink.size(), 2u);
    EXPECT_EQ(sink.records()[0].severity, 4u);
    EXPECT_EQ(sink.texts()[0], "Developer inputs: \"" + name(typeid(double)) + "\", \"" + name(typeid(kaArray_tag*)) +
                                   "\"\nBoxed inputs: \"" + name(typeid(int)) + "\", \"" + name(typeid(float)) +
                                   "\"\nArgTypes: \"" + variant.inputTypes[0] + "\"\n" + variant.inputTypes[1]);
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

}  // namespace
}  // namespace varianttest
