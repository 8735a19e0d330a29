// Native classes as object types of declarations. A class C derived from the engine's
// OrroObject, named in the "orro_objects" section of a bundle's manifest, is declared to a
// module once (Module::object<C>()), which registers its language-level class; after that C* is
// a parameter and result type like the others:
//
//   Counter* makeCounter(double start);          // an object of the class "Counter" comes back
//   double counterValue(Counter* counter);       // takes one
//
// OrroObjectId<C> is the identity of C as the module's code holds it: the class id is the class
// system's (asked by name at run time, never compiled in), the variant id the manifest's, held
// against the manifest the first time it is used.
#pragma once

#include <cstddef>
#include <string>
#include <type_traits>
#include <typeinfo>

#include <boost/variant/get.hpp>

#include <engine/OrroObject.hpp>
#include <fl/diag.hpp>

#include <builtin/declare/Parameters.hpp>
#include <builtin/objects/OrroObjectIdentity.hpp>
#include <builtin/objects/OrroObjectRuntimeInfo.hpp>
#include <builtin/types/OrroObjectTypes.hpp>

namespace Norvane::builtin::declare {

namespace detail {

// The runtime information of a native class by its type, as the manifest gave it.
BUILTIN_API types::OrroObjectRuntimeInfo runtimeInfoOf(const std::type_info& type);

// The type of objects of the class and variant, for signatures; the class id is asked by name
// once, when the first signature names the class.
BUILTIN_API types::ArgType objectArgType(const std::type_info& type,
                                         std::size_t (*manifestVariant)());

}  // namespace detail

template <class C>
struct OrroObjectId {
    static_assert(std::is_base_of_v<Norvane::orro::OrroObject, C>,
                  "an object type derives from OrroObject");

    static std::size_t manifestVariantId() { return detail::runtimeInfoOf(typeid(C)).variantId; }
    static std::string className() { return detail::runtimeInfoOf(typeid(C)).kaClassName; }

    // The signature type of C's objects, made once per module.
    static const types::ArgType& argType(std::size_t index) {
        static const types::ArgType type = detail::objectArgType(typeid(C), &manifestVariantId);
        if (index != 0) types::detail::throwInvalidSubscript();
        return type;
    }
};

template <class C>
struct ParameterTraits<C*, std::enable_if_t<std::is_base_of_v<Norvane::orro::OrroObject, C> &&
                                            !std::is_same_v<C, Norvane::orro::OrroObject>>> {
    using Arrives = Norvane::orro::OrroObject*;
    static constexpr std::size_t count = 1;
    static constexpr types::ArgTypeGetter getter = &OrroObjectId<C>::argType;
    static C* from(const Parameter& argument, CallHolders&) {
        return static_cast<C*>(boost::get<Norvane::orro::OrroObject*>(argument));
    }
    static Parameter toParameter(C* value) {
        return Parameter(static_cast<Norvane::orro::OrroObject*>(value));
    }
};

}  // namespace Norvane::builtin::declare
