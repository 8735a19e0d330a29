#include <foundation/log/test/memory_sink.hpp>
#include <foundation/log/trace_scope.hpp>

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

namespace {

namespace flog = foundation::log;
using flog::test::captured_record;
using flog::test::memory_sink;
using flog::test::scoped_channel_mask;

struct line {
    std::uint32_t severity;
    unsigned indent;
    std::string text;
    friend bool operator==(const line&, const line&) = default;
};
std::ostream& operator<<(std::ostream& out, const line& l) {
    return out << '{' << l.severity << ',' << l.indent << ",\"" << l.text << "\"}";
}
std::vector<line> lines(const memory_sink& sink) {
    std::vector<line> result;
    for (const captured_record& r : sink.records())
        result.push_back({r.severity, r.indent, r.text});
    return result;
}

void traced(const flog::diagnostic_logger& logger, bool fail) {
    flog::trace_scope trace(logger, "void traced()", "lib/traced", 7);
    FOUNDATION_LOG(logger, 1) << "inside";
    {
        flog::trace_scope inner(logger, "void inner()");
        FOUNDATION_LOG(logger, 1) << "deeper";
    }
    if (fail)
        throw std::runtime_error("fail");
}

TEST(TraceScope, EntryExitAndIndentFollowTheMask) {
    struct Case {
        const char* what;
        std::uint32_t mask;
        bool fail;
        std::vector<line> expected;
    };
    const std::vector<line> entered = {
        {32, 0, "void traced()"}, {1, 1, "inside"}, {32, 1, "void inner()"}, {1, 2, "deeper"}};
    auto left = [&](const char* outerExit) {
        std::vector<line> all = entered;
        all.push_back({64, 1, "void inner()"});
        all.push_back({64, 0, outerExit});
        return all;
    };
    const Case cases[] = {
        {"entry and exit", 1 | 32 | 64, false, left("void traced()")},
        {"left by an exception", 1 | 32 | 64, true, left("void traced() [throw]")},
        {"no entry bit: no trace, no indent", 1 | 64, true, {{1, 0, "inside"}, {1, 0, "deeper"}}},
        {"nothing", 0, false, {}},
    };
    const std::string channel = "test::trace";
    flog::diagnostic_logger logger(channel);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        scoped_channel_mask mask(channel, c.mask);
        memory_sink sink(channel);
        if (c.fail)
            EXPECT_THROW(traced(logger, true), std::runtime_error);
        else
            traced(logger, false);
        EXPECT_EQ(lines(sink), c.expected);
        EXPECT_EQ(logger.indent(), 0u);
        if (!c.expected.empty() && c.expected.front().severity == 32) {
            EXPECT_EQ(sink.records().front().sourcePath, "lib/traced");
            EXPECT_EQ(sink.records().front().line, 7);
        }
    }
}

// A trace that runs inside a destructor during unwinding, and is itself left normally, is no
// "[throw]": only exceptions raised after the scope began count.
struct traces_on_destruction {
    const flog::diagnostic_logger& logger;
    ~traces_on_destruction() { flog::trace_scope trace(logger, "cleanup"); }
};

TEST(TraceScope, UnwindingAlreadyUnderWayIsNotAThrow) {
    scoped_channel_mask mask("test::unwind", 32 | 64);
    memory_sink sink("test::unwind");
    flog::diagnostic_logger logger("test::unwind");
    try {
        flog::trace_scope outer(logger, "outer");
        traces_on_destruction guard{logger};
        throw std::runtime_error("fail");
    } catch (const std::runtime_error&) {
    }
    EXPECT_EQ(lines(sink), (std::vector<line>{{32, 0, "outer"},
                                              {32, 1, "cleanup"},
                                              {64, 1, "cleanup"},
                                              {64, 0, "outer [throw]"}}));
}

TEST(TraceScope, IndentBelongsToTheThread) {
    const std::string channel = "test::trace_threads";
    scoped_channel_mask mask(channel, 1 | 32 | 64);
    memory_sink sink(channel);
    flog::diagnostic_logger logger(channel);
    flog::trace_scope mainTrace(logger, "main");
    std::vector<std::thread> workers;
    for (int t = 0; t < 4; ++t)
        workers.emplace_back([&logger] { for (int i = 0; i < 50; ++i) traced(logger, false); });
    for (std::thread& worker : workers)
        worker.join();
    // Every "inside" sits at depth 1 and every "deeper" at 2, though the main thread's trace
    // was open all along and the workers' traces overlapped.
    std::size_t inside = 0;
    for (const line& l : lines(sink)) {
        if (l.text == "inside") {
            ++inside;
            EXPECT_EQ(l.indent, 1u);
        } else if (l.text == "deeper") {
            EXPECT_EQ(l.indent, 2u);
        }
    }
    EXPECT_EQ(inside, 200u);
    EXPECT_EQ(logger.indent(), 1u);
}

}  // namespace
