#include <builtin/declare/ModuleDirectory.hpp>

#include <cstdint>
#include <filesystem>
#include <ostream>
#include <stdexcept>
#include <system_error>

#include <cppmicroservices/LDAPFilter.h>
#include <foundation/cppmicroservices/framework.hpp>
#include <foundation/cppmicroservices/manifest.hpp>
#include <foundation/log/diagnostic_logger.hpp>

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

namespace {

constexpr std::uint32_t kProblemSeverity = 256;

const foundation::log::diagnostic_logger& directoryLogger() {
    static const foundation::log::diagnostic_logger logger("builtin2::ModuleDirectory");
    return logger;
}

void addProblem(std::vector<std::string>& problems, std::string problem) {
    directoryLogger().write(kProblemSeverity, [&problem](std::ostream& os) { os << problem; });
    problems.push_back(std::move(problem));
}

bool hasHeader(const cppmicroservices::Bundle& bundle, const char* key) {
    return bundle.GetHeaders().count(key) != 0;
}

// A bundle of a folder of modules that is neither a module nor one of the builtin services,
// which share the default folder with the modules, was most likely meant to be a module.
void reportBundlesThatAreNoModules(const std::vector<cppmicroservices::Bundle>& bundles,
                                   std::vector<std::string>& problems) {
    for (const cppmicroservices::Bundle& bundle : bundles) {
        if (!hasHeader(bundle, moduleProperty) && !hasHeader(bundle, "started-in")) {
            addProblem(problems, bundle.GetLocation() + ": its manifest has no \"" +
                                     moduleProperty + "\", so it is not a module bundle");
        }
    }
}

// A relative folder lies under the installation root, as for the framework's own start.
std::filesystem::path resolve(const fl::filesystem::path& folder) {
    if (folder.is_absolute()) return fl::filesystem::to_utf8(folder);
    return fl::filesystem::to_utf8(fl::filesystem::path(fl::filesystem::get_install_path(), true) /
                                   folder.text());
}

// The filter that starts only the bundle of this manifest among its neighbours.
std::string oneBundleFilter(const std::filesystem::path& manifest) {
    const cppmicroservices::AnyMap headers =
        foundation::cppmicroservices::readManifest(manifest.string());
    const auto found = headers.find("bundle.symbolic_name");
    const std::string* name =
        found == headers.end() ? nullptr : cppmicroservices::any_cast<std::string>(&found->second);
    if (name == nullptr) throw std::invalid_argument("the manifest has no bundle.symbolic_name");
    return std::string("(&") + moduleBundleFilter + "(bundle.symbolic_name=" + *name + "))";
}

// Installs and starts the module bundles of one folder, or of one bundle's own folder.
void startFolder(const std::filesystem::path& folder, std::vector<std::string>& problems) {
    std::error_code error;
    if (!std::filesystem::is_directory(folder, error)) {
        addProblem(problems, folder.string() + ": no such folder");
        return;
    }
    const std::filesystem::path manifest = folder / "manifest.json";
    const bool isBundle = std::filesystem::exists(manifest, error);
    std::string filter = moduleBundleFilter;
    std::filesystem::path parent = folder;
    if (isBundle) {
        // Its parent holds it and its neighbours, which are installed but not started.
        std::filesystem::path normal = folder.lexically_normal();
        if (!normal.has_filename()) normal = normal.parent_path();  // a trailing separator
        parent = normal.parent_path();
        try {
            filter = oneBundleFilter(manifest);
        } catch (const std::exception& failure) {
            addProblem(problems, folder.string() + ": " + failure.what());
            return;
        }
    }
    foundation::cppmicroservices::InstallAndStartResult result;
    try {
        result = foundation::cppmicroservices::installAndStart(
            fl::filesystem::path(parent.u16string(), true), cppmicroservices::LDAPFilter(filter));
    } catch (const foundation::cppmicroservices::BundleLoadError& failure) {
        for (const std::string& line : failure.failures()) {
            if (!isBundle || line.find(folder.string()) != std::string::npos) {
                addProblem(problems, line);
            }
        }
        result = failure.result();
    }
    if (!isBundle) reportBundlesThatAreNoModules(result.first, problems);
    if (result.first.empty() && !isBundle) {
        addProblem(problems, folder.string() + ": no module bundle here (no subfolder with a " +
                                 "manifest.json)");
    }
}

}  // namespace

ModuleDirectory ModuleDirectory::start(const std::vector<fl::filesystem::path>& folders,
                                       std::vector<std::string>& problems) {
    ensureBuiltinServicesStarted();
    for (const fl::filesystem::path& folder : folders) {
        startFolder(resolve(folder), problems);
    }
    return ModuleDirectory(&problems);
}

ModuleDirectory::ModuleDirectory() : ModuleDirectory(nullptr) {}

ModuleDirectory::ModuleDirectory(std::vector<std::string>* problems) {
    const auto framework = foundation::cppmicroservices::getFramework();
    if (!framework) return;
    auto context = framework->GetBundleContext();
    for (const auto& reference : context.GetServiceReferences<IBuiltinModule>()) {
        std::shared_ptr<IBuiltinModule> module = context.GetService(reference);
        if (!module) continue;
        if (const std::string clash = firstClash(*module); !clash.empty()) {
            if (problems == nullptr) throw std::runtime_error(clash);
            addProblem(*problems, clash + "; the second is left out");
            continue;
        }
        for (const std::string& name : module->getBuiltinNames()) {
            byBuiltin_.emplace(name, module.get());
        }
        modules_.push_back(std::move(module));
    }
}

std::string ModuleDirectory::firstClash(const IBuiltinModule& module) const {
    for (const std::string& name : module.getBuiltinNames()) {
        if (const auto found = byBuiltin_.find(name); found != byBuiltin_.end()) {
            return "the builtin " + name +
                   " is declared by two modules: " + found->second->getModuleName() + " and " +
                   module.getModuleName();
        }
    }
    return {};
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
