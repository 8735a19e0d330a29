// Calls the wrapper that the selector gives for a signature, under each convention, against a
// recording native function of exactly that signature, and checks everything the wrapper owes
// its caller: the member of the right output and input types, each argument in its place, the
// result in the alternative of its type. Only the description of the signature is a template;
// the checks are not, which keeps these tests quick to build.
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

// Three distinct values of each alternative, none of them the default 0 and the first with its
// top bits set, so that a wrapper that mixes up, narrows or drops a value shows it. Slots 0 and 1
// feed the inputs, slot 2 is what a native function returns. The pointers are never dereferenced.
inline char fakeObjects[9];
inline constexpr std::size_t resultSlot = 2;

template <class T>
T sample(std::size_t slot) {
  using Limits = std::numeric_limits<T>;
  if constexpr (std::is_pointer_v<T>) {  // the last three alternatives
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

// The environment handed to CanThrow functions; only its address is looked at.
class StandInEnvironment final : public orro::IOrroBuiltinEnvironment, private orro::IOrroBuiltinAccessors {
 public:
  orro::IOrroBuiltinAccessors* GetOrroBuiltinAccessors() override { return this; }

 private:
  void AddWarningMessage(const std::u16string&) override {}
  void SetInternalPendingException() override {}
};

// What the native functions saw since the test last cleared it, and what a CanThrow function
// answers.
struct NativeCall {
  int count = 0;
  std::optional<JIT_CALLING_CONVENTION> form;  // which of the native signatures was called
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

  // The untyped entries by convention 0, 1, 2, checked against the public native signatures.
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
    if constexpr (!std::is_void_v<R>) return sample<R>(resultSlot);
  }
};

// A native signature as the checks see it.
struct Signature {
  std::string name;
  builtinreg::detail::Wrapper wrapper;
  std::array<NativeEntry, 3> natives;  // by convention 0, 1, 2
  ParameterList arguments;             // sample values, one slot for each input
  std::optional<Parameter> result;     // what the native function returns; none for void
};

template <class R, class... A>
builtinreg::detail::Wrapper selectWrapper() {
  return builtinreg::detail::getExportedInlineCWrapperFcn(nullptr, parameterIndexOf<R>, parameterIndexOf<A>...);
}

template <class R, class... A>
Signature signatureOf() {
  Signature signature{boost::core::demangle(typeid(R).name()) + "(", selectWrapper<R, A...>(),
                      RecordingNative<R, A...>::entries(), {}, std::nullopt};
  ((signature.name += boost::core::demangle(typeid(A).name()) + ","), ...);
  signature.name += ")";
  std::size_t slot = 0;
  signature.arguments = {Parameter(sample<A>(slot++))...};
  if constexpr (!std::is_void_v<R>) signature.result = Parameter(sample<R>(resultSlot));
  return signature;
}

// Every convention, with a CanThrow function that reports and one that does not.
void checkWrapperUnderAllConventions(const Signature& signature);

template <class R, class... A>
void checkWrapperUnderAllConventions() {
  checkWrapperUnderAllConventions(signatureOf<R, A...>());
}

// The output type of output index Out: void for the index of "no output".
template <std::size_t Out>
using OutputOf = typename std::conditional_t<Out == noOutputIndex, std::type_identity<void>,
                                             boost::mpl::at_c<ParameterTypes, static_cast<long>(Out)>>::type;

}  // namespace Norvane::builtin::testing
