// Bundles and the framework: installation, start and stop, and the framework's teardown.
#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/BundleActivator.h>
#include <cppmicroservices/BundleContext.h>
#include <cppmicroservices/Framework.h>
#include <cppmicroservices/FrameworkFactory.h>

#include <dlfcn.h>

#include <algorithm>
#include <exception>
#include <stdexcept>

#include "Core.h"

namespace cppmicroservices {

namespace detail {

namespace {

const char* const kInvalidContext = "The bundle context is no longer valid";

void SetContext(BundlePrivate& bundle, std::shared_ptr<BundleContextData> context) {
    std::shared_ptr<BundleContextData> previous;
    {
        std::lock_guard lock(bundle.contextMutex);
        previous = std::exchange(bundle.context, std::move(context));
    }
    if (previous) {
        previous->valid = false;
    }
}

// Loads the shared object once and finds its activator functions.
CreateActivatorFn LoadActivator(BundlePrivate& bundle) {
    if (bundle.library == nullptr) {
        bundle.library = dlopen(bundle.libraryPath.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (bundle.library == nullptr) {
            const char* reason = dlerror();
            throw std::runtime_error("cannot load " + bundle.libraryPath + ": " +
                                     (reason ? reason : "unknown reason"));
        }
    }
    auto create =
        reinterpret_cast<CreateActivatorFn>(dlsym(bundle.library, kCreateActivatorSymbol));
    auto destroy =
        reinterpret_cast<DestroyActivatorFn>(dlsym(bundle.library, kDestroyActivatorSymbol));
    if (create == nullptr || destroy == nullptr) {
        throw std::runtime_error(bundle.libraryPath + " has no bundle activator");
    }
    bundle.destroyActivator = destroy;
    return create;
}

void DestroyActivator(BundlePrivate& bundle) {
    if (bundle.activator != nullptr) {
        bundle.destroyActivator(std::exchange(bundle.activator, nullptr));
    }
}

// Undoes a start that failed half-way.
void AbandonStart(CoreContext& core, BundlePrivate& bundle) {
    SetContext(bundle, nullptr);
    UnregisterServicesOf(core, bundle);
    DestroyActivator(bundle);
    bundle.state = bundle.library != nullptr ? Bundle::STATE_RESOLVED : Bundle::STATE_INSTALLED;
}

void StartActivator(CoreContext& core, BundlePrivate& bundle,
                    const std::shared_ptr<BundlePrivate>& self) {
    bundle.state = Bundle::STATE_STARTING;
    try {
        const CreateActivatorFn create = LoadActivator(bundle);
        auto context = std::make_shared<BundleContextData>(self);
        SetContext(bundle, context);
        bundle.activator = create();
        bundle.activator->Start(BundleContext(context));
    } catch (const std::exception& error) {
        AbandonStart(core, bundle);
        throw std::runtime_error("Bundle " + bundle.location + ": " + error.what());
    } catch (...) {
        AbandonStart(core, bundle);
        throw std::runtime_error("Bundle " + bundle.location +
                                 ": unknown exception from its activator");
    }
}

// The bundles other than the system bundle, the last installed first.
std::vector<std::shared_ptr<BundlePrivate>> BundlesToStop(CoreContext& core) {
    std::lock_guard lock(core.mutex);
    std::vector<std::shared_ptr<BundlePrivate>> bundles(core.bundles.rbegin(), core.bundles.rend());
    std::erase_if(bundles, [](const auto& bundle) { return bundle->IsSystem(); });
    return bundles;
}

}  // namespace

void StartBundle(BundlePrivate& bundle, const std::shared_ptr<BundlePrivate>& self) {
    std::lock_guard lifecycle(bundle.lifecycleMutex);
    if (bundle.state == Bundle::STATE_ACTIVE) {
        return;
    }
    auto core = bundle.core.lock();
    if (!core) {
        throw std::runtime_error("Bundle " + bundle.location + ": its framework is gone");
    }
    if (bundle.IsSystem()) {
        SetContext(bundle, std::make_shared<BundleContextData>(self));
    } else {
        StartActivator(*core, bundle, self);
    }
    bundle.state = Bundle::STATE_ACTIVE;
}

void StopBundle(CoreContext& core, BundlePrivate& bundle) {
    std::exception_ptr error;
    if (bundle.IsSystem()) {
        for (const auto& other : BundlesToStop(core)) {
            try {
                StopBundle(core, *other);
            } catch (...) {
                if (!error) error = std::current_exception();
            }
        }
    }
    std::lock_guard lifecycle(bundle.lifecycleMutex);
    if (bundle.state != Bundle::STATE_ACTIVE) {
        return;
    }
    bundle.state = Bundle::STATE_STOPPING;
    if (bundle.activator != nullptr) {
        std::shared_ptr<BundleContextData> context;
        {
            std::lock_guard lock(bundle.contextMutex);
            context = bundle.context;
        }
        try {
            bundle.activator->Stop(BundleContext(context));
        } catch (...) {
            if (!error) error = std::current_exception();
        }
    }
    UnregisterServicesOf(core, bundle);
    SetContext(bundle, nullptr);
    DestroyActivator(bundle);
    bundle.state = Bundle::STATE_RESOLVED;
    if (error) {
        std::rethrow_exception(error);
    }
}

CoreContext::CoreContext() = default;

// The last framework handle is gone: stop what runs, and leave no service reachable.
CoreContext::~CoreContext() {
    if (!bundles.empty()) {
        try {
            StopBundle(*this, *bundles.front());
        } catch (...) {
            // Nobody is left to tell: the framework is going away.
        }
    }
    for (const auto& registration : std::vector(services)) {
        UnregisterService(nullptr, *registration);
    }
}

}  // namespace detail

namespace {

detail::BundlePrivate& Checked(const std::shared_ptr<detail::BundlePrivate>& data) {
    if (!data) {
        throw std::logic_error("The bundle is invalid");
    }
    return *data;
}

}  // namespace

Bundle::State Bundle::GetState() const {
    return Checked(d_).state;
}

BundleContext Bundle::GetBundleContext() const {
    auto& bundle = Checked(d_);
    std::lock_guard lock(bundle.contextMutex);
    return BundleContext(bundle.context);
}

long Bundle::GetBundleId() const {
    return Checked(d_).id;
}
std::string Bundle::GetLocation() const {
    return Checked(d_).location;
}
std::string Bundle::GetSymbolicName() const {
    return Checked(d_).symbolicName;
}
const AnyMap& Bundle::GetHeaders() const {
    return Checked(d_).headers;
}

void Bundle::Start() {
    detail::StartBundle(Checked(d_), d_);
}

void Bundle::Stop() {
    if (auto core = Checked(d_).core.lock()) {
        detail::StopBundle(*core, *d_);
    }
}

BundleContext::operator bool() const noexcept {
    return d_ != nullptr && d_->valid;
}

void BundleContext::CheckValid() const {
    if (!*this) {
        throw std::runtime_error(detail::kInvalidContext);
    }
}

Bundle BundleContext::GetBundle() const {
    CheckValid();
    return Bundle(d_->bundle.lock());
}

std::vector<Bundle> BundleContext::GetBundles() const {
    CheckValid();
    auto bundle = d_->bundle.lock();
    auto core = bundle ? bundle->core.lock() : nullptr;
    if (!core) {
        throw std::runtime_error(detail::kInvalidContext);
    }
    std::lock_guard lock(core->mutex);
    return std::vector<Bundle>(core->bundles.begin(), core->bundles.end());
}

namespace {

std::string RequiredText(const AnyMap& manifest, const char* key) {
    auto found = manifest.find(key);
    const std::string* text =
        found == manifest.end() ? nullptr : any_cast<std::string>(&found->second);
    if (text == nullptr || text->empty()) {
        throw std::invalid_argument(std::string("the manifest needs \"") + key +
                                    "\" as a non-empty string");
    }
    return *text;
}

}  // namespace

std::vector<Bundle> BundleContext::InstallBundles(const std::string& location,
                                                  const AnyMap& manifest) {
    CheckValid();
    auto bundle = std::make_shared<detail::BundlePrivate>();
    bundle->location = location;
    bundle->symbolicName = RequiredText(manifest, Constants::BUNDLE_SYMBOLICNAME);
    const std::string library = RequiredText(manifest, "bundle.library");
    bundle->libraryPath = library.front() == '/' ? library : location + "/" + library;
    bundle->headers = manifest;

    auto self = d_->bundle.lock();
    auto core = self ? self->core.lock() : nullptr;
    if (!core) {
        throw std::runtime_error(detail::kInvalidContext);
    }
    bundle->core = core;
    std::lock_guard lock(core->mutex);
    auto existing =
        std::find_if(core->bundles.begin(), core->bundles.end(),
                     [&](const auto& installed) { return installed->location == location; });
    if (existing != core->bundles.end()) {
        return {Bundle(*existing)};
    }
    bundle->id = core->nextBundleId++;
    core->bundles.push_back(bundle);
    return {Bundle(bundle)};
}

Framework::Framework(std::shared_ptr<detail::CoreContext> core)
    : Bundle(core->bundles.front()), core_(std::move(core)) {}

Framework FrameworkFactory::NewFramework(const FrameworkConfiguration& configuration) {
    auto core = std::make_shared<detail::CoreContext>();
    auto system = std::make_shared<detail::BundlePrivate>();
    system->id = 0;
    system->location = "System Bundle";
    system->symbolicName = "system_bundle";
    system->headers = configuration;
    system->core = core;
    core->bundles.push_back(std::move(system));
    return Framework(std::move(core));
}

}  // namespace cppmicroservices
