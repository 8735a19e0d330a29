// Identity stores and the fatal checks around object identities; each case in a fresh process.
#include <builtin/objects/OrroObjectIdentity.hpp>
#include <builtin/objects/OrroObjectRegistration.hpp>
#include <builtin/variants/BuiltinVariant.hpp>

#include <fl/diag.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "fatal_text.hpp"

namespace {

using namespace Norvane::builtin;

struct Widget {};
using testsupport::literal;

TEST(GetNextCppClassVariant, CountsEachClassFromZero) {
    using types::detail::getNextCppClassVariant;
    const auto a = static_cast<kaClassID>(30), b = static_cast<kaClassID>(31);
    EXPECT_EQ(getNextCppClassVariant(a), 0u);
    EXPECT_EQ(getNextCppClassVariant(a), 1u);
    EXPECT_EQ(getNextCppClassVariant(b), 0u);
    EXPECT_EQ(getNextCppClassVariant(a), 2u);
    EXPECT_EQ(types::detail::getOrroObjectClassID("Anything"), kaUNKNOWN_CLASS);
}

std::size_t manifestVariant = 0;
int manifestCalls = 0;
std::size_t manifestId() { return ++manifestCalls, manifestVariant; }

TEST(AssertOrroVariantIdMatches, ChecksEachTypeAndIdOnce) {
    using builtinreg::detail::assertOrroVariantIdMatches;
    manifestVariant = 2;
    assertOrroVariantIdMatches(2, &manifestId, typeid(Widget));
    EXPECT_EQ(manifestCalls, 1);
    manifestVariant = 9;  // this pair was checked already
    assertOrroVariantIdMatches(2, &manifestId, typeid(Widget));
    manifestVariant = 3;  // a new id of the type, and the same id of another type, are checked
    assertOrroVariantIdMatches(3, &manifestId, typeid(Widget));
    assertOrroVariantIdMatches(3, &manifestId, typeid(int));
    EXPECT_EQ(manifestCalls, 3);
}

TEST(AssertOrroVariantIdMatchesDeathTest, AMismatchAlwaysStops) {
    manifestVariant = 5;
    fl_set_diag_terminate(false);  // a mismatch stops regardless
    EXPECT_DEATH(builtinreg::detail::assertOrroVariantIdMatches(4, &manifestId, typeid(Widget)),
                 literal("Error OrroObject (anonymous namespace)::Widget 'RTTI Type Descriptor' has "
                           "different variant id between manifest.json(5) and microservice_impl(4).") +
                     "(.|\n)*builtin2/interface/builtin/OrroObjectID");
}

const char* nameA() { return "A"; }
const char* nameB() { return "B"; }
const char* nameC() { return "C"; }

TEST(ConditionalAssertionsDeathTest, FireOnlyOnAFailedConditionAndWhenAsked) {
    using namespace builtinreg::detail;
    const struct {
        void (*passes)();
        void (*fails)();
        std::string text;
        const char* sourcePath;
    } cases[] = {
        {[] { types::detail::assertOrroObjectHasExpectedClassID(kaUNKNOWN_CLASS, "W"); },
         [] { types::detail::assertOrroObjectHasExpectedClassID(static_cast<kaClassID>(25), "W"); },
         "The kaClassID of OrroObjects should be consistent across all tavi instances.",
         "builtin2/interface/builtin/CppOrroObjectImpl"},
        {[] { assertIsDefaultVariantIdOrSame(SIZE_MAX, SIZE_MAX, 4), assertIsDefaultVariantIdOrSame(SIZE_MAX, 4, 4); },
         [] { assertIsDefaultVariantIdOrSame(SIZE_MAX, 3, 4); },
         "Cannot assign conflicting variant id values to Norvane::builtin::builtinreg::OrroObjectId",
         "builtin2/interface/builtin/OrroObjectID"},
        {[] { assertIsDefaultNameFuncPtrOrSame(&nameA, &nameA, &nameB), assertIsDefaultNameFuncPtrOrSame(&nameA, &nameB, &nameB); },
         [] { assertIsDefaultNameFuncPtrOrSame(&nameA, &nameC, &nameB); },
         "Cannot assign conflicting name functions to Norvane::builtin::builtinreg::OrroObjectId",
         "builtin2/interface/builtin/OrroObjectID"},
    };
    for (const auto& c : cases) {
        c.passes();
        EXPECT_DEATH(c.fails(), literal(c.text) + "(.|\n)*" + c.sourcePath);
        fl_set_diag_terminate(false);
        c.fails();
        fl_set_diag_terminate(true);
    }
}

TEST(AssertInvalidCallingConventionDeathTest, NamesTheFunctionAndTheSignedConvention) {
    BuiltinVariant variant;
    variant.functionDescriptor.callingConvention = static_cast<JIT_CALLING_CONVENTION>(0xFFFFFFFEu);
    EXPECT_DEATH(builtinreg::detail::assertInvalidCallingConvention("subsref", variant),
                 "Orro Indexing Function: subsref variant was created without an valid jit calling "
                 "convention: -2(.|\n)*builtin2/interface/builtin/OrroObjectIndexing");
}

}  // namespace
