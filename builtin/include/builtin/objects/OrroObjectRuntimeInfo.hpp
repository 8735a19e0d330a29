// The process-wide table of native classes that bundles expose as object types: for each
// native class, by its demangled name, the language-level class that stands for it and its
// variant id. A bundle hands over the "orro_objects" section of its manifest; module code looks
// its classes up by name.
//
// The table only grows, and one manifest enters it as a whole: a reader sees all of what a
// manifest stored or none of it. Any thread may call these functions; a lookup failure handler
// runs under the table's shared lock and must not add manifests or install handlers.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <unordered_set>

#include <cppmicroservices/AnyMap.h>

#include <builtin/config.hpp>

namespace Norvane::builtin::types {

// What a manifest says of one native class.
struct OrroObjectRuntimeInfo {
    std::string kaClassName;    // the language-level class that stands for the native class
    std::size_t variantId = 0;  // the native class among those behind kaClassName

    friend bool operator==(const OrroObjectRuntimeInfo&, const OrroObjectRuntimeInfo&) = default;
};

// A manifest entry that could not be stored; what() says which entry and why.
class BUILTIN_API SaveOrroObjectRuntimeInfoError : public std::logic_error {
public:
    explicit SaveOrroObjectRuntimeInfoError(const std::string& message)
        : std::logic_error(message) {}
};

// A native class that is not in the table; what() lists the classes that are.
class BUILTIN_API GetOrroObjectRuntimeInfoError : public std::logic_error {
public:
    explicit GetOrroObjectRuntimeInfoError(const std::string& message)
        : std::logic_error(message) {}
};

// Answers for a native class name that the table does not hold; no value means "not found".
// Tests install one with testhelp::handleOrroObjectLookupFailure, which the library exports and
// tests/support/LookupFailureHandler.hpp declares.
using OrroObjectLookupFailureHandler =
    std::function<std::optional<OrroObjectRuntimeInfo>(const std::string&)>;

// Validates and stores every entry of an "orro_objects" section: each key a mangled native
// class name, each value an object with a string "kaClassName" and an int "variantId" of at
// least 0. Returns the kaClassName of every entry, whether stored now or already there with
// the same information. Stops at the first bad entry with a SaveOrroObjectRuntimeInfoError;
// the entries before it stay stored.
BUILTIN_API std::unordered_set<std::string> addOrroObjectRuntimeInfo(
    const cppmicroservices::AnyMap& orroObjects);

// The information on a native class by its demangled name, from the table or else from the
// lookup failure handler (which does not store its answer). Throws
// GetOrroObjectRuntimeInfoError if neither knows the class.
BUILTIN_API OrroObjectRuntimeInfo getOrroObjectRuntimeInfo(const std::string& cppClassName);

}  // namespace Norvane::builtin::types
