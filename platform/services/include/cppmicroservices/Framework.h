// Framework: the service framework of a process, itself a bundle (id 0, the system bundle).
// Made by FrameworkFactory; Start makes its context usable, Stop stops every bundle (the last
// installed first) and then the framework. When the last handle goes, active bundles are
// stopped and the registry is emptied.
#pragma once

#include <memory>

#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleContext.h>

namespace cppmicroservices {

namespace detail {
struct CoreContext;
}

class Framework : public Bundle {
public:
    Framework() = default;
    // For the factory.
    explicit Framework(std::shared_ptr<detail::CoreContext> core);

private:
    std::shared_ptr<detail::CoreContext> core_;
};

}  // namespace cppmicroservices
