// A process that never set up a service framework: holders stay empty, walks find nothing, and
// library paths lie under the installation root.
#include <builtin/services/services.hpp>

#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

using namespace Norvane::builtin;

TEST(NoFramework, HoldersStayEmptyAndWalksFindNothing) {
    EXPECT_NO_THROW(ensureBuiltinServicesStarted());
    EXPECT_EQ(getHeldService<StringSupport>(), nullptr);
    EXPECT_EQ(getHeldService<IZOBJRegWrapper>(), nullptr);
    EXPECT_EQ(getHeldService<IOrroObjectRegister>(), nullptr);
    EXPECT_NO_THROW(
        builtinreg::callUpstreamModules({"a", "b"}, {}));  // an empty callback is never called
}

TEST(NoFramework, LibraryPathsLieUnderTheInstallRoot) {
    ASSERT_EQ(setenv("KELDOR_INSTALL_ROOT", "/opt//keldor\\root/", 1), 0);
    const std::pair<std::u16string, std::u16string> cases[] = {
        {u"", u"/opt/keldor/root"},
        {u"bin\\win64\\builtinservices", u"/opt/keldor/root/bin/win64/builtinservices"},
        {u"//lib//x.so", u"/opt/keldor/root/lib/x.so"},
    };
    for (const auto& [relative, expected] : cases) {
        const auto path = builtinreg::getBuiltinLibraryPath(relative.c_str());
        EXPECT_EQ(path.text(), expected);
        EXPECT_TRUE(path.native());
    }
    unsetenv("KELDOR_INSTALL_ROOT");
    EXPECT_THROW(builtinreg::getBuiltinLibraryPath(nullptr), std::invalid_argument);
}
