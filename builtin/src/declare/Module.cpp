#include <builtin/declare/Module.hpp>

#include <stdexcept>

namespace Norvane::builtin::declare {

Module::Module(std::string name) : name_(std::move(name)) {}

Module::~Module() = default;

Builtin& Module::builtin(const std::string& name) {
    if (finished_)
        throw std::logic_error("module " + name_ + " is finished: no builtin can be added");
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

namespace detail {

void startModule(cppmicroservices::BundleContext& context, const std::string& name,
                 void (*declare)(Module&)) {
    auto module = std::make_shared<Module>(name);
    declare(*module);
    module->finish();
    context.RegisterService<IBuiltinModule>(module,
                                            {{moduleProperty, cppmicroservices::Any(name)}});
}

}  // namespace detail

}  // namespace Norvane::builtin::declare
