// A bundle for the tests of installAndStart. Its manifest decides what it does: it registers
// an IGreeter with the manifest's "greeting", and then fails its start if the manifest has
// "fail-start", so that the tests can see a failed start take its services back.
#include <cppmicroservices/BundleActivator.h>
#include <cppmicroservices/BundleContext.h>

#include <memory>
#include <stdexcept>

#include "Greeter.hpp"

namespace {

class Greeter final : public testbundle::IGreeter {
public:
    explicit Greeter(std::string text) : text_(std::move(text)) {}
    std::string greet() const override { return text_; }

private:
    std::string text_;
};

class Activator final : public cppmicroservices::BundleActivator {
public:
    void Start(cppmicroservices::BundleContext context) override {
        const auto& headers = context.GetBundle().GetHeaders();
        context.RegisterService<testbundle::IGreeter>(
            std::make_shared<Greeter>(cppmicroservices::ref_any_cast<std::string>(headers.at("greeting"))),
            {{"greeting", headers.at("greeting")}});
        if (headers.contains("fail-start")) {
            throw std::runtime_error("refusing to start");
        }
    }
    void Stop(cppmicroservices::BundleContext /*context*/) override {}
};

}  // namespace

CPPMICROSERVICES_EXPORT_BUNDLE_ACTIVATOR(Activator)
