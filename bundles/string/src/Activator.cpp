// The bundle's entry: registers the reference string support when the bundle starts. Its
// registration goes when the bundle stops.
#include <cppmicroservices/BundleActivator.h>
#include <cppmicroservices/BundleContext.h>

#include "KeldorStringSupport.hpp"

namespace stringbundle {

class Activator final : public cppmicroservices::BundleActivator {
public:
    void Start(cppmicroservices::BundleContext context) override {
        context.RegisterService<Norvane::builtin::StringSupport>(
            std::make_shared<KeldorStringSupport>());
    }
    void Stop(cppmicroservices::BundleContext /*context*/) override {}
};

}  // namespace stringbundle

CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR(stringbundle::Activator)
