// The bundle's entry: stores the runtime information of its manifest's "orro_objects", defines
// a class for each language-level class named there, and registers the class provider (with
// its ClassSystem view) and the object register. The registrations go when the bundle stops;
// the runtime information stays, as the table never shrinks.
#include <cppmicroservices/BundleActivator.h>
#include <cppmicroservices/BundleContext.h>

#include <builtin/objects/OrroObjectRuntimeInfo.hpp>

#include "ClassProvider.hpp"
#include "ObjectRegister.hpp"

namespace classbundle {

class Activator final : public cppmicroservices::BundleActivator {
public:
    void Start(cppmicroservices::BundleContext context) override {
        auto provider = std::make_shared<ClassProvider>();
        const cppmicroservices::AnyMap& headers = context.GetBundle().GetHeaders();
        if (const auto section = headers.find("orro_objects"); section != headers.end()) {
            const auto& orroObjects =
                cppmicroservices::ref_any_cast<cppmicroservices::AnyMap>(section->second);
            for (const std::string& kaClassName :
                 Norvane::builtin::types::addOrroObjectRuntimeInfo(orroObjects)) {
                provider->defineClass(kaClassName);
            }
        }
        context.RegisterService<Norvane::builtin::IZOBJRegWrapper, ClassSystem>(provider);
        context.RegisterService<Norvane::builtin::IOrroObjectRegister>(
            std::make_shared<ObjectRegister>());
    }
    void Stop(cppmicroservices::BundleContext /*context*/) override {}
};

}  // namespace classbundle

CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR(classbundle::Activator)
