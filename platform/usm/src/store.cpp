#include <foundation/usm/store.hpp>

#include "ids.hpp"

#include <fl/diag.hpp>

#include <mutex>
#include <string>

namespace foundation::usm {
namespace {

constexpr const char* sourcePath = "foundation/usm/Store";

std::string missingText(ID id, const std::type_info& type) {
    return "The tavi store has no value under id " + std::to_string(id) + " (asked for " +
           detail::typeName(type) + ")";
}

std::string mismatchText(ID id, const std::type_info& held, const std::type_info& asked) {
    return "The tavi store holds " + detail::typeName(held) + " under id " + std::to_string(id) +
           ", not " + detail::typeName(asked);
}

}  // namespace

Store::Store() = default;

Store::~Store() {
    if (currentOn_.load() != 0)
        foundation::core::diag::terminate(
            "A tavi store is destroyed while it is current on a thread", sourcePath, __LINE__,
            __PRETTY_FUNCTION__);
    // Later values may refer to earlier ones, so they go first.
    for (auto id = order_.rbegin(); id != order_.rend(); ++id)
        entries_.find(*id)->second.value.reset();
}

void* Store::find(ID id, const std::type_info& type) const {
    std::shared_lock lock(mutex_);
    const auto it = entries_.find(id);
    if (it == entries_.end() || *it->second.type != type) return nullptr;
    return it->second.value.get();
}

void* Store::findOrThrow(ID id, const std::type_info& type) const {
    std::shared_lock lock(mutex_);
    const auto it = entries_.find(id);
    if (it == entries_.end()) throw DoesNotExistTypeError(missingText(id, type));
    if (*it->second.type != type) throw TypeError(mismatchText(id, *it->second.type, type));
    return it->second.value.get();
}

void* Store::findOrFail(ID id, const std::type_info& type) const {
    try {
        return findOrThrow(id, type);
    } catch (const std::exception& error) {
        foundation::core::diag::terminate(error.what(), sourcePath, __LINE__, __PRETTY_FUNCTION__);
    }
}

void* Store::insert(ID id, const std::type_info& type, Value&& value) {
    if (!value)
        throw std::invalid_argument("A tavi store value must not be empty (id " +
                                    std::to_string(id) + ")");
    const std::type_info* madeFor = detail::typeOfID(id);
    if (madeFor == nullptr)
        throw std::invalid_argument("The id " + std::to_string(id) + " was not given by getNextID");
    if (*madeFor != type)
        throw TypeError("The id " + std::to_string(id) + " was made for " +
                        detail::typeName(*madeFor) + ", not " + detail::typeName(type));
    return emplace(id, type, std::move(value));
}

void* Store::emplace(ID id, const std::type_info& type, Value&& value) {
    std::unique_lock lock(mutex_);
    if (entries_.count(id) != 0)
        throw AlreadyExistsError("The tavi store has a value under id " + std::to_string(id) +
                                 " already");
    order_.reserve(order_.size() + 1);  // so that emplace below is the last step that can throw
    void* slot = value.get();
    entries_.emplace(id, Entry{&type, std::move(value)});
    order_.push_back(id);
    return slot;
}

std::size_t Store::size() const {
    std::shared_lock lock(mutex_);
    return entries_.size();
}

}  // namespace foundation::usm
