#include <builtin/declare/Module.hpp>

#include <cstdint>
#include <ostream>
#include <stdexcept>

#include <cppmicroservices/Any.h>
#include <foundation/log/diagnostic_logger.hpp>

#include <builtin/declare/Lint.hpp>

namespace Norvane::builtin::declare {

Module::Module(std::string name) : name_(std::move(name)) {}

Module::~Module() = default;

Builtin& Module::builtin(const std::string& name) {
    if (finished_)
        throw std::logic_error("module " + name_ + " is finished: no builtin can be added");
    if (name.empty()) throw std::invalid_argument("a builtin needs a name");
    return declaring_.try_emplace(name, name).first->second;
}

void Module::finish() {
    for (auto& [name, builtin] : declaring_) {
        declared_.emplace(name, std::make_unique<DeclaredBuiltin>(std::move(builtin)));
    }
    declaring_.clear();
    finished_ = true;
}

std::vector<std::string> Module::getBuiltinNames() const {
    std::vector<std::string> names;
    for (const auto& entry : declared_) names.push_back(entry.first);
    return names;
}

const BuiltinFcn* Module::getBuiltin(std::string_view name) const {
    const auto found = declared_.find(name);
    return found == declared_.end() ? nullptr : &found->second->function();
}

const builtinreg::BuiltinVariantLists* Module::getVariantLists(std::string_view name) const {
    const auto found = declared_.find(name);
    return found == declared_.end() ? nullptr : &found->second->lists();
}

namespace {

constexpr std::uint32_t kLintSeverity = 4;

const foundation::log::diagnostic_logger& lintLogger() {
    static const foundation::log::diagnostic_logger logger("builtin2::lint");
    return logger;
}

// The manifest names the module that a host expects to find in the bundle; a module that calls
// itself otherwise would register under a name nobody asked for.
void checkManifestName(const cppmicroservices::BundleContext& context, const std::string& name) {
    const cppmicroservices::AnyMap& headers = context.GetBundle().GetHeaders();
    const auto found = headers.find(moduleProperty);
    const std::string* declared =
        found == headers.end() ? nullptr : cppmicroservices::any_cast<std::string>(&found->second);
    if (declared != nullptr && *declared != name) {
        throw std::invalid_argument("its manifest names the module \"" + *declared +
                                    "\" (\"builtin-module\"), the code \"" + name + "\"");
    }
}

// What the lint finds goes to its channel as the module starts, so that an author sees it
// without asking for each builtin.
void logLintFindings(const Module& module) {
    if (!lintLogger().isEnabled(kLintSeverity)) return;
    for (const std::string& builtin : module.getBuiltinNames()) {
        for (const LintFinding& finding :
             lintVariantLists(builtin, *module.getVariantLists(builtin))) {
            lintLogger().write(kLintSeverity, [&](std::ostream& os) {
                os << "module " << module.getModuleName() << ": " << finding.message;
            });
        }
    }
}

}  // namespace

namespace detail {

std::shared_ptr<Module> declareModule(const std::string& name, void (*declare)(Module&)) {
    auto module = std::make_shared<Module>(name);
    try {
        declare(*module);
        module->finish();
    } catch (const std::invalid_argument& mistake) {
        throw std::invalid_argument("module " + name + ": " + mistake.what());
    }
    logLintFindings(*module);
    return module;
}

void startModule(cppmicroservices::BundleContext& context, const std::string& name,
                 void (*declare)(Module&)) {
    try {
        checkManifestName(context, name);
    } catch (const std::invalid_argument& mistake) {
        throw std::invalid_argument("module " + name + ": " + mistake.what());
    }
    context.RegisterService<IBuiltinModule>(declareModule(name, declare),
                                            {{moduleProperty, cppmicroservices::Any(name)}});
}

}  // namespace detail

}  // namespace Norvane::builtin::declare
