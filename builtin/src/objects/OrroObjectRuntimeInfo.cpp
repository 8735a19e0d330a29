// The table of native classes from bundle manifests. One shared mutex guards the table and the
// lookup failure handler: exclusive for a whole manifest, so that readers see a manifest whole
// or not at all, and shared for lookups, which run side by side.
#include <builtin/objects/OrroObjectRuntimeInfo.hpp>

#include <mutex>
#include <shared_mutex>
#include <unordered_map>
#include <utility>

#include <boost/exception/diagnostic_information.hpp>
#include <boost/numeric/conversion/cast.hpp>

#include <cppmicroservices/Any.h>
#include <fl/diag.hpp>

namespace Norvane::builtin::types {

namespace {

struct OrroObjectRegistry {
    std::shared_mutex mutex;
    std::unordered_map<std::string, OrroObjectRuntimeInfo> objects;  // by demangled class name
    OrroObjectLookupFailureHandler lookupFailureHandler;
};

OrroObjectRegistry& registry() {
    static OrroObjectRegistry instance;
    return instance;
}

// The demangler's decorated form ends in a suffix of this length, which is cut by length alone.
constexpr std::size_t kDecorationLength = 23;

std::string cppClassNameOf(const std::string& mangledName) {
    std::string name =
        foundation::core::diag::detail::demangle_typeid_name(mangledName.c_str(), true);
    if (name.size() < kDecorationLength) {
        throw std::out_of_range("the demangled name is shorter than its decoration");
    }
    name.resize(name.size() - kDecorationLength);
    return name;
}

OrroObjectRuntimeInfo infoOf(const cppmicroservices::Any& entry) {
    const auto& fields = cppmicroservices::ref_any_cast<cppmicroservices::AnyMap>(entry);
    const auto& kaClassName = cppmicroservices::ref_any_cast<std::string>(fields.at("kaClassName"));
    const int variantId = cppmicroservices::any_cast<int>(fields.at("variantId"));
    return {kaClassName, boost::numeric_cast<std::size_t>(variantId)};
}

// Stores one entry unless an equal one is there; a different one is a conflict. Gives the
// stored class name.
const std::string& store(OrroObjectRegistry& table, const std::string& mangledName,
                         const cppmicroservices::Any& entry) {
    const std::string cppClassName = cppClassNameOf(mangledName);
    const OrroObjectRuntimeInfo info = infoOf(entry);
    const auto [stored, inserted] = table.objects.try_emplace(cppClassName, info);
    if (!inserted && !(stored->second == info)) {
        throw SaveOrroObjectRuntimeInfoError(
            "Attempted to insert " + cppClassName +
            ", but the class already exists with different orro runtime information.");
    }
    return stored->second.kaClassName;
}

std::string diagnostic() {
    return boost::current_exception_diagnostic_information(true);
}

// The one error of a failed entry, from whatever failed: to be called inside a catch block.
[[noreturn]] void rethrowAsSaveError(const std::string& key) {
    const std::string head = "Error while trying to save " + key + " runtime info. Details: ";
    try {
        throw;
    } catch (const cppmicroservices::BadAnyCastException& e) {
        throw SaveOrroObjectRuntimeInfoError(
            head + e.what() +
            "\nEach value in the orro_objects object must be an object containing 'kaClassName' "
            "and "
            "'variantId' keys'. 'kaClassName' must be a type castable to std::string and "
            "'variantId' "
            "must be a type castable to size_t for each and every orro_object");
    } catch (const SaveOrroObjectRuntimeInfoError& e) {
        throw SaveOrroObjectRuntimeInfoError(head + e.what());
    } catch (const boost::numeric::bad_numeric_cast&) {
        throw SaveOrroObjectRuntimeInfoError(
            "Unable to cast variant id for " + key +
            " to size_t.\nVariant id must be a value greater than or equal to 0.");
    } catch (const std::out_of_range&) {
        throw SaveOrroObjectRuntimeInfoError(
            head +
            "missing 'kaClassName' and/or 'variantId' as keys\n'kaClassName' and 'variantId' MUST "
            "be present for each orro_object");
    } catch (const std::invalid_argument& e) {
        throw SaveOrroObjectRuntimeInfoError(
            head + "found cppClassName '" + e.what() +
            "', but this is not a demangelable typename.\nEach key within orro_objects MUST be a "
            "mangled c++ class name.");
    } catch (const std::exception&) {
        throw SaveOrroObjectRuntimeInfoError("Unexpected error while trying to save " + key +
                                             " runtime info. Details: " + diagnostic());
    } catch (...) {
        throw SaveOrroObjectRuntimeInfoError("Unknown error while trying to save " + key +
                                             " runtime info. Details: " + diagnostic());
    }
}

std::string notFoundMessage(const OrroObjectRegistry& table, const std::string& cppClassName) {
    std::string message = "Error while trying to get " + cppClassName +
                          " runtime info. Details: " + cppClassName +
                          " is not found as a saved orro object.\nOrroObjects:\n";
    for (const auto& [name, info] : table.objects) {
        message += "'" + name + "'\n";
    }
    return message;
}

}  // namespace

std::unordered_set<std::string> addOrroObjectRuntimeInfo(
    const cppmicroservices::AnyMap& orroObjects) {
    std::unordered_set<std::string> kaClassNames;
    OrroObjectRegistry& table = registry();
    // Held to the end, error messages included: nothing of a manifest shows before all of it.
    const std::unique_lock lock(table.mutex);
    for (const auto& [key, entry] : orroObjects) {
        try {
            kaClassNames.insert(store(table, key, entry));
        } catch (...) {
            // Entries stored before this one stay: there is no rollback.
            rethrowAsSaveError(key);
        }
    }
    return kaClassNames;
}

OrroObjectRuntimeInfo getOrroObjectRuntimeInfo(const std::string& cppClassName) {
    OrroObjectRegistry& table = registry();
    const std::shared_lock lock(table.mutex);
    if (const auto found = table.objects.find(cppClassName); found != table.objects.end()) {
        return found->second;
    }
    if (table.lookupFailureHandler) {
        if (auto answer = table.lookupFailureHandler(cppClassName)) {
            return *std::move(answer);
        }
    }
    throw GetOrroObjectRuntimeInfoError(notFoundMessage(table, cppClassName));
}

// Exported for tests, which declare it themselves: no installed header offers it.
namespace testhelp {

BUILTIN_API void handleOrroObjectLookupFailure(OrroObjectLookupFailureHandler handler) {
    OrroObjectRegistry& table = registry();
    const std::unique_lock lock(table.mutex);
    table.lookupFailureHandler = std::move(handler);
}

}  // namespace testhelp
}  // namespace Norvane::builtin::types
