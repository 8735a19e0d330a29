// A kcall session over the sample module in process, for what a run of the program cannot
// show: every array that a line makes, on success and on each kind of error (a constructor's
// bad size, a range's zero step, too many names, an option word tried in both quotes and still
// refused), is gone once the session is, timed and explained calls included.
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <sstream>

#include <LiveArrays.hpp>
#include <ModuleHost.hpp>

#include "Session.hpp"

namespace kcall {
namespace {

class SampleSession : public testsupport::LiveArrayTest {
protected:
    // Started before any test counts live arrays: the modules keep what they make at start.
    static void SetUpTestSuite() { modules_ = testsupport::startModules().release(); }

    class Directory final : public BuiltinDirectory {
    public:
        const Norvane::builtin::BuiltinFcn* find(std::string_view name) const override {
            return modules_->find(name);
        }
    };

    static inline Norvane::builtin::declare::ModuleDirectory* modules_ = nullptr;
};

TEST_F(SampleSession, LeavesNothingAliveOnAnyRoad) {
    const struct {
        const char* line;
        bool succeeds;
    } lines[] = {
        {"x = rand(1, 5);", true},
        {"[r, c] = size(x);", true},
        {"[~, c] = size(ones([2 3 4]));", true},
        {"y = sort(x, 'descend');", true},
        {"z = [0:0.1:1 1:3; zeros(1, 14)];", true},
        {"upper('abc');", true},
        {"plus(x, 1);", true},
        {"zeros(-1)", false},
        {"1:0:3", false},
        {"[a, b] = plus(1, 2)", false},
        {"[a, b] = class(1)", false},
        {"rand('seed', 0.5)", false},
        {"sort(x, 'up', 'down')", false},
        {"round([1 2], 'sideways')", false},
    };
    const Directory directory;
    std::ostringstream out, err;
    {
        Session session(directory, out, err, false);
        session.explainCalls(directory, out);
        session.timeCalls(std::chrono::milliseconds(2));
        for (const auto& l : lines) EXPECT_EQ(session.runLine(l.line), l.succeeds) << l.line;
    }
    EXPECT_NE(out.str().find("time: plus(double 1x5, double 1x1): "), std::string::npos);
    EXPECT_NE(out.str().find("kcall tries again with them as strings"), std::string::npos);
}

}  // namespace
}  // namespace kcall
