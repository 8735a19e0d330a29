// installAndStart: every bundle of a folder that passes the filter starts, and a failing one
// stops none of the others. A relative folder under the installation root: tests/badinput
// BundlesTest; a missing folder or framework: tests/services (empty_framework, no_framework).
#include <foundation/cppmicroservices/framework.hpp>

#include <cppmicroservices/BundleContext.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "Greeter.hpp"

namespace fs = std::filesystem;
using cppmicroservices::Bundle;
using cppmicroservices::LDAPFilter;
using foundation::cppmicroservices::installAndStart;
using foundation::cppmicroservices::setFramework;
using Names = std::vector<std::string>;

namespace {

class InstallTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "bundles-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        root_ = pattern;
        foundation::cppmicroservices::createFramework();
    }
    void TearDown() override {
        setFramework(nullptr);
        fs::remove_all(root_);
    }
    void addBundle(const std::string& name, const std::string& manifest) {
        fs::create_directories(root_ / name);
        std::ofstream(root_ / name / "manifest.json") << manifest;
    }
    void addGreeter(const std::string& name, const std::string& greeting,
                    const std::string& extra = {}) {
        addBundle(name, R"({"bundle.symbolic_name": ")" + name +
                            R"(", "bundle.library": ")" TEST_BUNDLE_LIBRARY
                            R"(", "started-in": "here", "greeting": ")" +
                            greeting + "\"" + extra + "}");
    }
    auto start() { return installAndStart(fl::filesystem::path(root_.u16string(), true), here_); }
    static Names names(const std::vector<Bundle>& bundles) {
        Names result;
        for (const auto& bundle : bundles) result.push_back(bundle.GetSymbolicName());
        return result;
    }
    static Names greetings() {
        Names result;
        auto context = foundation::cppmicroservices::getFramework()->GetBundleContext();
        for (const auto& reference : context.GetServiceReferences<testbundle::IGreeter>())
            result.push_back(context.GetService(reference)->greet());
        return result;
    }

    fs::path root_;
    const LDAPFilter here_{"(started-in=here)"};
};

// The text of each failure is the bad-input tables'; here, the order and what still starts.
TEST_F(InstallTest, FailingBundlesDoNotStopTheOthers) {
    addGreeter("a-good", "hello");
    addBundle("b-bad-json", "{ not json");
    addBundle(
        "c-no-library",
        R"({"bundle.symbolic_name": "c", "bundle.library": "absent.so", "started-in": "here"})");
    addGreeter("d-failing", "never", R"(, "fail-start": true)");
    addGreeter("e-elsewhere", "later", R"(, "started-in": "elsewhere")");
    addGreeter("f-good", "world");
    addBundle("g-no-name", R"({"bundle.library": "x.so"})");
    fs::create_directories(root_ / "h-not-a-bundle");
    try {
        start();
        FAIL() << "no exception";
    } catch (const foundation::cppmicroservices::BundleLoadError& error) {
        const auto& failures = error.failures();
        const Names folders = {"b-bad-json", "g-no-name", "c-no-library", "d-failing"};
        ASSERT_EQ(failures.size(), folders.size()) << error.what();
        for (std::size_t i = 0; i < folders.size(); ++i)
            EXPECT_EQ(failures[i].rfind("Bundle " + (root_ / folders[i]).string() + ": ", 0), 0u)
                << failures[i];
        EXPECT_EQ(names(error.result().first),
                  (Names{"a-good", "c", "d-failing", "e-elsewhere", "f-good"}));
        EXPECT_EQ(names(error.result().second), (Names{"a-good", "f-good"}));
        EXPECT_EQ(error.result().first[3].GetState(), Bundle::STATE_INSTALLED);
        EXPECT_EQ(error.result().first[2].GetState(), Bundle::STATE_RESOLVED);
    }
    EXPECT_EQ(greetings(), (Names{"hello", "world"}));
}

}  // namespace
