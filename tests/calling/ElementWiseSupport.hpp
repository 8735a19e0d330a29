// What the tests of element-wise lifting share: a parent environment that records what it is
// handed, element-wise variants built through the real record, and readers of result arrays.
#pragma once

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <exception>
#include <span>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <boost/variant/get.hpp>

#include <builtin/calling/ElementWise.hpp>
#include <builtin/variants/BuiltinVariant.hpp>
#include <ka/ka.hpp>
#include <array_values.hpp>
#include <live_arrays.hpp>

namespace elementwisetest {

using namespace Norvane::builtin;
using builtinreg::detail::elementWiseEntry;
using V = BuiltinVariant;

// The caller's environment: notes "warning <text>" and "exception <what>" in order of arrival.
// It can refuse to give accessors, and can throw from the warning with index failAtWarning.
class RecordingEnvironment final : public IOrroBuiltinEnvironment, private IOrroBuiltinAccessors {
 public:
  std::vector<std::string> events;
  bool withAccessors = true;
  int failAtWarning = -1;

  IOrroBuiltinAccessors* GetOrroBuiltinAccessors() override {
    return withAccessors ? this : nullptr;
  }

 private:
  void AddWarningMessage(const std::u16string& message) override {
    if (warnings_++ == failAtWarning) throw std::runtime_error("parent refuses");
    events.push_back("warning " + std::string(message.begin(), message.end()));
  }
  void SetInternalPendingException() override {
    try {
      throw;
    } catch (const std::exception& error) {
      events.push_back(std::string("exception ") + error.what());
    }
  }
  int warnings_ = 0;
};

// What a kernel of an element-wise variant declares about itself.
struct Flags {
  bool warns = false;
  bool throws = false;
  bool sideEffects = false;
  bool callsBack = false;
};

// A variant whose typed entry is the lifted entry of T with Inputs inputs, over `kernel` (a
// function pointer, or null). CanThrow goes with warnings or errors, as the record demands.
template <class T, std::size_t Inputs, class Kernel>
BuiltinVariant liftedVariant(Kernel kernel, JIT_CALLING_CONVENTION convention, Flags flags = {}) {
  return BuiltinVariant(
      nullptr,
      OrroFunctionDescriptor{&elementWiseEntry<T, Inputs>, reinterpret_cast<NativeEntry>(kernel),
                             convention},
      {}, {}, flags.callsBack ? V::CallsIntoKeldor::YES : V::CallsIntoKeldor::NO,
      flags.warns ? V::HasWarnings::YES : V::HasWarnings::NO,
      flags.throws ? V::HasExceptions::YES : V::HasExceptions::NO,
      flags.sideEffects ? V::HasSideEffects::YES : V::HasSideEffects::NO, "kernel", "kernel",
      "double", V::IsElementWise::YES);
}

inline Parameter call(BuiltinVariant& variant, IOrroBuiltinEnvironment* environment,
                      bool& pending, const ParameterList& arguments) {
  return variant.functionDescriptor.typedEntry(&variant.functionDescriptor, environment,
                                               pending, arguments);
}

// Hands the reference of `array` to a Parameter.
inline Parameter give(ka::ArrayPtr array) { return Parameter(array.release()); }
// Takes a further reference for a Parameter; the test keeps its own.
inline Parameter share(const ka::ArrayPtr& array) {
  matrix::takeReference(array.get());
  return Parameter(array.get());
}

// The array of a result, owned by the test from here on; fails if the result is no array.
inline ka::ArrayPtr resultArray(const Parameter& result) {
  kaArray_tag* const* array = boost::get<kaArray_tag*>(&result);
  EXPECT_NE(array, nullptr) << "result alternative " << result.which();
  return ka::ArrayPtr(array != nullptr ? *array : nullptr);
}

using testsupport::dimsOf;
using testsupport::elementsOf;

// Kernels count the calls made off the thread that the test named as calling.
struct ThreadCount {
  std::atomic<std::thread::id> caller{std::this_thread::get_id()};
  std::atomic<long> calls{0};
  std::atomic<long> offCaller{0};

  void reset() {
    caller = std::this_thread::get_id();
    calls = 0;
    offCaller = 0;
  }
  void note() {
    ++calls;
    if (std::this_thread::get_id() != caller.load()) ++offCaller;
  }
};
inline ThreadCount threads;

inline double negate(double x) {
  threads.note();
  return -x;
}

// An array of these dimensions holding 0, 1, 2, ... in column-major order.
inline ka::ArrayPtr ramp(const ka::Dims& dims) {
  std::size_t count = 1;
  for (std::size_t size : dims) count *= size;
  std::vector<double> values(count);
  for (std::size_t i = 0; i < count; ++i) values[i] = static_cast<double>(i);
  return ka::createFrom<double>(dims, values);
}

// The fixture of lifted calls: no array left alive, a recording caller, counts cleared.
class LiftedCallTest : public testsupport::LiveArrayTest {
 protected:
  void SetUp() override {
    LiveArrayTest::SetUp();
    threads.reset();
  }
  Parameter call(BuiltinVariant& variant, const ParameterList& arguments) {
    return elementwisetest::call(variant, &parent, pending, arguments);
  }
  // The result array, owned by the test.
  ka::ArrayPtr callForArray(BuiltinVariant& variant, const ParameterList& arguments) {
    return resultArray(call(variant, arguments));
  }
  RecordingEnvironment parent;
  bool pending = false;
};

}  // namespace elementwisetest
