// The diagnostic log: channel masks from the setting and the environment, records built only when
// their bit is on, and trace scopes whose entry, exit and indent follow the mask, per thread.
#include <foundation/log/channel_masks.hpp>
#include <foundation/log/diagnostic_logger.hpp>
#include <foundation/log/test/memory_sink.hpp>
#include <foundation/log/trace_scope.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <thread>

namespace {

namespace flog = foundation::log;
using flog::test::captured_record;
using flog::test::memory_sink;
using flog::test::scoped_channel_mask;

// How malformed entries are reported: EnvironmentSetsMasksOfNewChannelsAndEnablesStderr.
TEST(MaskSetting, BestMatchingEntryGivesTheMask) {
    struct Case {
        const char *setting, *channel;
        std::uint32_t expected;
    };
    // A longer prefix wins whatever the order, an exact name beats any prefix, the last of equals
    // wins.
    const Case cases[] = {{"a::b=1", "a::bc", 0},           {"a::*=4,*=7", "a::b", 4},
                          {"a::*=4,a::b=1", "a::b", 1},     {"x=1,x=2", "x", 2},
                          {" x = 0X1f ; y=2 ,", "x", 0x1f}, {"X=1", "x", 0},
                          {"x=3,x=0x100000000", "x", 3},    {"a*b=1", "axb", 0}};
    for (const Case& c : cases)
        EXPECT_EQ(flog::maskFromSetting(c.setting, c.channel), c.expected) << c.setting;
}

struct counted {
    int* calls;
};
std::ostream& operator<<(std::ostream& out, const counted& value) {
    ++*value.calls;
    return out << "counted";
}

TEST(DiagnosticLogger, TextIsBuiltOnlyWhenTheMaskBitIsOn) {
    struct Case {
        std::uint32_t mask, severity;
        bool written;
    };
    const std::string channel = "test::formatting";
    flog::diagnostic_logger logger(channel);
    EXPECT_EQ(logger.severityMask(), 0u);  // silent by default
    for (const Case& c :
         {Case{0x107, 256, true}, Case{0x3, 4, false}, Case{0xffffffffu, 0, false}}) {
        SCOPED_TRACE(c.severity);
        scoped_channel_mask mask(channel, c.mask);
        memory_sink sink(channel);
        int macroCalls = 0, callableCalls = 0;
        FOUNDATION_LOG(logger, c.severity) << "a " << counted{&macroCalls};
        logger.write(c.severity,
                     [&](std::ostream& out) { out << "b " << counted{&callableCalls}; });
        EXPECT_EQ(logger.isEnabled(c.severity), c.written);
        EXPECT_EQ(flog::diagnostic_logger(channel).severityMask(),
                  c.mask);  // the channel's mask, shared
        EXPECT_EQ(macroCalls + callableCalls, c.written ? 2 : 0);
        const std::vector<captured_record> written = {{channel, c.severity, 0, "a counted", "", 0},
                                                      {channel, c.severity, 0, "b counted", "", 0}};
        EXPECT_EQ(sink.records(), c.written ? written : std::vector<captured_record>{});
    }
    EXPECT_EQ(logger.severityMask(), 0u);  // each scope put the mask back

    // The macro binds like one statement, and a throw while formatting drops the record.
    scoped_channel_mask mask(channel, 1);
    memory_sink sink(channel);
    bool elseTaken = false;
    for (bool condition : {true, false})
        if (condition)
            FOUNDATION_LOG(logger, 1) << "then";
        else
            elseTaken = true;
    EXPECT_TRUE(elseTaken);
    auto fail = [](std::ostream&) -> std::ostream& { throw std::runtime_error("format"); };
    EXPECT_THROW(FOUNDATION_LOG(logger, 1) << "half " << fail, std::runtime_error);
    EXPECT_EQ(sink.texts(), std::vector<std::string>{"then"});
}

TEST(DiagnosticLogger, EnvironmentSetsMasksOfNewChannelsAndEnablesStderr) {
    ::setenv(flog::mask_variable, "test::env::*=0x2, test::env::exact=256, broken", 1);
    testing::internal::CaptureStderr();
    flog::diagnostic_logger exact("test::env::exact"), prefixed("test::env::other"),
        unmatched("test::elsewhere");
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
    // The malformed entry is reported once, though three channels read the variable.
    EXPECT_EQ(
        err,
        "KELDOR_LOG: ignored 'broken': expected pattern=mask\ntest::env::other [2] to stderr\n");
}

// Each record as "severity indent text".
std::vector<std::string> lines(const memory_sink& sink) {
    std::vector<std::string> result;
    for (const captured_record& r : sink.records())
        result.push_back(std::to_string(r.severity) + ' ' + std::to_string(r.indent) + ' ' +
                         r.text);
    return result;
}

void traced(const flog::diagnostic_logger& logger, bool fail) {
    flog::trace_scope trace(logger, "void traced()", "lib/traced", 7);
    FOUNDATION_LOG(logger, 1) << "inside";
    {
        flog::trace_scope inner(logger, "void inner()");
        FOUNDATION_LOG(logger, 1) << "deeper";
    }
    if (fail) throw std::runtime_error("fail");
}

TEST(TraceScope, EntryExitAndIndentFollowTheMask) {
    struct Case {
        std::uint32_t mask;
        bool fail;
        std::vector<std::string> expected;
    };
    const std::vector<std::string> entered = {
        "32 0 void traced()", "1 1 inside", "32 1 void inner()", "1 2 deeper", "64 1 void inner()"};
    auto left = [&](const char* outerExit) {
        std::vector<std::string> all = entered;
        all.push_back(std::string("64 0 ") + outerExit);
        return all;
    };
    const Case cases[] = {
        {1 | 32 | 64, false, left("void traced()")},
        {1 | 32 | 64, true, left("void traced() [throw]")},
        {1 | 64, true, {"1 0 inside", "1 0 deeper"}},  // no entry bit: no trace, no indent
        {0, false, {}},
    };
    const std::string channel = "test::trace";
    flog::diagnostic_logger logger(channel);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.mask);
        scoped_channel_mask mask(channel, c.mask);
        memory_sink sink(channel);
        if (c.fail)
            EXPECT_THROW(traced(logger, true), std::runtime_error);
        else
            traced(logger, false);
        EXPECT_EQ(lines(sink), c.expected);
        EXPECT_EQ(logger.indent(), 0u);
    }
}

TEST(TraceScope, IndentBelongsToTheThread) {
    const std::string channel = "test::trace_threads";
    scoped_channel_mask mask(channel, 1 | 32 | 64);
    memory_sink sink(channel);
    flog::diagnostic_logger logger(channel);
    flog::trace_scope mainTrace(logger, "main");
    std::vector<std::thread> workers;
    for (int t = 0; t < 4; ++t)
        workers.emplace_back([&logger] {
            for (int i = 0; i < 50; ++i) traced(logger, false);
        });
    for (std::thread& worker : workers) worker.join();
    // Every worker's record sits at its own depth, though the main thread's trace stays open.
    const std::vector<std::string> all = lines(sink);
    EXPECT_EQ(std::count(all.begin(), all.end(), "1 1 inside"), 200);
    EXPECT_EQ(std::count(all.begin(), all.end(), "1 2 deeper"), 200);
    EXPECT_EQ(logger.indent(), 1u);
}

}  // namespace
