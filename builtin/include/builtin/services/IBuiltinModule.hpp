// Abstract interfaces of modules that build on this library. The library declares them and
// never calls their operations: they are a contract between the modules that implement them
// and the code that reaches them, e.g. through callUpstreamModules.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <builtin/config.hpp>

namespace Norvane::builtin {

class BuiltinFcn;
namespace builtinreg {
struct BuiltinVariantLists;
}

// A module that contributes builtins to the runtime: a bundle offers it as a service with the
// property "builtin-module" naming the module. Its builtins are declared when the bundle starts
// and live until it stops; a host lists them and takes them by name.
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
    // The names of the module's builtins, sorted.
    virtual std::vector<std::string> getBuiltinNames() const = 0;
    // The builtin of that name, or null; valid while the module's bundle runs.
    virtual const BuiltinFcn* getBuiltin(std::string_view name) const = 0;
    // The search lists of the builtin of that name, or null; valid while the bundle runs.
    virtual const builtinreg::BuiltinVariantLists* getVariantLists(std::string_view name) const = 0;
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
