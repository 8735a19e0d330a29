// Abstract interfaces of modules that build on this library. The library declares them and
// never calls their operations: they are a contract between the modules that implement them
// and the code that reaches them, e.g. through callUpstreamModules.
#pragma once

#include <string>

#include <builtin/config.hpp>

namespace Norvane::builtin {

// A module that contributes builtins to the runtime.
class BUILTIN_API IBuiltinModule {
public:
    IBuiltinModule();
    IBuiltinModule(const IBuiltinModule&);
    IBuiltinModule(IBuiltinModule&&) noexcept;
    IBuiltinModule& operator=(const IBuiltinModule&);
    IBuiltinModule& operator=(IBuiltinModule&&) noexcept;
    virtual ~IBuiltinModule();

    // The module's name, as upstream lists name it.
    virtual std::string getModuleName() const = 0;
    // Called once the module's shared object is loaded, before any registration.
    virtual void initializeModule() = 0;
    // Declares the module's builtins to the runtime.
    virtual void registerBuiltins() = 0;
    // Called before the module's shared object goes away.
    virtual void terminateModule() = 0;
};

namespace builtinreg {

// A module's manager of engine objects, offered as a service with the property
// cppMangledTypeName naming the module, so that downstream modules can have the object types
// of their upstream modules registered first.
class BUILTIN_API IOrroObjectModuleMgr {
public:
    IOrroObjectModuleMgr();
    IOrroObjectModuleMgr(const IOrroObjectModuleMgr&);
    IOrroObjectModuleMgr(IOrroObjectModuleMgr&&) noexcept;
    IOrroObjectModuleMgr& operator=(const IOrroObjectModuleMgr&);
    IOrroObjectModuleMgr& operator=(IOrroObjectModuleMgr&&) noexcept;
    virtual ~IOrroObjectModuleMgr();

    // The name under which the module publishes this service.
    virtual std::string getModuleName() const = 0;
    // Registers the module's object types with the engine; a second call does nothing.
    virtual void registerOrroObjects() = 0;
};

}  // namespace builtinreg
}  // namespace Norvane::builtin
