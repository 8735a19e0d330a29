// ParallelEnvironment: what its destructor hands to the parent and to the pending flag, and the
// first exception winning when threads report at once.
#include <builtin/calling/ParallelEnvironment.hpp>

#include <thread>

#include "ElementWiseSupport.hpp"

namespace elementwisetest {
namespace {

using builtinreg::detail::ParallelEnvironment;

void warn(IOrroBuiltinAccessors* accessors, char text) {
  accessors->AddWarningMessage(std::u16string(1, static_cast<char16_t>(text)));
}

void fail(IOrroBuiltinAccessors* accessors, char what) {
  try {
    throw std::runtime_error(std::string(1, what));
  } catch (...) {
    accessors->SetInternalPendingException();
  }
}

// Reports are written as text: 'w' and a letter warns, 'e' and a letter fails.
TEST(ParallelEnvironment, HandOverToTheParent) {
  enum class Parent { RECORDING, NONE, NO_ACCESSORS, REFUSES_SECOND_WARNING };
  struct Case {
    const char* name;
    Parent parent;
    const char* reports;
    bool flagBefore, flagAfter;
    std::vector<std::string> events;
  };
  const Case cases[] = {
      {"nothing reported clears the flag", Parent::RECORDING, "", true, false, {}},
      {"one warning", Parent::RECORDING, "wa", false, true, {"warning a"}},
      {"warnings first, in order, then the first exception", Parent::RECORDING, "waexwbey",
       false, true, {"warning a", "warning b", "exception x"}},
      {"no parent: dropped, flag kept", Parent::NONE, "waex", true, true, {}},
      {"no accessors: dropped, flag kept", Parent::NO_ACCESSORS, "waex", true, true, {}},
      {"the parent's failure becomes its exception", Parent::REFUSES_SECOND_WARNING, "wawbwcex",
       false, true, {"warning a", "exception parent refuses"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    RecordingEnvironment parent;
    parent.withAccessors = c.parent != Parent::NO_ACCESSORS;
    parent.failAtWarning = c.parent == Parent::REFUSES_SECOND_WARNING ? 1 : -1;
    bool pending = c.flagBefore;
    {
      ParallelEnvironment environment(c.parent == Parent::NONE ? nullptr : &parent, &pending);
      IOrroBuiltinAccessors* const accessors = environment.GetOrroBuiltinAccessors();
      ASSERT_EQ(accessors, &environment);
      for (const char* report = c.reports; *report != 0; report += 2) {
        (report[0] == 'w' ? warn : fail)(accessors, report[1]);
      }
      EXPECT_EQ(environment.containsException(), std::string(c.reports).find('e') != std::string::npos);
      EXPECT_EQ(pending, c.flagBefore) << "the flag changes only at the hand-over";
    }
    EXPECT_EQ(pending, c.flagAfter);
    EXPECT_EQ(parent.events, c.events);
  }
  RecordingEnvironment parent;
  ParallelEnvironment(&parent, nullptr).AddWarningMessage(u"a");  // no flag: handed over all the same
  EXPECT_EQ(parent.events, std::vector<std::string>{"warning a"});
}

// Plain threads rather than oneTBB's, whose hand-over ThreadSanitizer cannot see.
TEST(ParallelEnvironment, ThreadsReportingAtOnceDeliverEveryWarningAndOneException) {
  constexpr int reportsPerThread = 500;
  for (int count : {1, 2, 4}) {
    SCOPED_TRACE("threads " + std::to_string(count));
    RecordingEnvironment parent;
    bool pending = false;
    {
      ParallelEnvironment environment(&parent, &pending);
      std::vector<std::thread> threads;
      for (int t = 0; t < count; ++t) {
        threads.emplace_back([&environment] {
          for (int i = 0; i < reportsPerThread; ++i) {
            warn(&environment, 'w');
            fail(&environment, 'e');
          }
        });
      }
      for (std::thread& thread : threads) thread.join();
    }
    EXPECT_TRUE(pending);
    ASSERT_EQ(parent.events.size(), static_cast<std::size_t>(count * reportsPerThread) + 1);
    EXPECT_EQ(parent.events.back(), "exception e");
  }
}

}  // namespace
}  // namespace elementwisetest
