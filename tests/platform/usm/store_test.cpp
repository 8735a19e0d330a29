// The tavi store: scopes switch and restore the current store; broken scopes and failed lookups
// stop the process.
#include <foundation/usm/store.hpp>
#include <foundation/usm/test/store_access.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

using namespace foundation::usm;
using Tavi = Detail<scope::Tavi>;

TEST(Store, ScopesSwitchAndRestoreTheCurrentStoreAndIdsKeepTheirType) {
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

    // The test helper makes what insert refuses, a value under an id made for another type.
    const ID a = Tavi::getNextID(typeid(int)), b = Tavi::getNextID(typeid(int));
    first.insert(b, typeid(int), makeValue<int>(2));
    EXPECT_THROW(first.insert(a, typeid(double), makeValue<double>(1.0)), TypeError);
    test::store_access::insertAs(first, a, typeid(double), makeValue<double>(1.0));
    EXPECT_EQ(test::store_access::ids(first), (std::vector<ID>{b, a}));
    EXPECT_THROW(first.findOrThrow(a, typeid(int)), TypeError);
    EXPECT_THROW(test::store_access::insertAs(first, a, typeid(int), makeValue<int>(3)),
                 AlreadyExistsError);
}

TEST(StoreDeathTest, BrokenScopesAndFailedLookupsStopTheProcess) {
    Store store;
    const ID id = Tavi::getNextID(typeid(int));
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
            auto outer = std::make_unique<CurrentTavi>(a);
            CurrentTavi inner(b);
            outer.reset();
        },
        "reverse order");
}

}  // namespace
