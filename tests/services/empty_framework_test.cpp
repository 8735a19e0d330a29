// A process with a framework but no builtin service bundles: the tests register services
// themselves, after the (empty) start.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "ServiceDoubles.hpp"

using namespace Norvane::builtin;
using namespace servicedoubles;

namespace {

class EmptyFramework : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        // An install root without a bundle folder.
        root_ = (std::filesystem::temp_directory_path() / "empty-root-XXXXXX").string();
        ASSERT_NE(mkdtemp(root_.data()), nullptr);
        ASSERT_EQ(setenv("KELDOR_INSTALL_ROOT", root_.c_str(), 1), 0);
        foundation::cppmicroservices::createFramework();
    }
    static void TearDownTestSuite() { std::filesystem::remove_all(root_); }

    static std::vector<std::string> visit(std::initializer_list<std::string> names) {
        std::vector<std::string> visited;
        builtinreg::callUpstreamModules(names, [&](builtinreg::IOrroObjectModuleMgr* module) {
            visited.push_back(module->getModuleName());
        });
        return visited;
    }

    static inline std::string root_;
};

using Names = std::vector<std::string>;

TEST_F(EmptyFramework, AHolderFilledEmptyStaysEmpty) {
    EXPECT_EQ(getHeldService<IZOBJRegWrapper>(), nullptr);
    const auto provider = registerDouble<IZOBJRegWrapper>(std::make_shared<StubClassProvider>());
    EXPECT_EQ(getHeldService<IZOBJRegWrapper>(), nullptr);
    EXPECT_EQ(findService<IZOBJRegWrapper>(cppmicroservices::LDAPFilter()), provider);

    // A holder first reached after its service came up does find it, and keeps it.
    const auto objects = registerDouble<IOrroObjectRegister>(std::make_shared<StubObjectRegister>());
    EXPECT_EQ(getHeldService<IOrroObjectRegister>(), objects);
}

TEST_F(EmptyFramework, UpstreamModulesAreVisitedInTheListedOrder) {
    registerModule("modA");
    registerModule("modB");
    registerModule("mod(x)*");
    EXPECT_EQ(visit({"modB", "unknown", "modA", "modB"}), (Names{"modB", "modA", "modB"}));
    EXPECT_EQ(visit({"mod*"}), Names{});  // a name is no pattern
    EXPECT_EQ(visit({"mod(x)*"}), Names{"mod(x)*"});

    // Each walk looks anew, so a module that came up late is seen.
    EXPECT_EQ(visit({"modC"}), Names{});
    registerModule("modC");
    EXPECT_EQ(visit({"modC", "modB"}), (Names{"modC", "modB"}));
}

TEST_F(EmptyFramework, CallbackFailuresReachTheCaller) {
    registerModule("first");
    registerModule("second");
    const std::function<void(builtinreg::IOrroObjectModuleMgr*)> empty;
    EXPECT_NO_THROW(builtinreg::callUpstreamModules({"unknown"}, empty));
    EXPECT_THROW(builtinreg::callUpstreamModules({"unknown", "first"}, empty), std::bad_function_call);

    Names visited;
    EXPECT_THROW(builtinreg::callUpstreamModules({"first", "second"},
                                                 [&](builtinreg::IOrroObjectModuleMgr* module) {
                                                     visited.push_back(module->getModuleName());
                                                     throw std::runtime_error("module failed");
                                                 }),
                 std::runtime_error);
    EXPECT_EQ(visited, Names{"first"});
}

}  // namespace
