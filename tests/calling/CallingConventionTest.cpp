// What a wrapper does around the native call: the flag, unknown conventions, a missing native
// function, exact fetches, exceptions, and the fatal end of convention 3.
#include "WrapperCheck.hpp"

#include <boost/variant/get.hpp>

#include <algorithm>
#include <stdexcept>

namespace Norvane::builtin::testing {
namespace {

using builtinreg::detail::terminateUnexpectedCallingConvention;

constexpr JIT_CALLING_CONVENTION convention(std::uint32_t value) {
  return static_cast<JIT_CALLING_CONVENTION>(value);
}

// A descriptor for R f(A...) of the given convention, with its recording native function.
template <class R, class... A>
OrroFunctionDescriptor descriptorFor(JIT_CALLING_CONVENTION c) {
  const auto entry = std::min<std::size_t>(static_cast<std::uint32_t>(c), 2);
  return {selectWrapper<R, A...>(), RecordingNative<R, A...>::entries()[entry], c};
}

Parameter call(OrroFunctionDescriptor& descriptor, bool& pending, const ParameterList& arguments) {
  StandInEnvironment environment;
  lastNativeCall = NativeCall{};
  return descriptor.typedEntry(&descriptor, &environment, pending, arguments);
}

// Neither case fetches: the arguments hold the wrong alternatives and no bad_get comes out.
TEST(InlineCWrapper, UnknownConventionOrMissingNativeEntryCallsNothing) {
  struct Case {
    const char* name;
    JIT_CALLING_CONVENTION convention;
    bool withNative;
  };
  const Case cases[] = {
      {"convention 4", convention(4), true},
      {"convention 0xFFFFFFFF", convention(0xFFFF'FFFFu), true},
      {"null native, Direct", JIT_CALLING_CONVENTION::Direct, false},
      {"null native, CanThrow", JIT_CALLING_CONVENTION::CanThrow, false},
  };
  const ParameterList wrongAlternatives{Parameter(1.5f), Parameter(1.5f)};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    auto descriptor = descriptorFor<double, double, int>(c.convention);
    if (!c.withNative) descriptor.nativeEntry = nullptr;
    bool pending = true;
    EXPECT_EQ(call(descriptor, pending, wrongAlternatives), Parameter());
    EXPECT_EQ(lastNativeCall.count, 0);
    EXPECT_FALSE(pending);
  }
}

// No conversion between alternatives, not even one that the language would make.
TEST(InlineCWrapper, FetchDemandsTheExactAlternative) {
  struct Case {
    const char* name;
    OrroFunctionDescriptor descriptor;
    ParameterList arguments;
  };
  const auto Direct = JIT_CALLING_CONVENTION::Direct;
  Case cases[] = {
      {"float for double", descriptorFor<double, double>(Direct), {Parameter(2.5f)}},
      {"int for __int64", descriptorFor<void, std::int64_t>(Direct), {Parameter(3)}},
      {"wrong second of two", descriptorFor<double, double, double>(Direct), {Parameter(2.5), Parameter(2.5f)}},
  };
  for (Case& c : cases) {
    SCOPED_TRACE(c.name);
    bool pending = true;
    try {
      call(c.descriptor, pending, c.arguments);
      ADD_FAILURE() << "no exception";
    } catch (const boost::bad_get& error) {
      EXPECT_STREQ(error.what(), "boost::bad_get: failed value get using boost::get");
    }
    EXPECT_FALSE(pending);
    EXPECT_EQ(lastNativeCall.count, 0);
  }
}

double throwingNative(double) { throw std::runtime_error("from the native function"); }
double throwingNativeWithDescriptor(double, OrroFunctionDescriptor*) {
  throw std::runtime_error("from the native function");
}

TEST(InlineCWrapper, ExceptionsOfDirectFunctionsReachTheCallerWithTheFlagFalse) {
  struct Case {
    JIT_CALLING_CONVENTION convention;
    NativeEntry native;
  };
  for (const Case c : {Case{JIT_CALLING_CONVENTION::Direct, reinterpret_cast<NativeEntry>(&throwingNative)},
                       Case{JIT_CALLING_CONVENTION::DirectWithDescriptor,
                            reinterpret_cast<NativeEntry>(&throwingNativeWithDescriptor)}}) {
    SCOPED_TRACE(static_cast<unsigned>(c.convention));
    OrroFunctionDescriptor descriptor{selectWrapper<double, double>(), c.native, c.convention};
    bool pending = true;
    EXPECT_THROW(call(descriptor, pending, {Parameter(1.0)}), std::runtime_error);
    EXPECT_FALSE(pending);
  }
}

using CallingConventionDeathTest = ::testing::Test;

TEST_F(CallingConventionDeathTest, UnexpectedConventionsAreFatal) {
  EXPECT_DEATH(terminateUnexpectedCallingConvention(convention(7)),
               "unexpected JIT_CALLING_CONVENTION encountered by builtin2 code: 7\n"
               "  at builtin2/interface/builtin/getFunctionDescriptor");
  EXPECT_DEATH(terminateUnexpectedCallingConvention(JIT_CALLING_CONVENTION::CanThrowOrroInternal),
               "CanThrowOrroInternal should not be encountered by builtin2 code\n"
               "  at builtin2/interface/builtin/getFunctionDescriptor");
  // A wrapper reached with the engine's convention stops before it looks at the native entry.
  auto descriptor = descriptorFor<double, double>(JIT_CALLING_CONVENTION::CanThrowOrroInternal);
  descriptor.nativeEntry = nullptr;
  bool pending = true;
  EXPECT_DEATH(call(descriptor, pending, {Parameter(1.0)}),
               "CanThrowOrroInternal should not be encountered by builtin2 code");
}

}  // namespace
}  // namespace Norvane::builtin::testing
