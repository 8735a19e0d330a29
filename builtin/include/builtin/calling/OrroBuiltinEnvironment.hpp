// The two interfaces through which a native function reports warnings and errors without
// unwinding into the engine's generated code. A typed entry receives an environment; a
// function that reports asks it for its accessors, records, and returns true so that its
// caller looks.
//
// The slot order of the virtual operations is fixed: the engine calls them through the table.
#pragma once

#include <builtin/config.hpp>

#include <string>

namespace Norvane::orro {

class IOrroBuiltinAccessors;

class BUILTIN_API IOrroBuiltinEnvironment {
public:
    virtual ~IOrroBuiltinEnvironment();  // slot 0
    // May return null where reports cannot be taken.
    virtual IOrroBuiltinAccessors* GetOrroBuiltinAccessors() = 0;  // slot 1

protected:
    IOrroBuiltinEnvironment() = default;
    IOrroBuiltinEnvironment(const IOrroBuiltinEnvironment&) = default;
    IOrroBuiltinEnvironment& operator=(const IOrroBuiltinEnvironment&) = default;
};

class BUILTIN_API IOrroBuiltinAccessors {
public:
    virtual ~IOrroBuiltinAccessors();  // slot 0
    // Records one warning whose text is already formatted.
    virtual void AddWarningMessage(const std::u16string& message) = 0;  // slot 1
    // Records the exception being handled; call it only inside a catch handler.
    virtual void SetInternalPendingException() = 0;  // slot 2

protected:
    IOrroBuiltinAccessors() = default;
    IOrroBuiltinAccessors(const IOrroBuiltinAccessors&) = default;
    IOrroBuiltinAccessors& operator=(const IOrroBuiltinAccessors&) = default;
};

}  // namespace Norvane::orro

namespace Norvane::builtin {
using orro::IOrroBuiltinAccessors;
using orro::IOrroBuiltinEnvironment;
}  // namespace Norvane::builtin
