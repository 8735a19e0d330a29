// A process with a framework but no builtin service bundles: holders filled empty stay empty,
// and upstream modules registered later are found by name, in the listed order.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "ServiceDoubles.hpp"

using namespace Norvane::builtin;
using namespace servicedoubles;
using Names = std::vector<std::string>;

namespace {

class EmptyFramework : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        ASSERT_EQ(setenv("KELDOR_INSTALL_ROOT", "/nonexistent/keldor-root", 1),
                  0);  // no bundle folder
        foundation::cppmicroservices::createFramework();
    }
    static Names visit(std::initializer_list<std::string> names) {
        Names visited;
        builtinreg::callUpstreamModules(names, [&](builtinreg::IOrroObjectModuleMgr* module) {
            visited.push_back(module->getModuleName());
        });
        return visited;
    }
};

TEST_F(EmptyFramework, AHolderFilledEmptyStaysEmpty) {
    EXPECT_EQ(getHeldService<IZOBJRegWrapper>(), nullptr);
    const auto provider = registerDouble<IZOBJRegWrapper>(std::make_shared<StubClassProvider>());
    EXPECT_EQ(getHeldService<IZOBJRegWrapper>(), nullptr);
    EXPECT_EQ(findService<IZOBJRegWrapper>(cppmicroservices::LDAPFilter()), provider);
    // A holder first reached after its service came up does find it.
    const auto objects =
        registerDouble<IOrroObjectRegister>(std::make_shared<StubObjectRegister>());
    EXPECT_EQ(getHeldService<IOrroObjectRegister>(), objects);
}

TEST_F(EmptyFramework, UpstreamModulesAreVisitedInTheListedOrderAndFailuresReachTheCaller) {
    for (const char* name : {"modA", "modB", "mod(x)*"}) registerModule(name);
    EXPECT_EQ(visit({"modB", "unknown", "modA", "modB"}), (Names{"modB", "modA", "modB"}));
    EXPECT_EQ(visit({"mod*"}), Names{});  // a name is no pattern
    EXPECT_EQ(visit({"mod(x)*"}), Names{"mod(x)*"});
    EXPECT_EQ(visit({"modC"}), Names{});
    registerModule("modC");  // each walk looks anew
    EXPECT_EQ(visit({"modC", "modB"}), (Names{"modC", "modB"}));

    const std::function<void(builtinreg::IOrroObjectModuleMgr*)> empty;
    EXPECT_NO_THROW(builtinreg::callUpstreamModules({"unknown"}, empty));
    EXPECT_THROW(builtinreg::callUpstreamModules({"unknown", "modA"}, empty),
                 std::bad_function_call);
    Names visited;
    EXPECT_THROW(builtinreg::callUpstreamModules({"modA", "modB"},
                                                 [&](builtinreg::IOrroObjectModuleMgr* module) {
                                                     visited.push_back(module->getModuleName());
                                                     throw std::runtime_error("module failed");
                                                 }),
                 std::runtime_error);
    EXPECT_EQ(visited, Names{"modA"});
}

}  // namespace
