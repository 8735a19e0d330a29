// The class ids known to be engine objects. Registration adds to the set and classification asks
// it; both hold the mutex for one find or insert, never across a call into a service.
#include <mutex>
#include <unordered_set>

#include <builtin/types/ClassifyKaArray.hpp>

namespace Norvane::builtin::builtinreg {

namespace {

struct KnownOrroObjects {
    std::mutex mutex;
    std::unordered_set<kaClassID> classIds;
};

KnownOrroObjects& knownOrroObjects() {
    static KnownOrroObjects known;
    return known;
}

}  // namespace

bool addAsKnownOrroObject(const kaClassID& classId) {
    auto& known = knownOrroObjects();
    const std::lock_guard lock(known.mutex);
    return known.classIds.insert(classId).second;
}

bool isAKnownOrroObject(const kaClassID& classId) {
    auto& known = knownOrroObjects();
    const std::lock_guard lock(known.mutex);
    return known.classIds.contains(classId);
}

}  // namespace Norvane::builtin::builtinreg
