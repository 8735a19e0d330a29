#include <builtin/services/BuiltinServices.hpp>
#include <builtin/services/ModuleUtilities.hpp>

#include <cppmicroservices/LDAPProp.h>

#include <stdexcept>

namespace Norvane::builtin::builtinreg {

void callUpstreamModules(const std::initializer_list<std::string>& names,
                         const std::function<void(IOrroObjectModuleMgr*)>& callback) {
    const cppmicroservices::LDAPProp mangledName("cppMangledTypeName");
    for (const std::string& name : names) {
        // Looked up anew for each name: late services are seen, nothing is cached.
        const std::shared_ptr<IOrroObjectModuleMgr> module =
            findService<IOrroObjectModuleMgr>(mangledName == name);
        if (module) {
            callback(module.get());
        }
    }
}

BuiltinPath getBuiltinLibraryPath(const char16_t* relativePath) {
    if (relativePath == nullptr) {
        throw std::invalid_argument("getBuiltinLibraryPath: relativePath must not be null");
    }
    BuiltinPath path(std::u16string(), true);
    const std::u16string root = fl::filesystem::get_install_path();
    if (!root.empty()) {
        path.text() = fl::filesystem::detail::make_native_form(root, true);
    }
    const std::u16string relative(relativePath);
    if (!relative.empty()) {
        fl::filesystem::detail::concatenate_pathname(path.text(), relative, path.native());
    }
    return path;
}

void forcelink(const volatile void* /*address*/) {}

}  // namespace Norvane::builtin::builtinreg
