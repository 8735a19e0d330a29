// The tavi store: the scopes that switch the current store, and the fatal ends of broken scopes
// and failed lookups.
#include <foundation/usm/store.hpp>
#include <foundation/usm/test/store_access.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

using namespace foundation::usm;
using Tavi = Detail<scope::Tavi>;

ID nextID() { return Tavi::getNextID(typeid(int)); }

TEST(Store, ScopesSwitchAndRestoreTheCurrentStore) {
    Store& own = Tavi::current();
    Store first, second;
    {
        CurrentTavi useFirst(first);
        {
            CurrentTavi useSecond(second);
            EXPECT_EQ(&Tavi::current(), &second);
        }
        EXPECT_EQ(&Tavi::current(), &first);
    }
    EXPECT_EQ(&Tavi::current(), &own);
}

// The test helper makes what insert refuses, a value under an id made for another type.
TEST(Store, TestAccessListsIdsAndStoresUnderAnyId) {
    Store store;
    const ID first = nextID(), second = nextID();
    store.insert(second, typeid(int), makeValue<int>(2));
    EXPECT_THROW(store.insert(first, typeid(double), makeValue<double>(1.0)), TypeError);
    test::store_access::insertAs(store, first, typeid(double), makeValue<double>(1.0));
    EXPECT_EQ(test::store_access::ids(store), (std::vector<ID>{second, first}));
    EXPECT_THROW(store.findOrThrow(first, typeid(int)), TypeError);
    EXPECT_THROW(test::store_access::insertAs(store, first, typeid(int), makeValue<int>(3)),
                 AlreadyExistsError);
}

TEST(StoreDeathTest, BrokenScopesAndFailedLookupsStopTheProcess) {
    Store store;
    const ID id = nextID();
    EXPECT_DEATH(store.findOrFail(id, typeid(int)), "no value under id");
    store.insert(id, typeid(int), makeValue<int>(1));
    EXPECT_DEATH(store.findOrFail(id, typeid(double)), "holds int under id .*, not double");
    EXPECT_DEATH(
        {
            auto doomed = std::make_unique<Store>();
            CurrentTavi use(*doomed);
            doomed.reset();
        },
        "destroyed while it is current");
    EXPECT_DEATH(
        {
            Store a;
            Store b;
            auto first = std::make_unique<CurrentTavi>(a);
            CurrentTavi second(b);
            first.reset();
        },
        "reverse order");
}

}  // namespace
