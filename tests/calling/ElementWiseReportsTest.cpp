// Lifted calls on worker threads: when a loop may go parallel, and what reaches the caller's
// environment from kernels that fail or warn, under several thread limits.
#include <oneapi/tbb/global_control.h>

#include <chrono>

#include "ElementWiseSupport.hpp"

namespace elementwisetest {
namespace {

using enum JIT_CALLING_CONVENTION;

// Element 0 waits until some other element has run on another thread, or two seconds. Only a
// loop that has been shared out gets past the wait early.
double negateWaitingForCompany(double x) {
  threads.note();
  if (x == 0) {
    const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    while (threads.offCaller == 0 && std::chrono::steady_clock::now() < until) {
      std::this_thread::yield();
    }
  }
  return -x;
}

double negateFirst(double a, double) { return negate(a); }
double negateFirstWaitingForCompany(double a, double) { return negateWaitingForCompany(a); }

// Fails, with a distinct exception, for every element of value 5 or more.
bool failFromFive(double x, double* out, IOrroBuiltinEnvironment* environment,
                  OrroFunctionDescriptor*) {
  threads.note();
  *out = -x;
  if (x < 5) return false;
  try {
    throw std::runtime_error("element " + std::to_string(x));
  } catch (...) {
    environment->GetOrroBuiltinAccessors()->SetInternalPendingException();
  }
  return true;
}

bool warnEach(double x, double* out, IOrroBuiltinEnvironment* environment,
              OrroFunctionDescriptor*) {
  threads.note();
  const std::string text = "w" + std::to_string(static_cast<long>(x));
  environment->GetOrroBuiltinAccessors()->AddWarningMessage(std::u16string(text.begin(), text.end()));
  *out = -x;
  return true;
}

bool pendingWithoutReport(double x, double* out, IOrroBuiltinEnvironment*,
                          OrroFunctionDescriptor*) {
  *out = -x;
  return true;
}

using ElementWiseReports = LiftedCallTest;

// Up to 1024 output elements the loop stays on the calling thread; above, it is shared out
// unless a flag forbids it. mayThrowErrors does not.
TEST_F(ElementWiseReports, LoopsGoParallelOnlyAboveTheThresholdAndWhenTheFlagsAllow) {
  struct Case {
    const char* name;
    std::size_t inputs, count;
    Flags flags;
    bool parallel;
  };
  const Case cases[] = {
      {"one input, 1024", 1, 1024, {}, false},
      {"one input, 1025", 1, 1025, {}, true},
      {"two inputs, 1024", 2, 1024, {}, false},
      {"two inputs, 1025", 2, 1025, {}, true},
      {"may throw errors", 1, 5000, {.throws = true}, true},
      {"side effects", 2, 5000, {.sideEffects = true}, false},
      {"calls back", 1, 5000, {.callsBack = true}, false},
  };
  tbb::global_control control(tbb::global_control::max_allowed_parallelism, 4);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    threads.reset();
    // A kernel that may throw is declared CanThrow; this one never reports, so Direct will do.
    const auto declared = c.flags.throws ? CanThrow : Direct;
    auto variant = c.inputs == 1
                       ? liftedVariant<double, 1>(c.parallel ? &negateWaitingForCompany : &negate,
                                                  declared, c.flags)
                       : liftedVariant<double, 2>(c.parallel ? &negateFirstWaitingForCompany
                                                             : &negateFirst,
                                                  declared, c.flags);
    variant.functionDescriptor.callingConvention = Direct;
    ParameterList arguments{give(ramp({1, c.count}))};
    if (c.inputs == 2) arguments.push_back(Parameter(0.0));
    const ka::ArrayPtr result = callForArray(variant, arguments);
    EXPECT_EQ(threads.calls, static_cast<long>(c.count));
    EXPECT_EQ(threads.offCaller > 0, c.parallel);
  }
}

// Many workers fail at once: the loop visits every element, one exception reaches the caller,
// the result is dropped (an input overwritten in place included) and pending is set.
TEST_F(ElementWiseReports, OneExceptionWinsAndTheResultIsDropped) {
  auto variant = liftedVariant<double, 1>(&failFromFive, CanThrow, {.throws = true});
  for (std::size_t limit : {1ul, 2ul, 4ul}) {
    SCOPED_TRACE("threads " + std::to_string(limit));
    tbb::global_control control(tbb::global_control::max_allowed_parallelism, limit);
    threads.reset();
    RecordingEnvironment caller;
    EXPECT_EQ(elementwisetest::call(variant, &caller, pending, {give(ramp({1, 20000}))}),
              Parameter(static_cast<kaArray_tag*>(nullptr)));
    EXPECT_TRUE(pending);
    EXPECT_EQ(threads.calls, 20000);
    ASSERT_EQ(caller.events.size(), 1u);
    EXPECT_EQ(caller.events[0].rfind("exception element ", 0), 0u);
    EXPECT_EQ(alive(), 0);
  }
}

TEST_F(ElementWiseReports, WarningsArriveInElementOrderFromTheCallingThread) {
  auto variant = liftedVariant<double, 2>(&warnEach, CanThrow, {.warns = true});
  tbb::global_control control(tbb::global_control::max_allowed_parallelism, 4);
  const ka::ArrayPtr result = callForArray(variant, {give(ramp({1, 3000})), Parameter(1.0)});
  EXPECT_TRUE(pending);
  EXPECT_EQ(threads.offCaller, 0);
  ASSERT_EQ(parent.events.size(), 3000u);
  for (std::size_t i = 0; i < parent.events.size(); ++i) {
    ASSERT_EQ(parent.events[i], "warning w" + std::to_string(i));
  }
  EXPECT_EQ(elementsOf<double>(result.get())[2999], -2999.0) << "warnings leave the result";
}

TEST_F(ElementWiseReports, PendingFollowsWhatTheCallerReceived) {
  // A kernel that answers true without reporting: the result stands and nothing is pending.
  auto quiet = liftedVariant<double, 1>(&pendingWithoutReport, CanThrow, {.throws = true});
  const ka::ArrayPtr kept = callForArray(quiet, {give(ramp({1, 3}))});
  EXPECT_EQ(elementsOf<double>(kept.get()), (std::vector<double>{0, -1, -2}));
  EXPECT_FALSE(pending);
  EXPECT_TRUE(parent.events.empty());

  // Without an environment the reports are lost, and the failure alone sets the flag.
  auto failing = liftedVariant<double, 1>(&failFromFive, CanThrow, {.throws = true});
  EXPECT_EQ(elementwisetest::call(failing, nullptr, pending, {give(ramp({1, 10}))}),
            Parameter(static_cast<kaArray_tag*>(nullptr)));
  EXPECT_TRUE(pending);
}

}  // namespace
}  // namespace elementwisetest
