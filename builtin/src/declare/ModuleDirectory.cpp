#include <builtin/declare/ModuleDirectory.hpp>

#include <stdexcept>

#include <cppmicroservices/LDAPFilter.h>
#include <foundation/cppmicroservices/framework.hpp>

#include <builtin/declare/Module.hpp>
#include <builtin/services/BuiltinServices.hpp>

namespace Norvane::builtin::declare {

fl::filesystem::path builtinServicesFolder() {
    return fl::filesystem::path(
        fl::filesystem::detail::make_native_form(u"bin/linux64/builtinservices", true), true);
}

ModuleDirectory ModuleDirectory::start(const std::vector<fl::filesystem::path>& folders) {
    // Modules declare their builtins with the builtin services there (string support, the class
    // provider), so those start first.
    ensureBuiltinServicesStarted();
    const cppmicroservices::LDAPFilter filter(moduleBundleFilter);
    for (const fl::filesystem::path& folder : folders) {
        foundation::cppmicroservices::installAndStart(folder, filter);
    }
    return ModuleDirectory();
}

ModuleDirectory::ModuleDirectory() {
    const auto framework = foundation::cppmicroservices::getFramework();
    if (!framework) return;
    auto context = framework->GetBundleContext();
    for (const auto& reference : context.GetServiceReferences<IBuiltinModule>()) {
        std::shared_ptr<IBuiltinModule> module = context.GetService(reference);
        if (!module) continue;
        for (const std::string& name : module->getBuiltinNames()) {
            const auto [at, added] = byBuiltin_.emplace(name, module.get());
            if (!added) {
                throw std::runtime_error("the builtin " + name + " is declared by two modules: " +
                                         at->second->getModuleName() + " and " +
                                         module->getModuleName());
            }
        }
        modules_.push_back(std::move(module));
    }
}

const BuiltinFcn* ModuleDirectory::find(std::string_view name) const {
    const auto found = byBuiltin_.find(name);
    return found == byBuiltin_.end() ? nullptr : found->second->getBuiltin(name);
}

const builtinreg::BuiltinVariantLists* ModuleDirectory::lists(std::string_view name) const {
    const auto found = byBuiltin_.find(name);
    return found == byBuiltin_.end() ? nullptr : found->second->getVariantLists(name);
}

std::string ModuleDirectory::moduleOf(std::string_view name) const {
    const auto found = byBuiltin_.find(name);
    return found == byBuiltin_.end() ? std::string() : found->second->getModuleName();
}

std::vector<std::pair<std::string, std::string>> ModuleDirectory::list() const {
    std::vector<std::pair<std::string, std::string>> entries;
    for (const auto& [name, module] : byBuiltin_)
        entries.emplace_back(name, module->getModuleName());
    return entries;
}

}  // namespace Norvane::builtin::declare
