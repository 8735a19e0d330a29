// Process-wide object stores, each case in a fresh process: the runtime-information table (by
// demangled name, lookup handler, whole manifests for readers), identity stores and the fatal
// identity checks.
#include <builtin/objects/OrroObjectIdentity.hpp>
#include <builtin/objects/OrroObjectRegistration.hpp>
#include <builtin/objects/OrroObjectRuntimeInfo.hpp>
#include <builtin/variants/BuiltinVariant.hpp>

#include <cppmicroservices/Any.h>
#include <fl/diag.hpp>
#include <foundation/cppmicroservices/manifest.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <unordered_set>
#include <vector>

#include "FatalText.hpp"
#include "LookupFailureHandler.hpp"

namespace {

using namespace Norvane::builtin;
using namespace Norvane::builtin::types;
using Names = std::unordered_set<std::string>;
using Info = OrroObjectRuntimeInfo;

// The "orro_objects" section of the manifest {"orro_objects": <json>}.
cppmicroservices::AnyMap section(const std::string& json) {
    const auto manifest =
        foundation::cppmicroservices::parseManifest(R"({"orro_objects": )" + json + "}");
    return cppmicroservices::ref_any_cast<cppmicroservices::AnyMap>(manifest.at("orro_objects"));
}

std::string getError(const std::string& name) {
    try {
        getOrroObjectRuntimeInfo(name);
    } catch (const GetOrroObjectRuntimeInfoError& e) {
        return e.what();
    }
    return "(nothing thrown)";
}

TEST(AddOrroObjectRuntimeInfo, StoresByDemangledNameAndAnswersWithTheClassNames) {
    EXPECT_EQ(addOrroObjectRuntimeInfo(section("{}")), Names{});
    EXPECT_EQ(getError("a::A"),
              "Error while trying to get a::A runtime info. Details: a::A is not "
              "found as a saved orro object.\nOrroObjects:\n");
    const std::string manifest = R"({
        "N1a5PointE": {"kaClassName": "geo.Point", "variantId": 0, "comment": "ignored"},
        "N1b5PointE": {"kaClassName": "geo.Point", "variantId": 1},
        "N1a4LineE":  {"kaClassName": "geo.Line", "variantId": 7}})";
    for (int twice = 0; twice < 2; ++twice)
        EXPECT_EQ(addOrroObjectRuntimeInfo(section(manifest)), (Names{"geo.Point", "geo.Line"}));
    EXPECT_EQ(getOrroObjectRuntimeInfo("a::Point"), (Info{"geo.Point", 0}));
    EXPECT_EQ(getOrroObjectRuntimeInfo("b::Point"), (Info{"geo.Point", 1}));
    EXPECT_EQ(getOrroObjectRuntimeInfo("a::Line"), (Info{"geo.Line", 7}));
    // The mangled key is no name to look up; the message lists the stored names.
    for (const char* line : {"N1a4LineE runtime info. Details: N1a4LineE is not found",
                             "'a::Point'\n", "'b::Point'\n", "'a::Line'\n"}) {
        EXPECT_THAT(getError("N1a4LineE"), testing::HasSubstr(line));
    }
    // Two keys of one class that agree make one entry. Keys are walked in order: 1B is stored,
    // N1BE conflicts, N1c5AfterE is never reached, nothing is rolled back.
    EXPECT_EQ(addOrroObjectRuntimeInfo(section(R"({"1A": {"kaClassName": "A", "variantId": 2},
                                                   "N1AE": {"kaClassName": "A", "variantId": 2}})")),
              Names{"A"});
    EXPECT_THROW(addOrroObjectRuntimeInfo(section(R"({"1B": {"kaClassName": "B", "variantId": 2},
                                                      "N1BE": {"kaClassName": "B", "variantId": 3},
                                                      "N1c5AfterE": {"kaClassName": "After", "variantId": 0}})")),
                 SaveOrroObjectRuntimeInfoError);
    EXPECT_EQ(getOrroObjectRuntimeInfo("B"), (Info{"B", 2}));
    EXPECT_THROW(getOrroObjectRuntimeInfo("c::After"), GetOrroObjectRuntimeInfoError);
}

