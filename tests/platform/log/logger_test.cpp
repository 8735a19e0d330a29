#include <foundation/log/diagnostic_logger.hpp>
#include <foundation/log/test/memory_sink.hpp>

#include <gtest/gtest.h>

#include <cstdlib>
#include <ostream>

namespace {

namespace flog = foundation::log;
using flog::test::captured_record;
using flog::test::memory_sink;
using flog::test::scoped_channel_mask;

// Counts how often a record's text is actually built.
struct counted {
    int* calls;
};
std::ostream& operator<<(std::ostream& out, const counted& value) {
    ++*value.calls;
    return out << "counted";
}

TEST(DiagnosticLogger, TextIsBuiltOnlyWhenTheMaskBitIsOn) {
    struct Case {
        const char* what;
        std::uint32_t mask;
        std::uint32_t severity;
        bool written;
    };
    const Case cases[] = {
        {"bit set among others", 0x107, 256, true},
        {"other bits only", 0x3, 4, false},
        {"severity 0 is never written", 0xffffffffu, 0, false},
    };
    const std::string channel = "test::formatting";
    flog::diagnostic_logger logger(channel);
    EXPECT_EQ(logger.severityMask(), 0u);  // silent by default
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        scoped_channel_mask mask(channel, c.mask);
        memory_sink sink(channel);
        int macroCalls = 0, callableCalls = 0, lambdaRuns = 0;

        FOUNDATION_LOG(logger, c.severity) << "a " << counted{&macroCalls};
        logger.write(c.severity, [&](std::ostream& out) {
            ++lambdaRuns;
            out << "b " << counted{&callableCalls};
        });

        const int expected = c.written ? 1 : 0;
        EXPECT_EQ(logger.isEnabled(c.severity), c.written);
        EXPECT_EQ(flog::diagnostic_logger(channel).severityMask(), c.mask);  // the channel's mask, shared
        EXPECT_EQ(macroCalls, expected);
        EXPECT_EQ(callableCalls, expected);
        EXPECT_EQ(lambdaRuns, expected);
        if (c.written) {
            EXPECT_EQ(sink.records(),
                      (std::vector<captured_record>{{channel, c.severity, 0, "a counted", "", 0},
                                                    {channel, c.severity, 0, "b counted", "", 0}}));
        } else {
            EXPECT_EQ(sink.size(), 0u);
        }
    }
    EXPECT_EQ(logger.severityMask(), 0u);  // each scope put the mask back
}

TEST(DiagnosticLogger, MacroBindsLikeOneStatementAndAThrowDropsTheRecord) {
    scoped_channel_mask mask("test::macro", 1);
    memory_sink sink("test::macro");
    flog::diagnostic_logger logger("test::macro");
    bool elseTaken = false;
    for (bool condition : {true, false}) {
        if (condition)
            FOUNDATION_LOG(logger, 1) << "then";
        else
            elseTaken = true;
    }
    EXPECT_TRUE(elseTaken);
    auto fail = [](std::ostream&) -> std::ostream& { throw std::runtime_error("format"); };
    EXPECT_THROW(FOUNDATION_LOG(logger, 1) << "half " << fail, std::runtime_error);
    EXPECT_EQ(sink.texts(), std::vector<std::string>{"then"});
}

TEST(DiagnosticLogger, EnvironmentSetsMasksOfNewChannelsAndEnablesStderr) {
    ::setenv(flog::mask_variable, "test::env::*=0x2, test::env::exact=256, broken", 1);
    testing::internal::CaptureStderr();
    flog::diagnostic_logger exact("test::env::exact");
    flog::diagnostic_logger prefixed("test::env::other");
    flog::diagnostic_logger unmatched("test::elsewhere");
    FOUNDATION_LOG(prefixed, 2) << "to stderr";
    FOUNDATION_LOG(prefixed, 1) << "masked out";
    {
        memory_sink sink;  // a test's own sink silences stderr
        FOUNDATION_LOG(exact, 256) << "to memory";
        EXPECT_EQ(sink.texts(), std::vector<std::string>{"to memory"});
    }
    const std::string err = testing::internal::GetCapturedStderr();
    ::unsetenv(flog::mask_variable);

    EXPECT_EQ(exact.severityMask(), 256u);
    EXPECT_EQ(prefixed.severityMask(), 2u);
    EXPECT_EQ(unmatched.severityMask(), 0u);
    EXPECT_NE(err.find("test::env::other [2] to stderr\n"), std::string::npos) << err;
    EXPECT_EQ(err.find("masked out"), std::string::npos) << err;
    EXPECT_EQ(err.find("to memory"), std::string::npos) << err;
    // The malformed entry is reported once, though three channels read the variable.
    const std::string report = "KELDOR_LOG: ignored 'broken': expected pattern=mask\n";
    EXPECT_NE(err.find(report), std::string::npos) << err;
    EXPECT_EQ(err.find(report), err.rfind(report)) << err;
}

}  // namespace
