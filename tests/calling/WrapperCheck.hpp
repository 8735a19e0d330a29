// Calls the wrapper that the selector gives for a signature, under each convention, against a
// recording native function of exactly that signature, and checks everything the wrapper owes
// its caller. Only the description of the signature is a template; the checks are not, which
// keeps these tests quick to build.
#pragma once

#include "RecordingEnvironment.hpp"
#include "RecordingNative.hpp"

#include <builtin/calling/InlineCWrappers.hpp>

#include <boost/core/demangle.hpp>
#include <gtest/gtest.h>

#include <array>
#include <optional>
#include <string>
#include <typeinfo>

namespace Norvane::builtin::testing {

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
  return builtinreg::detail::getExportedInlineCWrapperFcn(nullptr, parameterIndexOf<R>,
                                                          parameterIndexOf<A>...);
}

template <class R, class... A>
Signature signatureOf() {
  using enum JIT_CALLING_CONVENTION;
  using Native = RecordingNative<R, A...>;
  Signature signature;
  signature.name = boost::core::demangle(typeid(R).name()) + "(";
  ((signature.name += boost::core::demangle(typeid(A).name()) + ","), ...);
  signature.name += ")";
  signature.wrapper = selectWrapper<R, A...>();
  signature.natives = {Native::entryFor(Direct), Native::entryFor(DirectWithDescriptor),
                       Native::entryFor(CanThrow)};
  std::size_t slot = 0;
  signature.arguments = {Parameter(sample<A>(slot++))...};
  if constexpr (!std::is_void_v<R>) {
    signature.result = Parameter(sample<R>(resultSlot));
  }
  return signature;
}

// One call under one convention; `answer` is what a CanThrow function returns.
void checkWrapper(const Signature& signature, JIT_CALLING_CONVENTION convention, bool answer);

// Every convention, with a CanThrow function that reports and one that does not.
void checkWrapperUnderAllConventions(const Signature& signature);

template <class R, class... A>
void checkWrapperUnderAllConventions() {
  checkWrapperUnderAllConventions(signatureOf<R, A...>());
}

// The output type of output index Out: void for the index of "no output".
template <std::size_t Out>
using OutputOf =
    typename std::conditional_t<Out == noOutputIndex, std::type_identity<void>,
                                boost::mpl::at_c<ParameterTypes, static_cast<long>(Out)>>::type;

}  // namespace Norvane::builtin::testing
