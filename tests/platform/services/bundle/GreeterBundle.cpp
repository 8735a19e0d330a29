// A bundle for the tests of installAndStart: it registers an IGreeter with its manifest's
// "greeting", then fails its start if the manifest has "fail-start", so that the tests can see
// a failed start take its services back.
#include <cppmicroservices/BundleActivator.h>
#include <cppmicroservices/BundleContext.h>

#include <memory>
#include <stdexcept>

#include "Greeter.hpp"

namespace {

struct Greeter final : testbundle::IGreeter {
    explicit Greeter(std::string greeting) : text(std::move(greeting)) {}
    std::string greet() const override { return text; }
    std::string text;
};

struct Activator final : cppmicroservices::BundleActivator {
    void Start(cppmicroservices::BundleContext context) override {
        const auto& headers = context.GetBundle().GetHeaders();
        context.RegisterService<testbundle::IGreeter>(
            std::make_shared<Greeter>(
                cppmicroservices::ref_any_cast<std::string>(headers.at("greeting"))),
            {{"greeting", headers.at("greeting")}});
        if (headers.contains("fail-start")) throw std::runtime_error("refusing to start");
    }
    void Stop(cppmicroservices::BundleContext) override {}
};

}  // namespace

CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR(Activator)
