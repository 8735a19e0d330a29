// The current tavi of each thread, and the operations of Detail<scope::Tavi> on it.
#include <foundation/usm/store.hpp>

#include "ids.hpp"

#include <fl/diag.hpp>

namespace foundation::usm {
namespace {

thread_local Store* currentStore = nullptr;
// The store of a thread that was given no tavi: made at first use, gone with the thread.
thread_local std::unique_ptr<Store> ownStore;

}  // namespace

Store& Detail<scope::Tavi>::current() {
    if (currentStore != nullptr) return *currentStore;
    if (!ownStore) ownStore = std::make_unique<Store>();
    return *ownStore;
}

ID Detail<scope::Tavi>::getNextID(const std::type_info& type) {
    return detail::issueID(type);
}

void* Detail<scope::Tavi>::find(ID id, const std::type_info& type) {
    return current().find(id, type);
}

void* Detail<scope::Tavi>::findOrThrow(ID id, const std::type_info& type) {
    return current().findOrThrow(id, type);
}

void* Detail<scope::Tavi>::findOrFail(ID id, const std::type_info& type) {
    return current().findOrFail(id, type);
}

void* Detail<scope::Tavi>::insert(ID id, const std::type_info& type, Value&& value) {
    return current().insert(id, type, std::move(value));
}

CurrentTavi::CurrentTavi(Store& store) noexcept : store_(&store), previous_(currentStore) {
    currentStore = store_;
    store_->currentOn_.fetch_add(1);
}

CurrentTavi::~CurrentTavi() {
    if (currentStore != store_)
        foundation::core::diag::terminate(
            "CurrentTavi scopes on a thread must end in the reverse order of their making",
            "foundation/usm/CurrentTavi", __LINE__, __PRETTY_FUNCTION__);
    currentStore = previous_;
    store_->currentOn_.fetch_sub(1);
}

}  // namespace foundation::usm