TEST(GetOrroObjectRuntimeInfo, AsksTheLookupFailureHandlerForWhatTheTableLacks) {
    std::vector<std::string> asked;
    testhelp::handleOrroObjectLookupFailure([&](const std::string& name) -> std::optional<Info> {
        asked.push_back(name);
        return name == "h::Known" ? std::optional<Info>(Info{"FromHandler", 4}) : std::nullopt;
    });
    EXPECT_EQ(getOrroObjectRuntimeInfo("h::Known"), (Info{"FromHandler", 4}));
    EXPECT_EQ(getOrroObjectRuntimeInfo("h::Known"), (Info{"FromHandler", 4}));
    EXPECT_THROW(getOrroObjectRuntimeInfo("h::Unknown"), GetOrroObjectRuntimeInfoError);
    EXPECT_EQ(asked, (std::vector<std::string>{"h::Known", "h::Known", "h::Unknown"}));
    // The handler's answer was not stored: the table takes other information, and wins.
    addOrroObjectRuntimeInfo(
        section(R"({"N1h5KnownE": {"kaClassName": "FromTable", "variantId": 5}})"));
    EXPECT_EQ(getOrroObjectRuntimeInfo("h::Known"), (Info{"FromTable", 5}));

    testhelp::handleOrroObjectLookupFailure(
        [](const std::string&) -> std::optional<Info> { throw std::runtime_error("x"); });
    EXPECT_THROW(getOrroObjectRuntimeInfo("h::Other"), std::runtime_error);
    testhelp::handleOrroObjectLookupFailure({});
    EXPECT_THROW(getOrroObjectRuntimeInfo("h::Other"), GetOrroObjectRuntimeInfoError);
    EXPECT_EQ(asked.size(), 3u);
}

// Writers store manifests of nine classes while readers look up the first and the last class of
// each: once the first is there, the last must be too.
TEST(OrroObjectRuntimeInfoConcurrency, AReaderSeesAManifestWholeOrNotAtAll) {
    constexpr int kWriters = 3, kManifests = 50, kClasses = 9;
    const auto ns = [](int w, int m) { return "w" + std::to_string(w) + "_m" + std::to_string(m); };
    const auto found = [&](int w, int m, int c) {
        try {
            return getOrroObjectRuntimeInfo(ns(w, m) + "::C" + std::to_string(c)).kaClassName ==
                   "K";
        } catch (const GetOrroObjectRuntimeInfoError&) {
            return false;
        }
    };
    std::atomic<bool> writing{true};
    std::atomic<int> torn{0}, whole{0};
    std::vector<std::thread> writers, readers;
    for (int w = 0; w < kWriters; ++w) {
        writers.emplace_back([&, w] {
            for (int m = 0; m < kManifests; ++m) {
                cppmicroservices::AnyMap manifest;
                for (int c = 0; c < kClasses; ++c) {
                    manifest["N" + std::to_string(ns(w, m).size()) + ns(w, m) + "2C" +
                             std::to_string(c) + "E"] = cppmicroservices::AnyMap{
                        {"kaClassName", std::string("K")}, {"variantId", c}};
                }
                addOrroObjectRuntimeInfo(manifest);
            }
        });
        readers.emplace_back([&, w] {
            do {  // one pass at least
                for (int m = 0; m < kManifests; ++m) {
                    if (found((w + m) % kWriters, m, 0))
                        ++(found((w + m) % kWriters, m, kClasses - 1) ? whole : torn);
                }
                std::this_thread::yield();
            } while (writing);
        });
    }
    for (auto& writer : writers) writer.join();
    writing = false;
    for (auto& reader : readers) reader.join();
    EXPECT_EQ(torn.load(), 0);
    EXPECT_GT(whole.load(), 0);
}

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
std::size_t manifestId() {
    return ++manifestCalls, manifestVariant;
}

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
    EXPECT_DEATH(
        builtinreg::detail::assertOrroVariantIdMatches(4, &manifestId, typeid(Widget)),
        literal("Error OrroObject (anonymous namespace)::Widget 'RTTI Type Descriptor' has "
                "different variant id between manifest.json(5) and microservice_impl(4).") +
            "(.|\n)*builtin2/interface/builtin/OrroObjectID");
}

const char* nameA() {
    return "A";
}
const char* nameB() {
    return "B";
}
const char* nameC() {
    return "C";
}

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
        {[] {
             assertIsDefaultVariantIdOrSame(SIZE_MAX, SIZE_MAX, 4),
                 assertIsDefaultVariantIdOrSame(SIZE_MAX, 4, 4);
         },
         [] { assertIsDefaultVariantIdOrSame(SIZE_MAX, 3, 4); },
         "Cannot assign conflicting variant id values to "
         "Norvane::builtin::builtinreg::OrroObjectId",
         "builtin2/interface/builtin/OrroObjectID"},
        {[] {
             assertIsDefaultNameFuncPtrOrSame(&nameA, &nameA, &nameB),
                 assertIsDefaultNameFuncPtrOrSame(&nameA, &nameB, &nameB);
         },
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
