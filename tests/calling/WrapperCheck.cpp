#include "WrapperCheck.hpp"

namespace Norvane::builtin::testing {
namespace {

// One call under one convention; `answer` is what a CanThrow function returns.
void checkWrapper(const Signature& signature, JIT_CALLING_CONVENTION convention, bool answer) {
  SCOPED_TRACE(signature.name + " convention " + std::to_string(static_cast<unsigned>(convention)) +
               " answer " + std::to_string(answer));
  ASSERT_NE(signature.wrapper, nullptr);
  OrroFunctionDescriptor descriptor{signature.wrapper, signature.natives.at(static_cast<std::size_t>(convention)),
                                    convention};
  StandInEnvironment environment;
  lastNativeCall = NativeCall{};
  canThrowAnswer = answer;
  bool pending = !answer;  // the wrapper must overwrite whatever the flag held

  const Parameter result = signature.wrapper(&descriptor, &environment, pending, signature.arguments);

  EXPECT_EQ(lastNativeCall.count, 1);
  EXPECT_EQ(lastNativeCall.form, convention);
  EXPECT_EQ(lastNativeCall.inputs, std::vector<Parameter>(signature.arguments.begin(), signature.arguments.end()));
  EXPECT_EQ(result, signature.result.value_or(Parameter()));
  EXPECT_EQ(result.which(), signature.result.value_or(Parameter()).which());
  const bool canThrow = convention == JIT_CALLING_CONVENTION::CanThrow;
  EXPECT_EQ(pending, canThrow && answer);
  EXPECT_EQ(lastNativeCall.descriptor, convention == JIT_CALLING_CONVENTION::Direct ? nullptr : &descriptor);
  if (canThrow) {
    EXPECT_EQ(lastNativeCall.outWasNull, !signature.result.has_value());
    EXPECT_EQ(lastNativeCall.environment, &environment);
  }
}

}  // namespace

void checkWrapperUnderAllConventions(const Signature& signature) {
  checkWrapper(signature, JIT_CALLING_CONVENTION::Direct, true);
  checkWrapper(signature, JIT_CALLING_CONVENTION::DirectWithDescriptor, true);
  checkWrapper(signature, JIT_CALLING_CONVENTION::CanThrow, true);
  checkWrapper(signature, JIT_CALLING_CONVENTION::CanThrow, false);
}

}  // namespace Norvane::builtin::testing
