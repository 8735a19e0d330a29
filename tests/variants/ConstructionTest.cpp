// From a declaration to sorted variants: the native type constants, the cross product of
// possible types, flags, the fatal checks. No service here, so no scalar string type.
#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <stdexcept>

#include <builtin/variants/ArgTypes.hpp>
#include <builtin/variants/MakeVariant.hpp>

#include "VariantBuilders.hpp"
#include "fatal_text.hpp"

namespace varianttest {
namespace {

using builtinreg::getArgTypes;
using NE = NativeElement;
using NS = NativeShape;
using namespace builtinreg::detail;

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

    const struct { const char* name; const ArgType& constant; ArgType expected; } rows[] = {
        {"double", getNativeArgType<double, NS::SCALAR>(0), scalar()},
        {"complex double", getNativeArgType<std::complex<double>, NS::SCALAR>(0), scalar(kaDOUBLE_CLASS, true)},
        {"char16_t", getNativeArgType<char16_t, NS::SCALAR>(0), scalar(kaCHAR_CLASS)},
        {"complex int8 scalar", getNativeArgType<std::complex<std::int8_t>, NS::SCALAR>(0),
         array(kaINT8_CLASS, Shape::SCALAR, 0, true)},
        {"cell scalar", getNativeArgType<matrix::cell, NS::SCALAR>(0), array(kaCELL_CLASS, Shape::SCALAR, 0)},
        {"uint16 row", getNativeArgType<std::uint16_t, NS::ROW>(0), array(kaUINT16_CLASS, Shape::ROW, 1)},
        {"struct matrix", getNativeArgType<matrix::structure, NS::MATRIX>(0), array(kaSTRUCT_CLASS, Shape::TWO_D, 2)},
        {"handle empty", getNativeArgType<matrix::functionhandle, NS::EMPTY>(0),
         array(kaFUNCTION_CLASS, Shape::EMPTY, 0)},
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
const std::vector<ArgType> kSecond = {scalar(kaUINT8_CLASS), scalar(kaUINT16_CLASS), scalar(kaUINT32_CLASS)};
const ArgType& first(std::size_t i) { return kFirst.at(i); }
const ArgType& second(std::size_t i) { return kSecond.at(i); }
const ArgType& doubleRow(std::size_t) {
    static const ArgType type = array(kaDOUBLE_CLASS, Shape::ROW, 1);
    return type;
}
using builtinreg::ArgTypes;
constexpr auto STRICT = SignatureTolerance::STRICT;

TEST(GetArgTypes, CrossProductWithTheFirstParameterFastest) {
    const ArgTypes types = getArgTypes(STRICT, {2, 3}, {&first, &second}, nullptr);
    const std::vector<std::pair<std::size_t, std::size_t>> order = {{0, 0}, {1, 0}, {0, 1}, {1, 1}, {0, 2}, {1, 2}};
    ASSERT_EQ(types.inputs.size(), order.size());
    for (std::size_t k = 0; k < order.size(); ++k) {
        EXPECT_EQ(types.inputs[k], (std::vector<ArgType>{kFirst[order[k].first], kSecond[order[k].second]}));
    }
    EXPECT_TRUE(types.outputs.empty());
    const ArgTypes none = getArgTypes(STRICT, {}, {}, &first);
    EXPECT_EQ(none.inputs, (std::vector<std::vector<ArgType>>{{}}));
    EXPECT_EQ(none.outputs, (std::vector<ArgType>{kFirst[0]}));
    EXPECT_THROW(getArgTypes(STRICT, {SIZE_MAX / 2, 3}, {&first, &second}, nullptr), std::length_error);

    // The tolerance goes on copies of array types only.
    const ArgTypes relaxed = getArgTypes(SignatureTolerance::RELAXED, {1, 1}, {&doubleRow, &first}, &doubleRow);
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
    EXPECT_DEATH(getArgTypes(STRICT, {1, 1}, {&first}, nullptr),
                 testsupport::fatalReport("numArgTypes.size() == getArgType.size()", at + "getArgTypes"));
    assertNumberOfArgTypes(1, 2, 1, 2);
    EXPECT_DEATH(assertNumberOfArgTypes(1, 2, 0, 2), testsupport::fatalReport("expectedNLhs == actualNLhs", at + "MakeVariant"));
    EXPECT_DEATH(assertNumberOfArgTypes(1, 2, 1, 3), testsupport::fatalReport("expectedNRhs == actualNRhs", at + "MakeVariant"));
}

void append(std::vector<BuiltinVariant>& variants, ArgTypes types, const FlagList& flags = {}) {
    appendNewVariants(variants, nullptr, V::CallsIntoKeldor::NO, V::HasSideEffects::NO, "native", "fn", "double",
                      flags, V::HasExceptions::NO, {&unusedEntry, nullptr, JIT_CALLING_CONVENTION::Direct},
                      V::IsElementWise::NO, V::HasWarnings::NO, std::move(types.outputs), std::move(types.inputs));
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
    std::vector<BuiltinVariant> unsorted = {makeVariant({.in = {scalar(), scalar()}}), makeVariant({.in = {scalar()}})};
    append(unsorted, {});
    ASSERT_EQ(unsorted.size(), 2u);
    EXPECT_EQ(unsorted[0].inputArgTypes.size(), 1u);

    FlagList flags = {{2, "y"}, {0, "x"}};
    sortFlags(flags);
    std::vector<BuiltinVariant> flagged;
    append(flagged, getArgTypes(STRICT, {1, 1}, {&first, &second}, &first), flags);
    ASSERT_EQ(flagged.size(), 1u);
    EXPECT_EQ(flagged[0].inputArgTypes, (std::vector<ArgType>{flag("x"), kFirst[0], flag("y"), kSecond[0]}));
    EXPECT_EQ(flagged[0].inputTypes.at(0), "keldor_string<literal_flag<\"x\">>");
    EXPECT_EQ(flagged[0].orroSupportLevel, OrroSupportLevel::EQUIVALENT_SUPPORT);
}

TEST(MakeVariant, FindLastVariantWithSupportLevel) {
    using enum OrroSupportLevel;
    const std::vector<BuiltinVariant> levels = {makeVariant({}), makeVariant({.callsBack = V::CallsIntoKeldor::YES}),
                                                makeVariant({.name = "c"})};
    EXPECT_EQ(findLastVariantWithSupportLevel(levels, {EQUIVALENT_SUPPORT, ORRO_ONLY}), &levels[2]);
    EXPECT_EQ(findLastVariantWithSupportLevel(levels, {NO_SUPPORT}), &levels[1]);
    EXPECT_EQ(findLastVariantWithSupportLevel(levels, {}), nullptr);
    EXPECT_EQ(findLastVariantWithSupportLevel({}, {NO_SUPPORT}), nullptr);
}

}  // namespace
}  // namespace varianttest
