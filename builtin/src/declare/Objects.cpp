// The identity of a native class as declarations use it.
#include <builtin/declare/Objects.hpp>

#include <stdexcept>

#include <builtin/declare/Module.hpp>
#include <builtin/objects/OrroObjectRegistration.hpp>

namespace Norvane::builtin::declare {

namespace detail {

types::OrroObjectRuntimeInfo runtimeInfoOf(const std::type_info& type) {
    return types::getOrroObjectRuntimeInfo(
        foundation::core::diag::detail::demangle_typeid_name(type.name(), false));
}

types::ArgType objectArgType(const std::type_info& type, std::size_t (*manifestVariant)()) {
    const std::string nativeName =
        foundation::core::diag::detail::demangle_typeid_name(type.name(), false);
    const types::OrroObjectRuntimeInfo info = types::getOrroObjectRuntimeInfo(nativeName);
    // Class ids belong to the class system of the running process; one compiled in would be wrong.
    types::detail::assertOrroObjectHasExpectedClassID(
        types::detail::getOrroObjectClassID(nativeName.c_str()), nativeName);
    builtinreg::detail::assertOrroVariantIdMatches(info.variantId, manifestVariant, type);
    const kaClassID classId = builtinreg::getClassIdByName(info.kaClassName);
    if (classId == kaUNKNOWN_CLASS) {
        throw std::invalid_argument("the class system does not know the class " + info.kaClassName +
                                    " of " + nativeName);
    }
    return types::OrroObjectTypes(classId, info.variantId, false);
}

}  // namespace detail

void Module::registerObjectType(const std::type_info& type) {
    const types::OrroObjectRuntimeInfo info = detail::runtimeInfoOf(type);
    builtinreg::registerOrroObjectHelper(info.kaClassName, info.variantId);
}

}  // namespace Norvane::builtin::declare
