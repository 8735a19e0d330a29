// The special members of the module interfaces live here, so that their vtables and type
// information are exported from this library once.
#include <builtin/services/IBuiltinModule.hpp>

namespace Norvane::builtin {

IBuiltinModule::IBuiltinModule() = default;
IBuiltinModule::IBuiltinModule(const IBuiltinModule&) = default;
IBuiltinModule::IBuiltinModule(IBuiltinModule&&) noexcept = default;
IBuiltinModule& IBuiltinModule::operator=(const IBuiltinModule&) = default;
IBuiltinModule& IBuiltinModule::operator=(IBuiltinModule&&) noexcept = default;
IBuiltinModule::~IBuiltinModule() = default;

namespace builtinreg {

IOrroObjectModuleMgr::IOrroObjectModuleMgr() = default;
IOrroObjectModuleMgr::IOrroObjectModuleMgr(const IOrroObjectModuleMgr&) = default;
IOrroObjectModuleMgr::IOrroObjectModuleMgr(IOrroObjectModuleMgr&&) noexcept = default;
IOrroObjectModuleMgr& IOrroObjectModuleMgr::operator=(const IOrroObjectModuleMgr&) = default;
IOrroObjectModuleMgr& IOrroObjectModuleMgr::operator=(IOrroObjectModuleMgr&&) noexcept = default;
IOrroObjectModuleMgr::~IOrroObjectModuleMgr() = default;

}  // namespace builtinreg
}  // namespace Norvane::builtin
