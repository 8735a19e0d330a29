#include <foundation/usm/test/store_access.hpp>

#include <mutex>
#include <shared_mutex>
#include <utility>

namespace foundation::usm::test {

std::vector<ID> store_access::ids(const Store& store) {
    std::shared_lock lock(store.mutex_);
    return store.order_;
}

void* store_access::insertAs(Store& store, ID id, const std::type_info& type, Value&& value) {
    return store.emplace(id, type, std::move(value));
}

}  // namespace foundation::usm::test
