// Test helpers of the tavi store: which ids a store holds, and a way to give a store the state
// that insert refuses to make, a value under an id that was made for another type. Code that
// finds its slot by a private id uses them to look at, or to spoil, what it left in a store.
//
//   const std::vector<ID> ids = foundation::usm::test::store_access::ids(store);
//   foundation::usm::test::store_access::insertAs(other, ids[0], typeid(int), makeValue<int>(1));
#pragma once

#include <foundation/usm/store.hpp>

#include <typeinfo>
#include <vector>

namespace foundation::usm::test {

class store_access {
public:
    // The ids under which `store` holds values, in the order of their insertion.
    static std::vector<ID> ids(const Store& store);

    // Stores `value` under `id` as a value of `type`, whatever type the id was made for.
    // Throws AlreadyExistsError if the id has a value in `store`.
    static void* insertAs(Store& store, ID id, const std::type_info& type, Value&& value);
};

}  // namespace foundation::usm::test
