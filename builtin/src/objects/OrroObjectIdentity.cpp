// Variant ids, identity checks and the class provider's answers on identities. The two stores
// are process-wide, made at first use; each has its own mutex and none nests.
#include <builtin/objects/OrroObjectIdentity.hpp>

#include <mutex>
#include <typeindex>
#include <unordered_map>
#include <unordered_set>

#include <fl/diag.hpp>

#include <builtin/services/BuiltinServices.hpp>

namespace Norvane::builtin {

namespace {

constexpr const char* kCppOrroObjectImplPath = "builtin2/interface/builtin/CppOrroObjectImpl";
constexpr const char* kOrroObjectIdPath = "builtin2/interface/builtin/OrroObjectID";

struct VariantCounters {
    std::mutex mutex;
    std::unordered_map<kaClassID, std::size_t> next;
};

VariantCounters& variantCounters() {
    static VariantCounters counters;
    return counters;
}

struct SeenIdentities {
    std::mutex mutex;
    std::unordered_map<std::type_index, std::unordered_set<std::size_t>> ids;
};

SeenIdentities& seenIdentities() {
    static SeenIdentities seen;
    return seen;
}

// True the first time a pair of type and id comes by.
bool firstSighting(const std::type_info& type, std::size_t id) {
    SeenIdentities& seen = seenIdentities();
    const std::lock_guard lock(seen.mutex);
    return seen.ids[std::type_index(type)].insert(id).second;
}

// The process is about to stop: a name that cannot be demangled is shown as it is.
std::string decoratedName(const std::type_info& type) {
    try {
        return foundation::core::diag::detail::demangle_typeid_name(type.name(), true);
    } catch (...) {
        return type.name();
    }
}

}  // namespace

namespace types::detail {

std::size_t getNextCppClassVariant(kaClassID classId) {
    VariantCounters& counters = variantCounters();
    const std::lock_guard lock(counters.mutex);
    const auto [counter, created] = counters.next.try_emplace(classId, 0);
    return created ? 0 : ++counter->second;
}

kaClassID getOrroObjectClassID(const char* /*name*/) {
    return kaUNKNOWN_CLASS;
}

void assertOrroObjectHasExpectedClassID(kaClassID classId, const std::string& /*name*/) {
    if (classId == kaUNKNOWN_CLASS || !fl_diag_terminate()) {
        return;
    }
    foundation::core::diag::terminate(
        "The kaClassID of OrroObjects should be consistent across all tavi instances.",
        kCppOrroObjectImplPath, __LINE__, __PRETTY_FUNCTION__);
}

void registerOrroObject(std::pair<kaClassID, std::size_t> /*objectType*/) {}

}  // namespace types::detail

namespace builtinreg::detail {

void assertIsDefaultVariantIdOrSame(std::size_t defaultOrNew, std::size_t current,
                                    std::size_t newOrDefault) {
    if (current == defaultOrNew || current == newOrDefault || !fl_diag_terminate()) {
        return;
    }
    foundation::core::diag::terminate(
        "Cannot assign conflicting variant id values to Norvane::builtin::builtinreg::OrroObjectId",
        kOrroObjectIdPath, __LINE__, __PRETTY_FUNCTION__);
}

void assertIsDefaultNameFuncPtrOrSame(NameFunction defaultOrNew, NameFunction current,
                                      NameFunction newOrDefault) {
    if (current == defaultOrNew || current == newOrDefault || !fl_diag_terminate()) {
        return;
    }
    foundation::core::diag::terminate(
        "Cannot assign conflicting name functions to Norvane::builtin::builtinreg::OrroObjectId",
        kOrroObjectIdPath, __LINE__, __PRETTY_FUNCTION__);
}

void assertOrroVariantIdMatches(std::size_t id, std::size_t (*const manifestId)(),
                                const std::type_info& type) {
    if (!firstSighting(type, id)) {
        return;
    }
    // Outside the lock: the manifest's id may take a lookup of its own.
    const std::size_t fromManifest = manifestId();
    if (fromManifest == id) {
        return;
    }
    foundation::core::diag::terminate("Error OrroObject " + decoratedName(type) +
                                          " has different variant id between manifest.json(" +
                                          std::to_string(fromManifest) +
                                          ") and microservice_impl(" + std::to_string(id) + ").",
                                      kOrroObjectIdPath, __LINE__, __PRETTY_FUNCTION__);
}

}  // namespace builtinreg::detail

namespace builtinreg {

kaClassID getClassIdByName(const std::string& name) {
    const auto& provider = getHeldService<IZOBJRegWrapper>();
    return provider ? provider->getClassIdByName(name) : kaUNKNOWN_CLASS;
}

const ts::iTypeExpression* getOrroObjectType(kaClassID classId, std::size_t variantId) {
    const auto& provider = getHeldService<IZOBJRegWrapper>();
    return provider ? provider->getOrroObjectType(classId, variantId) : nullptr;
}

}  // namespace builtinreg
}  // namespace Norvane::builtin
