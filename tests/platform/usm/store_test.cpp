// The tavi store: the scopes that switch the current store, and the fatal ends of broken scopes
// and failed lookups.
#include <foundation/usm/store.hpp>

#include <gtest/gtest.h>

#include <memory>

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
