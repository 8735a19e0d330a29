#include <foundation/cppmicroservices/framework.hpp>

#include <cppmicroservices/BundleContext.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "Greeter.hpp"

namespace fs = std::filesystem;
using cppmicroservices::Bundle;
using cppmicroservices::LDAPFilter;
using foundation::cppmicroservices::BundleLoadError;
using foundation::cppmicroservices::createFramework;
using foundation::cppmicroservices::installAndStart;
using foundation::cppmicroservices::setFramework;

namespace {

fl::filesystem::path pathOf(const fs::path& p) { return fl::filesystem::path(p.u16string(), true); }

// A fresh folder of bundles and a fresh process framework for each test.
class InstallTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "bundles-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        root_ = pattern;
        createFramework();
    }
    void TearDown() override {
        setFramework(nullptr);
        fs::remove_all(root_);
    }

    void addBundle(const std::string& name, const std::string& manifest) {
        fs::create_directories(root_ / name);
        std::ofstream(root_ / name / "manifest.json") << manifest;
    }
    void addGreeter(const std::string& name, const std::string& greeting, const std::string& extra = {}) {
        addBundle(name, R"({"bundle.symbolic_name": ")" + name + R"(", "bundle.library": ")" TEST_BUNDLE_LIBRARY
                            R"(", "started-in": "here", "greeting": ")" + greeting + "\"" + extra + "}");
    }

    static std::vector<std::string> names(const std::vector<Bundle>& bundles) {
        std::vector<std::string> result;
        for (const auto& bundle : bundles) result.push_back(bundle.GetSymbolicName());
        return result;
    }
    static std::vector<std::string> greetings() {
        std::vector<std::string> result;
        auto context = foundation::cppmicroservices::getFramework()->GetBundleContext();
        for (const auto& reference : context.GetServiceReferences<testbundle::IGreeter>()) {
            result.push_back(context.GetService(reference)->greet());
        }
        return result;
    }

    fs::path root_;
    const LDAPFilter here_{"(started-in=here)"};
};

TEST_F(InstallTest, MissingFolderOrFrameworkStartsNothing) {
    EXPECT_TRUE(installAndStart(pathOf(root_ / "absent"), here_).first.empty());

    addGreeter("a", "hello");
    setFramework(nullptr);
    EXPECT_TRUE(installAndStart(pathOf(root_), here_).first.empty());
}

TEST_F(InstallTest, FailingBundlesDoNotStopTheOthers) {
    addGreeter("a-good", "hello");
    addBundle("b-bad-json", "{ not json");
    addBundle("c-no-library", R"({"bundle.symbolic_name": "c", "bundle.library": "absent.so", "started-in": "here"})");
    addGreeter("d-failing", "never", R"(, "fail-start": true)");
    addGreeter("e-elsewhere", "later", R"(, "started-in": "elsewhere")");
    addGreeter("f-good", "world");
    addBundle("g-no-name", R"({"bundle.library": "x.so"})");
    fs::create_directories(root_ / "h-not-a-bundle");

    try {
        installAndStart(pathOf(root_), here_);
        FAIL() << "no exception";
    } catch (const BundleLoadError& error) {
        const auto& failures = error.failures();
        ASSERT_EQ(failures.size(), 4u) << error.what();
        const std::vector<std::string> folders = {"b-bad-json", "g-no-name", "c-no-library", "d-failing"};
        for (std::size_t i = 0; i < folders.size(); ++i) {
            SCOPED_TRACE(failures[i]);
            EXPECT_EQ(failures[i].rfind("Bundle " + (root_ / folders[i]).string() + ": ", 0), 0u);
        }
        EXPECT_NE(failures[2].find("absent.so"), std::string::npos);
        EXPECT_NE(failures[3].find("refusing to start"), std::string::npos);
        EXPECT_EQ(names(error.result().first),
                  (std::vector<std::string>{"a-good", "c", "d-failing", "e-elsewhere", "f-good"}));
        EXPECT_EQ(names(error.result().second), (std::vector<std::string>{"a-good", "f-good"}));
        EXPECT_EQ(error.result().first[3].GetState(), Bundle::STATE_INSTALLED);
        EXPECT_EQ(error.result().first[2].GetState(), Bundle::STATE_RESOLVED);
    }
    // The failed start took back the service that its activator had registered.
    EXPECT_EQ(greetings(), (std::vector<std::string>{"hello", "world"}));
}

TEST_F(InstallTest, RelativeFolderLiesUnderTheInstallRootAndRepeatsAreHarmless) {
    addGreeter("a", "hello");
    ASSERT_EQ(setenv("KELDOR_INSTALL_ROOT", root_.parent_path().c_str(), 1), 0);
    const auto relative = fl::filesystem::path(root_.filename().u16string(), true);
    const auto first = installAndStart(relative, here_);
    const auto second = installAndStart(relative, here_);
    unsetenv("KELDOR_INSTALL_ROOT");

    ASSERT_EQ(first.second.size(), 1u);
    EXPECT_EQ(second.first, first.first);
    EXPECT_EQ(second.second, first.second);
    EXPECT_EQ(greetings(), std::vector<std::string>{"hello"});
    EXPECT_TRUE(installAndStart(pathOf(root_), LDAPFilter("(started-in=nowhere)")).second.empty());
}

}  // namespace
