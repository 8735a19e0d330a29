// Fuzz target: bytes as the text of a bundle manifest, read as a bundle's manifest is read, and
// its "orro_objects" section (or, if it has none, the whole object, which reaches the same code
// with fewer bytes) handed to addOrroObjectRuntimeInfo. Text that is no JSON object may only be
// refused with std::invalid_argument, a bad section only with SaveOrroObjectRuntimeInfoError.
// A section that is stored must be found again, entry by entry, under its demangled names.
//
// The table is process-wide and only grows, so an input may meet entries of earlier ones; a
// conflict with them is one more refusal.
#include <cstddef>
#include <cstdint>
#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_set>

#include <cppmicroservices/Any.h>
#include <builtin/objects/OrroObjectRuntimeInfo.hpp>
#include <fl/diag.hpp>
#include <foundation/cppmicroservices/manifest.hpp>

#include "FuzzInput.hpp"

namespace {

using namespace Norvane::builtin::types;

constexpr std::size_t kDecorationLength = 23;  // the demangler's suffix, which the table cuts off

const cppmicroservices::AnyMap& sectionOf(const cppmicroservices::AnyMap& manifest) {
    const auto found = manifest.find("orro_objects");
    if (found != manifest.end()) {
        if (const auto* section =
                cppmicroservices::any_cast<cppmicroservices::AnyMap>(&found->second))
            return *section;
    }
    return manifest;
}

// Every entry of a stored section is in the table with the information it gave.
void checkStored(const cppmicroservices::AnyMap& section,
                 const std::unordered_set<std::string>& names) {
    std::unordered_set<std::string> expected;
    for (const auto& [key, entry] : section) {
        const auto& fields = cppmicroservices::ref_any_cast<cppmicroservices::AnyMap>(entry);
        const OrroObjectRuntimeInfo given{
            cppmicroservices::ref_any_cast<std::string>(fields.at("kaClassName")),
            static_cast<std::size_t>(cppmicroservices::any_cast<int>(fields.at("variantId")))};
        std::string name = foundation::core::diag::detail::demangle_typeid_name(key.c_str(), true);
        name.resize(name.size() - kDecorationLength);
        if (!(getOrroObjectRuntimeInfo(name) == given))
            fuzz::fail("stored entry " + key + " reads back otherwise");
        expected.insert(given.kaClassName);
    }
    if (names != expected) fuzz::fail("the class names returned are not those of the section");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    cppmicroservices::AnyMap manifest;
    try {
        manifest = foundation::cppmicroservices::parseManifest(
            std::string_view(reinterpret_cast<const char*>(data), size));
    } catch (const std::invalid_argument&) {
        return 0;
    }
    const cppmicroservices::AnyMap& section = sectionOf(manifest);
    std::unordered_set<std::string> names;
    try {
        names = addOrroObjectRuntimeInfo(section);
    } catch (const SaveOrroObjectRuntimeInfoError&) {
        return 0;
    } catch (const std::exception& e) {
        fuzz::fail(std::string("addOrroObjectRuntimeInfo let through: ") + e.what());
    }
    checkStored(section, names);
    return 0;
}
