// ParallelEnvironment: what its destructor hands to the parent and to the pending flag, and the
// first exception winning when workers report at once.
#include <builtin/calling/ParallelEnvironment.hpp>

#include <functional>
#include <thread>

#include "ElementWiseSupport.hpp"

namespace elementwisetest {
namespace {

using builtinreg::detail::ParallelEnvironment;

void warn(ParallelEnvironment& environment, const char* text) {
  const std::string narrow(text);
  environment.GetOrroBuiltinAccessors()->AddWarningMessage(
      std::u16string(narrow.begin(), narrow.end()));
}

void fail(ParallelEnvironment& environment, const std::string& what) {
  try {
    throw std::runtime_error(what);
  } catch (...) {
    environment.GetOrroBuiltinAccessors()->SetInternalPendingException();
  }
}

TEST(ParallelEnvironment, HandsOverWarningsFirstThenTheFirstException) {
  struct Case {
    const char* name;
    std::function<void(ParallelEnvironment&)> report;
    bool pendingBefore;
    bool pendingAfter;
    std::vector<std::string> events;
  };
  const Case cases[] = {
      {"nothing reported overwrites a true flag", [](ParallelEnvironment&) {}, true, false, {}},
      {"one warning", [](ParallelEnvironment& e) { warn(e, "w1"); }, false, true, {"warning w1"}},
      {"warnings around exceptions: warnings first, in order, and the first exception",
       [](ParallelEnvironment& e) {
         warn(e, "w1");
         fail(e, "first");
         warn(e, "w2");
         fail(e, "second");
       },
       false, true, {"warning w1", "warning w2", "exception first"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    RecordingEnvironment parent;
    bool pending = c.pendingBefore;
    {
      ParallelEnvironment environment(&parent, &pending);
      c.report(environment);
      EXPECT_EQ(pending, c.pendingBefore) << "the flag changes only at the hand-over";
    }
    EXPECT_EQ(pending, c.pendingAfter);
    EXPECT_EQ(parent.events, c.events);
  }
}

TEST(ParallelEnvironment, NoParentOrNoAccessorsDropsTheReportsAndKeepsTheFlag) {
  RecordingEnvironment withoutAccessors;
  withoutAccessors.withAccessors = false;
  for (IOrroBuiltinEnvironment* parent : {static_cast<IOrroBuiltinEnvironment*>(nullptr),
                                          static_cast<IOrroBuiltinEnvironment*>(&withoutAccessors)}) {
    SCOPED_TRACE(parent == nullptr ? "no parent" : "no accessors");
    bool pending = true;
    {
      ParallelEnvironment environment(parent, &pending);
      warn(environment, "w");
      fail(environment, "e");
    }
    EXPECT_TRUE(pending);
  }
  EXPECT_TRUE(withoutAccessors.events.empty());
}

TEST(ParallelEnvironment, HandOverRunsWithoutAFlag) {
  RecordingEnvironment parent;
  {
    ParallelEnvironment environment(&parent, nullptr);
    warn(environment, "w");
  }
  EXPECT_EQ(parent.events, std::vector<std::string>{"warning w"});
}

TEST(ParallelEnvironment, ContainsExceptionOnlyOnceOneIsStored) {
  ParallelEnvironment environment(nullptr, nullptr);
  EXPECT_EQ(environment.GetOrroBuiltinAccessors(), &environment);
  warn(environment, "w");
  EXPECT_FALSE(environment.containsException());
  fail(environment, "e");
  EXPECT_TRUE(environment.containsException());
}

// The parent's failure is delivered as its pending exception; what was not passed is dropped.
TEST(ParallelEnvironment, ParentThatThrowsOnAWarningGetsThatAsItsException) {
  RecordingEnvironment parent;
  parent.failAtWarning = 1;
  bool pending = false;
  {
    ParallelEnvironment environment(&parent, &pending);
    warn(environment, "w0");
    warn(environment, "w1");
    warn(environment, "w2");
    fail(environment, "stored");
  }
  EXPECT_TRUE(pending);
  EXPECT_EQ(parent.events, (std::vector<std::string>{"warning w0", "exception parent refuses"}));
}

// Plain threads rather than oneTBB's, whose hand-over ThreadSanitizer cannot see.
TEST(ParallelEnvironment, WorkersReportingAtOnceDeliverEveryWarningAndOneException) {
  constexpr int reportsPerThread = 500;
  for (int count : {1, 2, 4}) {
    SCOPED_TRACE("threads " + std::to_string(count));
    RecordingEnvironment parent;
    bool pending = false;
    {
      ParallelEnvironment environment(&parent, &pending);
      std::vector<std::thread> workers;
      for (int t = 0; t < count; ++t) {
        workers.emplace_back([&environment, t] {
          for (int i = 0; i < reportsPerThread; ++i) {
            warn(environment, "w");
            fail(environment, std::to_string(t));
          }
        });
      }
      for (std::thread& worker : workers) worker.join();
      EXPECT_TRUE(environment.containsException());
    }
    EXPECT_TRUE(pending);
    ASSERT_EQ(parent.events.size(), static_cast<std::size_t>(count * reportsPerThread) + 1);
    EXPECT_EQ(parent.events.back().rfind("exception ", 0), 0u);
  }
}

}  // namespace
}  // namespace elementwisetest
