// The once-only start of the builtin service bundles and the holders of the library's own
// service interfaces.
//
// DisableThreadLibraryCalls at process attach does not apply on Linux, which sends a shared
// object no thread notifications: the library has no load-time hook of its own here.
#include <builtin/services/BuiltinServices.hpp>

#include <fl/filesystem.hpp>

namespace Norvane::builtin {

namespace {

// Relative to the installation root; installAndStart resolves it there.
constexpr const char16_t* kBundleDirectory = u"bin/linux64/builtinservices";
constexpr const char* kBundleFilter = "(started-in=builtin2/builtin)";

void startBuiltinServices() {
    fl::filesystem::path directory(fl::filesystem::detail::make_native_form(kBundleDirectory, true),
                                   true);
    const cppmicroservices::LDAPFilter filter(kBundleFilter);
    foundation::cppmicroservices::installAndStart(std::move(directory), filter);
}

// One holder per interface, inside this library, so that every module shares it.
template <class T>
const std::shared_ptr<T>& holdService() {
    ensureBuiltinServicesStarted();
    static const std::shared_ptr<T> holder = findService<T>(cppmicroservices::LDAPFilter());
    return holder;
}

}  // namespace

void ensureBuiltinServicesStarted() {
    // An exception leaves the static unmade, so the next call starts again.
    static const bool started = (startBuiltinServices(), true);
    (void)started;
}

template <>
const std::shared_ptr<IZOBJRegWrapper>& getHeldService<IZOBJRegWrapper>() {
    return holdService<IZOBJRegWrapper>();
}

template <>
const std::shared_ptr<IOrroObjectRegister>& getHeldService<IOrroObjectRegister>() {
    return holdService<IOrroObjectRegister>();
}

template <>
const std::shared_ptr<StringSupport>& getHeldService<StringSupport>() {
    return holdService<StringSupport>();
}

}  // namespace Norvane::builtin
