// Calls the wrapper that the selector gives for a signature, under each convention, against a
// recording native function of that signature: each input in its place, the result in its type.
#pragma once

#include <builtin/calling/InlineCWrappers.hpp>
#include <builtin/calling/OrroBuiltinEnvironment.hpp>

#include <boost/core/demangle.hpp>
#include <boost/variant/detail/variant_io.hpp>  // lets failures print a Parameter
#include <gtest/gtest.h>

#include <array>
#include <complex>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

namespace Norvane::builtin::testing {

// Distinct values of each alternative, none 0 and the first with its top bits set, so that a mixed
// up, narrowed or dropped value shows. Slots 0 and 1 feed inputs, slot 2 is the native result.
inline char fakeObjects[9];  // never dereferenced

template <class T>
T sample(std::size_t slot) {
  using Limits = std::numeric_limits<T>;
  if constexpr (std::is_pointer_v<T>) {
    return reinterpret_cast<T>(&fakeObjects[3 * (parameterIndexOf<T> - 13) + slot]);
  } else if constexpr (std::is_same_v<T, bool>) {
    return slot != 1;
  } else if constexpr (std::is_arithmetic_v<T>) {
    const T values[] = {Limits::max(), static_cast<T>(Limits::max() / 3),
                        static_cast<T>(Limits::is_signed ? Limits::lowest() / 2 : Limits::max() / 5 * 2)};
    return values[slot];
  } else {  // std::complex
    using Part = typename T::value_type;
    return T(sample<Part>(slot), sample<Part>((slot + 1) % 3));
  }
}

class StandInEnvironment final : public orro::IOrroBuiltinEnvironment, private orro::IOrroBuiltinAccessors {
 public:
  orro::IOrroBuiltinAccessors* GetOrroBuiltinAccessors() override { return this; }

 private:
  void AddWarningMessage(const std::u16string&) override {}
  void SetInternalPendingException() override {}
};

struct NativeCall {
  int count = 0;
  std::optional<JIT_CALLING_CONVENTION> form;  // which native signature was called
  std::vector<Parameter> inputs;
  bool outWasNull = false;
  orro::IOrroBuiltinEnvironment* environment = nullptr;
  orro::OrroFunctionDescriptor* descriptor = nullptr;
};
inline NativeCall lastNativeCall;
inline bool canThrowAnswer = false;

// Native functions of R f(A...) under each convention that note their call and return sample 2.
template <class R, class... A>
struct RecordingNative {
  using Out = std::conditional_t<std::is_void_v<R>, void*, R*>;
  static R direct(A... a) {
    note(JIT_CALLING_CONVENTION::Direct, nullptr, a...);
    return result();
  }
  static R withDescriptor(A... a, orro::OrroFunctionDescriptor* descriptor) {
    note(JIT_CALLING_CONVENTION::DirectWithDescriptor, descriptor, a...);
    return result();
  }
  static bool canThrow(A... a, Out out, orro::IOrroBuiltinEnvironment* environment,
                       orro::OrroFunctionDescriptor* descriptor) {
    note(JIT_CALLING_CONVENTION::CanThrow, descriptor, a...);
    lastNativeCall.outWasNull = out == nullptr;
    lastNativeCall.environment = environment;
    if constexpr (!std::is_void_v<R>) {
      if (out != nullptr) *out = result();
    }
    return canThrowAnswer;
  }
  // The entries by convention 0, 1, 2, checked against the public native signatures.
  static std::array<NativeEntry, 3> entries() {
    using enum JIT_CALLING_CONVENTION;
    const orro::NativeFunction<Direct, R, A...> plain = &direct;
    const orro::NativeFunction<DirectWithDescriptor, R, A...> described = &withDescriptor;
    const orro::NativeFunction<CanThrow, R, A...> reporting = &canThrow;
    return {reinterpret_cast<NativeEntry>(plain), reinterpret_cast<NativeEntry>(described),
            reinterpret_cast<NativeEntry>(reporting)};
  }

 private:
  static void note(JIT_CALLING_CONVENTION form, orro::OrroFunctionDescriptor* descriptor, A... a) {
    ++lastNativeCall.count;
    lastNativeCall.form = form;
    lastNativeCall.inputs = {Parameter(a)...};
    lastNativeCall.descriptor = descriptor;
  }
  static R result() {
    if constexpr (!std::is_void_v<R>) return sample<R>(2);
  }
};

template <class R, class... A>
builtinreg::detail::Wrapper selectWrapper() {
  return builtinreg::detail::getExportedInlineCWrapperFcn(nullptr, parameterIndexOf<R>, parameterIndexOf<A>...);
}

// Every convention, with a CanThrow function that reports and one that does not. Only this
// template is instantiated per signature; the checks live in WrapperTest.cpp.
void checkWrapper(const std::string& name, builtinreg::detail::Wrapper wrapper, const std::array<NativeEntry, 3>& natives,
                  const ParameterList& arguments, const std::optional<Parameter>& result);

template <class R, class... A>
void checkWrapperUnderAllConventions() {
  std::string name = boost::core::demangle(typeid(R).name()) + "(";
  ((name += boost::core::demangle(typeid(A).name()) + ","), ...);
  std::size_t slot = 0;
  const ParameterList arguments = {Parameter(sample<A>(slot++))...};
  std::optional<Parameter> result;
  if constexpr (!std::is_void_v<R>) result = Parameter(sample<R>(2));
  checkWrapper(name + ")", selectWrapper<R, A...>(), RecordingNative<R, A...>::entries(), arguments, result);
}

// The output type of output index Out: void for "no output".
template <std::size_t Out>
using OutputOf = typename std::conditional_t<Out == noOutputIndex, std::type_identity<void>,
                                             boost::mpl::at_c<ParameterTypes, static_cast<long>(Out)>>::type;

}  // namespace Norvane::builtin::testing
