#include "ids.hpp"

#include <fl/diag.hpp>

#include <deque>
#include <mutex>

namespace foundation::usm::detail {
namespace {

struct id_table {
    std::mutex mutex;
    std::deque<const std::type_info*> types;  // index = id
};

// Never destroyed: stores in thread-local or static storage of other libraries may still
// insert while this library's statics are being torn down.
id_table& table() {
    static id_table* const instance = new id_table();
    return *instance;
}

}  // namespace

ID issueID(const std::type_info& type) {
    id_table& t = table();
    std::lock_guard lock(t.mutex);
    t.types.push_back(&type);
    return t.types.size() - 1;
}

const std::type_info* typeOfID(ID id) {
    id_table& t = table();
    std::lock_guard lock(t.mutex);
    return id < t.types.size() ? t.types[id] : nullptr;
}

std::string typeName(const std::type_info& type) {
    try {
        return foundation::core::diag::detail::demangle_typeid_name(type.name(), false);
    } catch (const std::exception&) {
        return type.name();
    }
}

}  // namespace foundation::usm::detail
