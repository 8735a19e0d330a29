#include <foundation/cppmicroservices/manifest.hpp>

#include <gtest/gtest.h>

#include <fstream>
#include <stdexcept>

using cppmicroservices::Any;
using cppmicroservices::AnyMap;
using cppmicroservices::any_cast;
using cppmicroservices::ref_any_cast;
using foundation::cppmicroservices::parseManifest;
using foundation::cppmicroservices::readManifest;

namespace {

TEST(Manifest, JsonValuesBecomeAnyValues) {
    const AnyMap manifest = parseManifest(R"({
        "small": -7, "large": 5000000000, "huge": 18446744073709551615,
        "real": 1.5, "none": null, "list": [1, "a"],
        "orro_objects": {"_ZN1A1BE": {"kaClassName": "A.B", "variantId": 0}}
    })");
    EXPECT_EQ(any_cast<int>(manifest.at("small")), -7);
    EXPECT_EQ(any_cast<long long>(manifest.at("large")), 5000000000LL);
    EXPECT_EQ(manifest.at("huge").Type(), typeid(double));
    EXPECT_EQ(any_cast<double>(manifest.at("real")), 1.5);
    EXPECT_TRUE(manifest.at("none").Empty());
    EXPECT_EQ(manifest.at("list").ToString(), "[1, a]");
    const auto& entry = ref_any_cast<AnyMap>(ref_any_cast<AnyMap>(manifest.at("orro_objects")).at("_ZN1A1BE"));
    EXPECT_EQ(ref_any_cast<std::string>(entry.at("kaClassName")), "A.B");
    EXPECT_EQ(any_cast<int>(entry.at("variantId")), 0);
}

// Text that is no JSON object is refused, each with its reason, in tests/badinput/ManifestsTest.cpp.
TEST(Manifest, RefusesAFileThatIsNotThere) {
    EXPECT_THROW(readManifest("/nonexistent/manifest.json"), std::runtime_error);
}

}  // namespace
