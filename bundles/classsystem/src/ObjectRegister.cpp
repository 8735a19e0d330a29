#include "ObjectRegister.hpp"

#include <algorithm>

namespace classbundle {

void ObjectRegister::record(kaClassID classId, std::size_t variantId, std::string what) {
    const std::lock_guard lock(mutex_);
    told_[{classId, variantId}].push_back(std::move(what));
}

bool ObjectRegister::isOrroObjectRegistered(kaClassID classId, std::size_t variantId) const {
    const std::lock_guard lock(mutex_);
    const auto found = told_.find({classId, variantId});
    return found != told_.end() &&
           std::find(found->second.begin(), found->second.end(), "object") != found->second.end();
}

// The flags belong to the engine; the reference register has no use for them.
void ObjectRegister::registerOrroObject(kaClassID classId, std::size_t variantId, bool /*flag*/) {
    record(classId, variantId, "object");
}

void ObjectRegister::registerOrroObject(kaClassID classId, std::size_t variantId) {
    record(classId, variantId, "object");
}

void ObjectRegister::registerOrroObjectDefaultIndexingMethods(
    kaClassID classId, std::size_t variantId, bool /*flag*/,
    const Norvane::orro::OrroObjectDefaultIndexingMethods& /*methods*/) {
    record(classId, variantId, "indexing methods");
}

void ObjectRegister::registerParenReferenceVariant(kaClassID classId, std::size_t variantId,
                                                   const OrroFunctionDescriptor&,
                                                   const OrroFunctionDescriptor&, std::string name,
                                                   NameRange) {
    record(classId, variantId, "paren reference " + name);
}

void ObjectRegister::registerParenAssignVariant(kaClassID classId, std::size_t variantId,
                                                const OrroFunctionDescriptor&,
                                                const OrroFunctionDescriptor&, std::string name,
                                                NameRange, bool /*flag*/) {
    record(classId, variantId, "paren assign " + name);
}

}  // namespace classbundle
