// Native functions of every convention, one set for each signature, that record what a
// wrapper handed them and return a known value. Checking a wrapper against them shows that the
// selector picked the member of the right output and input types and that it passed each
// argument in its place.
#pragma once

#include "SampleValues.hpp"

#include <builtin/calling/CallingConvention.hpp>
#include <builtin/calling/OrroFunctionDescriptor.hpp>

#include <optional>
#include <type_traits>
#include <vector>

namespace Norvane::builtin::testing {

struct NativeCall {
  int count = 0;
  std::optional<JIT_CALLING_CONVENTION> form;  // which of the native signatures was called
  std::vector<Parameter> inputs;
  bool outWasNull = false;
  orro::IOrroBuiltinEnvironment* environment = nullptr;
  orro::OrroFunctionDescriptor* descriptor = nullptr;
};

// What the native functions saw since the test last cleared it, and what a CanThrow function
// answers.
inline NativeCall lastNativeCall;
inline bool canThrowAnswer = false;

template <class R, class... A>
struct RecordingNative {
  using Out = std::conditional_t<std::is_void_v<R>, void*, R*>;

  static R direct(A... a) {
    note(JIT_CALLING_CONVENTION::Direct, a...);
    return result();
  }

  static R withDescriptor(A... a, orro::OrroFunctionDescriptor* descriptor) {
    note(JIT_CALLING_CONVENTION::DirectWithDescriptor, a...);
    lastNativeCall.descriptor = descriptor;
    return result();
  }

  static bool canThrow(A... a, Out out, orro::IOrroBuiltinEnvironment* environment,
                       orro::OrroFunctionDescriptor* descriptor) {
    note(JIT_CALLING_CONVENTION::CanThrow, a...);
    lastNativeCall.outWasNull = out == nullptr;
    lastNativeCall.environment = environment;
    lastNativeCall.descriptor = descriptor;
    if constexpr (!std::is_void_v<R>) {
      if (out != nullptr) {
        *out = sample<R>(resultSlot);
      }
    }
    return canThrowAnswer;
  }

  // The untyped entry for a convention, checked against the public native signatures.
  static NativeEntry entryFor(JIT_CALLING_CONVENTION convention) {
    using enum JIT_CALLING_CONVENTION;
    const orro::NativeFunction<Direct, R, A...> plain = &direct;
    const orro::NativeFunction<DirectWithDescriptor, R, A...> described = &withDescriptor;
    const orro::NativeFunction<CanThrow, R, A...> reporting = &canThrow;
    switch (convention) {
      case Direct:
        return reinterpret_cast<NativeEntry>(plain);
      case DirectWithDescriptor:
        return reinterpret_cast<NativeEntry>(described);
      default:
        return reinterpret_cast<NativeEntry>(reporting);
    }
  }

 private:
  static void note(JIT_CALLING_CONVENTION form, A... a) {
    ++lastNativeCall.count;
    lastNativeCall.form = form;
    lastNativeCall.inputs = {Parameter(a)...};
  }

  static R result() {
    if constexpr (!std::is_void_v<R>) {
      return sample<R>(resultSlot);
    }
  }
};

}  // namespace Norvane::builtin::testing
