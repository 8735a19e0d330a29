// Warnings of the language reach the installed handler, or stderr by default.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <ka/ka.hpp>

#include "warning_capture.hpp"

namespace {

TEST(WarningTest, InstalledHandlerReceivesTheText) {
    testsupport::WarningCapture capture;
    matrix::handleWarning(u"zweite \u00fcbung");
    EXPECT_EQ(capture.warnings(), (std::vector<std::u16string>{u"zweite \u00fcbung"}));
}

TEST(WarningTest, DefaultWritesUtf8ToStderrAndAHandlerMayReplaceItself) {
    ka::WarningHandler previous = ka::setWarningHandler({});
    testing::internal::CaptureStderr();
    matrix::handleWarning(u"caf\u00e9 closed");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Warning: caf\xC3\xA9 closed\n");

    int calls = 0;
    ka::setWarningHandler([&](const std::u16string&) {
        ++calls;
        ka::setWarningHandler([&](const std::u16string&) { calls += 10; });
    });
    matrix::handleWarning(u"a");
    matrix::handleWarning(u"b");
    EXPECT_EQ(calls, 11);
    ka::setWarningHandler(previous);
}

}  // namespace
