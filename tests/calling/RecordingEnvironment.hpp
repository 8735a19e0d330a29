// A stand-in for the environments that the interpreter and the engine hand to typed entries:
// it keeps what native functions report, so tests can look at it afterwards.
#pragma once

#include <builtin/calling/OrroBuiltinEnvironment.hpp>

#include <exception>
#include <string>
#include <vector>

namespace Norvane::builtin::testing {

class RecordingEnvironment final : public orro::IOrroBuiltinEnvironment,
                                   private orro::IOrroBuiltinAccessors {
 public:
  orro::IOrroBuiltinAccessors* GetOrroBuiltinAccessors() override { return this; }

  std::vector<std::u16string> warnings;
  std::exception_ptr pendingException;

 private:
  void AddWarningMessage(const std::u16string& message) override { warnings.push_back(message); }
  void SetInternalPendingException() override { pendingException = std::current_exception(); }
};

}  // namespace Norvane::builtin::testing
