// The table of native classes from manifests, each case in a fresh process: storage by demangled
// name, the lookup-failure handler, and readers that see a manifest whole or not at all. The
// entries it refuses, with their texts, are tests/badinput's.
#include <builtin/objects/OrroObjectRuntimeInfo.hpp>

#include <cppmicroservices/Any.h>
#include <foundation/cppmicroservices/manifest.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <unordered_set>
#include <vector>

namespace {

using namespace Norvane::builtin::types;
using Names = std::unordered_set<std::string>;
using Info = OrroObjectRuntimeInfo;

// The "orro_objects" section of the manifest {"orro_objects": <json>}.
cppmicroservices::AnyMap section(const std::string& json) {
    const auto manifest = foundation::cppmicroservices::parseManifest(R"({"orro_objects": )" + json + "}");
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
    EXPECT_EQ(getError("a::A"), "Error while trying to get a::A runtime info. Details: a::A is not "
                                "found as a saved orro object.\nOrroObjects:\n");
    const std::string manifest = R"({
        "N1a5PointE": {"kaClassName": "geo.Point", "variantId": 0, "comment": "ignored"},
        "N1b5PointE": {"kaClassName": "geo.Point", "variantId": 1},
        "N1a4LineE":  {"kaClassName": "geo.Line", "variantId": 7}})";
    for (int twice = 0; twice < 2; ++twice) EXPECT_EQ(addOrroObjectRuntimeInfo(section(manifest)), (Names{"geo.Point", "geo.Line"}));
    EXPECT_EQ(getOrroObjectRuntimeInfo("a::Point"), (Info{"geo.Point", 0}));
    EXPECT_EQ(getOrroObjectRuntimeInfo("b::Point"), (Info{"geo.Point", 1}));
    EXPECT_EQ(getOrroObjectRuntimeInfo("a::Line"), (Info{"geo.Line", 7}));
    // The mangled key is no name to look up; the message lists the stored names.
    for (const char* line : {"N1a4LineE runtime info. Details: N1a4LineE is not found", "'a::Point'\n", "'b::Point'\n", "'a::Line'\n"}) {
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
    addOrroObjectRuntimeInfo(section(R"({"N1h5KnownE": {"kaClassName": "FromTable", "variantId": 5}})"));
    EXPECT_EQ(getOrroObjectRuntimeInfo("h::Known"), (Info{"FromTable", 5}));

    testhelp::handleOrroObjectLookupFailure([](const std::string&) -> std::optional<Info> { throw std::runtime_error("x"); });
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
            return getOrroObjectRuntimeInfo(ns(w, m) + "::C" + std::to_string(c)).kaClassName == "K";
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
                    manifest["N" + std::to_string(ns(w, m).size()) + ns(w, m) + "2C" + std::to_string(c) + "E"] =
                        cppmicroservices::AnyMap{{"kaClassName", std::string("K")}, {"variantId", c}};
                }
                addOrroObjectRuntimeInfo(manifest);
            }
        });
        readers.emplace_back([&, w] {
            do {  // one pass at least
                for (int m = 0; m < kManifests; ++m) {
                    if (found((w + m) % kWriters, m, 0)) ++(found((w + m) % kWriters, m, kClasses - 1) ? whole : torn);
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

}  // namespace
