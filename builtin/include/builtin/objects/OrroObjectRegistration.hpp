// Registration of object types with the engine. A module announces a language-level class, by
// name, with a variant id, its default indexing methods and its optimized indexing functions;
// each helper turns the name into a class id through the class provider, marks the class id as
// a known engine object (so that its arrays classify as objects at a call), and forwards the
// call to the engine's object register.
//
// Registration does not fail for the caller: a missing service or a class name the provider
// does not know leaves a log record on "builtinservice::registerOrroObject" (severity 256) and
// the call does nothing. An exception from the register itself passes through. The helpers may
// start the builtin service bundles; the services are looked up once per process, so a call
// made before they came up leaves the process without them for good.
#pragma once

#include <cstddef>
#include <string>

#include <boost/range/iterator_range.hpp>

#include <engine/opaque.hpp>

#include <builtin/calling/OrroFunctionDescriptor.hpp>
#include <builtin/config.hpp>

namespace Norvane::builtin {

struct BuiltinVariant;

namespace builtinreg {

// IOrroObjectRegister::registerOrroObject without the flag.
BUILTIN_API void registerOrroObjectHelper(const std::string& className, std::size_t variantId);

// IOrroObjectRegister::registerOrroObject with the flag, which the register interprets.
BUILTIN_API void registerOrroObjectHelper(const std::string& className, std::size_t variantId,
                                          bool flag);

BUILTIN_API void registerOrroObjectDefaultIndexingMethodsHelper(
    const std::string& className, std::size_t variantId, bool flag,
    const Norvane::orro::OrroObjectDefaultIndexingMethods& methods);

// The names are passed on unread; the caller keeps the strings alive for the call.
BUILTIN_API void registerParenReferenceVariant(const std::string& className, std::size_t variantId,
                                               const OrroFunctionDescriptor& first,
                                               const OrroFunctionDescriptor& second,
                                               std::string name,
                                               boost::iterator_range<std::string*> names);

BUILTIN_API void registerParenAssignVariant(const std::string& className, std::size_t variantId,
                                            const OrroFunctionDescriptor& first,
                                            const OrroFunctionDescriptor& second, std::string name,
                                            boost::iterator_range<std::string*> names, bool flag);

namespace detail {

// Stops the process: a function offered for indexing has a variant whose calling convention
// the module cannot use.
[[noreturn]] BUILTIN_API void assertInvalidCallingConvention(const std::string& functionName,
                                                             const BuiltinVariant& variant);

}  // namespace detail
}  // namespace builtinreg
}  // namespace Norvane::builtin
