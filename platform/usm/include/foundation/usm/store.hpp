// The store of one interpreter instance (a tavi): values that must exist once per tavi rather
// than once per process, each under an id that getNextID hands out once per process.
//
//   static const ID id = Detail<scope::Tavi>::getNextID(typeid(Stack));
//   auto* stack = static_cast<Stack*>(Detail<scope::Tavi>::find(id, typeid(Stack)));
//   if (!stack)
//       stack = static_cast<Stack*>(Detail<scope::Tavi>::insert(id, typeid(Stack),
//       makeValue<Stack>()));
//
// Detail<scope::Tavi> works on the current tavi of the calling thread. The runtime (or a test)
// makes a Store current with a CurrentTavi scope; a thread that has none gets a store of its own,
// made at its first use and destroyed when the thread ends, as if it ran its own tavi.
//
// A Store is safe to use from several threads; the values in it are the caller's to guard.
// A value's address stays the same until its store is destroyed, which destroys the values in
// the reverse order of their insertion.
#pragma once

#include <foundation/usm/errors.hpp>

#include <atomic>
#include <cstddef>
#include <memory>
#include <shared_mutex>
#include <typeinfo>
#include <unordered_map>
#include <utility>
#include <vector>

namespace foundation::usm {

using ID = std::size_t;

namespace test {
class store_access;
}  // namespace test

// A stored value: the pointer and the function that destroys it (never null).
using Value = std::unique_ptr<void, void (*)(void*)>;

template <class T, class... Args>
Value makeValue(Args&&... args) {
    return Value(new T(std::forward<Args>(args)...), [](void* p) { delete static_cast<T*>(p); });
}

// The values of one tavi. The operations return the address of the stored value (its slot).
class Store {
public:
    Store();
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;
    // Stops the process if the store is still current on some thread.
    ~Store();

    // The value under `id` if it is of `type`, else null.
    void* find(ID id, const std::type_info& type) const;
    // Throws DoesNotExistTypeError if there is no value, TypeError if it is of another type.
    void* findOrThrow(ID id, const std::type_info& type) const;
    // Stops the process if there is no value of `type` under `id`.
    void* findOrFail(ID id, const std::type_info& type) const;
    // Stores `value` under `id`. Throws std::invalid_argument for an empty value or an id that
    // getNextID did not give, TypeError if the id was made for another type, and
    // AlreadyExistsError if the id has a value in this store.
    void* insert(ID id, const std::type_info& type, Value&& value);

    std::size_t size() const;

private:
    friend class CurrentTavi;
    friend class test::store_access;

    struct Entry {
        const std::type_info* type;
        Value value;
    };

    mutable std::shared_mutex mutex_;
    std::unordered_map<ID, Entry> entries_;
    std::vector<ID> order_;          // insertion order, for destruction in reverse
    std::atomic<int> currentOn_{0};  // CurrentTavi scopes that name this store

    // Stores a value whose id and type have been checked; throws AlreadyExistsError.
    void* emplace(ID id, const std::type_info& type, Value&& value);
};

namespace scope {
struct Tavi {};
}  // namespace scope

template <class Scope>
class Detail;

// The operations on the calling thread's current tavi.
template <>
class Detail<scope::Tavi> {
public:
    // A new id, process-wide, for values of `type`.
    static ID getNextID(const std::type_info& type);

    static void* find(ID id, const std::type_info& type);
    static void* findOrThrow(ID id, const std::type_info& type);
    static void* findOrFail(ID id, const std::type_info& type);
    static void* insert(ID id, const std::type_info& type, Value&& value);

    // The calling thread's current store.
    static Store& current();
};

// Makes `store` the current tavi of this thread until the scope ends, then restores the one
// before. Scopes on one thread end in the reverse order of their making.
class CurrentTavi {
public:
    explicit CurrentTavi(Store& store) noexcept;
    CurrentTavi(const CurrentTavi&) = delete;
    CurrentTavi& operator=(const CurrentTavi&) = delete;
    ~CurrentTavi();

private:
    Store* store_;
    Store* previous_;
};

}  // namespace foundation::usm
