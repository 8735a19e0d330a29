// What the engine hands a typed entry: it drops warnings and keeps the error that the entry
// reports, to be thrown again where a test looks.
#pragma once

#include <exception>
#include <string>

#include <builtin/calling/OrroBuiltinEnvironment.hpp>

namespace testsupport {

struct EngineEnvironment final : Norvane::orro::IOrroBuiltinEnvironment,
                                 Norvane::orro::IOrroBuiltinAccessors {
    std::exception_ptr error;
    IOrroBuiltinAccessors* GetOrroBuiltinAccessors() override { return this; }
    void AddWarningMessage(const std::u16string&) override {}
    void SetInternalPendingException() override { error = std::current_exception(); }
};

}  // namespace testsupport
