// The table of native classes from manifests. Each case runs in a process of its own, so each
// starts from an empty table. Manifests are JSON text read as a bundle's manifest is. Entries that
// the table refuses, each with its message, are in tests/badinput.
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

// The "orro_objects" section of a manifest whose text is {"orro_objects": <section>}.
cppmicroservices::AnyMap section(const std::string& json) {
    const auto manifest = foundation::cppmicroservices::parseManifest(R"({"orro_objects": )" + json + "}");
    return cppmicroservices::ref_any_cast<cppmicroservices::AnyMap>(manifest.at("orro_objects"));
}

// The what() of the exception E that `call` throws.
template <class E, class F>
std::string whatOf(F&& call) {
    try {
        call();
    } catch (const E& e) {
        return e.what();
    }
    return "(nothing thrown)";
}
std::string saveError(const std::string& json) {
    return whatOf<SaveOrroObjectRuntimeInfoError>([&] { addOrroObjectRuntimeInfo(section(json)); });
}
std::string getError(const std::string& name) {
    return whatOf<GetOrroObjectRuntimeInfoError>([&] { getOrroObjectRuntimeInfo(name); });
}

std::string head(const std::string& key) {
    return "Error while trying to save " + key + " runtime info. Details: ";
}

TEST(AddOrroObjectRuntimeInfo, StoresByDemangledNameAndAnswersWithTheClassNames) {
    EXPECT_EQ(addOrroObjectRuntimeInfo(section("{}")), Names{});
    // Still empty: the message lists no class.
    EXPECT_EQ(getError("a::A"), "Error while trying to get a::A runtime info. Details: a::A is not "
                                "found as a saved orro object.\nOrroObjects:\n");
    const std::string manifest = R"({
        "N1a5PointE": {"kaClassName": "geo.Point", "variantId": 0, "comment": "ignored"},
        "N1b5PointE": {"kaClassName": "geo.Point", "variantId": 1},
        "N1a4LineE":  {"kaClassName": "geo.Line", "variantId": 7}})";
    EXPECT_EQ(addOrroObjectRuntimeInfo(section(manifest)), (Names{"geo.Point", "geo.Line"}));
    EXPECT_EQ(addOrroObjectRuntimeInfo(section(manifest)), (Names{"geo.Point", "geo.Line"}));

    EXPECT_EQ(getOrroObjectRuntimeInfo("a::Point"), (OrroObjectRuntimeInfo{"geo.Point", 0}));
    EXPECT_EQ(getOrroObjectRuntimeInfo("b::Point"), (OrroObjectRuntimeInfo{"geo.Point", 1}));
    EXPECT_EQ(getOrroObjectRuntimeInfo("a::Line"), (OrroObjectRuntimeInfo{"geo.Line", 7}));
    // Keyed by the demangled name: the manifest's key is no name to look up.
    EXPECT_THAT(getError("N1a4LineE"),
                testing::StartsWith("Error while trying to get N1a4LineE runtime info. Details: N1a4LineE "
                                    "is not found as a saved orro object.\nOrroObjects:\n"));
    for (const char* line : {"'a::Point'\n", "'b::Point'\n", "'a::Line'\n"}) {
        EXPECT_THAT(getError("N1a4LineE"), testing::HasSubstr(line));
    }

    // Two keys of one class: one entry when they agree, a conflict when they do not.
    EXPECT_EQ(addOrroObjectRuntimeInfo(section(R"({"1A": {"kaClassName": "A", "variantId": 2},
                                                   "N1AE": {"kaClassName": "A", "variantId": 2}})")),
              Names{"A"});
    // Keys are walked in order: 1B is stored, N1BE conflicts with it, N1c5AfterE is never
    // reached, and nothing is rolled back.
    EXPECT_EQ(saveError(R"({"1B": {"kaClassName": "B", "variantId": 2},
                            "N1BE": {"kaClassName": "B", "variantId": 3},
                            "N1c5AfterE": {"kaClassName": "After", "variantId": 0}})"),
              head("N1BE") + "Attempted to insert B, but the class already exists with different orro "
                             "runtime information.");
    EXPECT_EQ(getOrroObjectRuntimeInfo("B"), (OrroObjectRuntimeInfo{"B", 2}));
    EXPECT_THROW(getOrroObjectRuntimeInfo("c::After"), GetOrroObjectRuntimeInfoError);
}

TEST(GetOrroObjectRuntimeInfo, AsksTheLookupFailureHandlerForWhatTheTableLacks) {
    std::vector<std::string> asked;
    testhelp::handleOrroObjectLookupFailure([&](const std::string& name) -> std::optional<OrroObjectRuntimeInfo> {
        asked.push_back(name);
        if (name == "h::Known") return OrroObjectRuntimeInfo{"FromHandler", 4};
        return std::nullopt;
    });
    EXPECT_EQ(getOrroObjectRuntimeInfo("h::Known"), (OrroObjectRuntimeInfo{"FromHandler", 4}));
    EXPECT_EQ(getOrroObjectRuntimeInfo("h::Known"), (OrroObjectRuntimeInfo{"FromHandler", 4}));
    EXPECT_THROW(getOrroObjectRuntimeInfo("h::Unknown"), GetOrroObjectRuntimeInfoError);
    EXPECT_EQ(asked, (std::vector<std::string>{"h::Known", "h::Known", "h::Unknown"}));

    // The handler's answer was not stored, so the table takes other information, and wins.
    addOrroObjectRuntimeInfo(section(R"({"N1h5KnownE": {"kaClassName": "FromTable", "variantId": 5}})"));
    EXPECT_EQ(getOrroObjectRuntimeInfo("h::Known"), (OrroObjectRuntimeInfo{"FromTable", 5}));

    testhelp::handleOrroObjectLookupFailure([](const std::string&) -> std::optional<OrroObjectRuntimeInfo> {
        throw std::runtime_error("handler failed");
    });
    EXPECT_THROW(getOrroObjectRuntimeInfo("h::Other"), std::runtime_error);
    testhelp::handleOrroObjectLookupFailure({});
    EXPECT_THROW(getOrroObjectRuntimeInfo("h::Other"), GetOrroObjectRuntimeInfoError);
    EXPECT_EQ(asked.size(), 3u);
}

// Writers store manifests of many classes while readers look up the first and the last class
// of each: once the first is there, the last must be too.
TEST(OrroObjectRuntimeInfoConcurrency, AReaderSeesAManifestWholeOrNotAtAll) {
    constexpr int kWriters = 3, kReaders = 3, kManifests = 50, kClasses = 9;
    // Manifest m of writer w names the classes wW_mM::C0 to C8; the keys sort in that order.
    const auto ns = [](int w, int m) { return "w" + std::to_string(w) + "_m" + std::to_string(m); };
    const auto demangled = [&](int w, int m, int c) { return ns(w, m) + "::C" + std::to_string(c); };
    const auto found = [](const std::string& name) {
        try {
            return getOrroObjectRuntimeInfo(name).kaClassName == "K";
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
    }
    for (int r = 0; r < kReaders; ++r) {
        readers.emplace_back([&, r] {
            do {  // one pass at least, after the writers if they were quicker
                for (int m = 0; m < kManifests; ++m) {
                    const int w = (r + m) % kWriters;
                    if (found(demangled(w, m, 0))) ++(found(demangled(w, m, kClasses - 1)) ? whole : torn);
                }
                std::this_thread::yield();  // lets the writers at the lock
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
