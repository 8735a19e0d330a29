// A module of builtins, as a bundle offers it:
//
//   void declareSample(declare::Module& module) {
//       module.builtin("plus").def(&addDoubles, declare::pure, declare::elementwise);
//       module.builtin("size").fallback(&sizeOfArrays, declare::pure);
//   }
//   KELDOR_BUILTIN_MODULE("sample", declareSample)
//
// The macro makes the bundle's activator: when the bundle starts it declares the builtins,
// makes their lists and function objects, and registers the module as the IBuiltinModule
// service with the property "builtin-module"; the service goes when the bundle stops. A
// declaration that fails (std::invalid_argument) fails the start of the bundle.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

#include <cppmicroservices/BundleActivator.h>
#include <cppmicroservices/BundleContext.h>

#include <builtin/config.hpp>
#include <builtin/declare/Builtin.hpp>
#include <builtin/services/IBuiltinModule.hpp>

namespace Norvane::builtin::declare {

class BUILTIN_API Module final : public IBuiltinModule {
public:
    explicit Module(std::string name);
    ~Module() override;

    // The builtin of that name, for more declarations; made at its first use. Throws
    // std::logic_error once the module is finished, std::invalid_argument for an empty name.
    Builtin& builtin(const std::string& name);

    // Registers the native class C (Objects.hpp) with the class system and the engine, so that
    // C* can stand in signatures and its objects classify at a call.
    template <class C>
    Module& object() {
        registerObjectType(typeid(C));
        return *this;
    }

    // Makes the lists and function objects of every builtin declared.
    void finish();

    std::string getModuleName() const override { return name_; }
    std::vector<std::string> getBuiltinNames() const override;
    const BuiltinFcn* getBuiltin(std::string_view name) const override;
    const builtinreg::BuiltinVariantLists* getVariantLists(std::string_view name) const override;

private:
    void registerObjectType(const std::type_info& type);

    std::string name_;
    std::map<std::string, Builtin, std::less<>> declaring_;
    std::map<std::string, std::unique_ptr<DeclaredBuiltin>, std::less<>> declared_;
    bool finished_ = false;
};

// The property under which a module's service is registered, and the filter that starts
// module bundles.
inline constexpr const char* moduleProperty = "builtin-module";
inline constexpr const char* moduleBundleFilter = "(builtin-module=*)";

namespace detail {

// Declares and finishes the module, and logs what the lint finds. A mistake in a declaration
// (std::invalid_argument) comes out with the module's name in front.
BUILTIN_API std::shared_ptr<Module> declareModule(const std::string& name,
                                                  void (*declare)(Module&));

// Checks the name against the bundle's manifest, declares the module and registers its service.
BUILTIN_API void startModule(cppmicroservices::BundleContext& context, const std::string& name,
                             void (*declare)(Module&));

template <const char* Name, void (*Declare)(Module&)>
class ModuleActivator final : public cppmicroservices::BundleActivator {
public:
    void Start(cppmicroservices::BundleContext context) override {
        startModule(context, Name, Declare);
    }
    void Stop(cppmicroservices::BundleContext) override {}
};

}  // namespace detail

}  // namespace Norvane::builtin::declare

#define KELDOR_BUILTIN_MODULE(NAME, DECLARE)                                                     \
    namespace {                                                                                  \
    constexpr char keldorBuiltinModuleName[] = NAME;                                             \
    using KeldorBuiltinModuleActivator =                                                         \
        ::Norvane::builtin::declare::detail::ModuleActivator<keldorBuiltinModuleName, &DECLARE>; \
    }                                                                                            \
    CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR(KeldorBuiltinModuleActivator)
