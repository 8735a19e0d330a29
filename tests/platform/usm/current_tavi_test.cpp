#include <foundation/usm/store.hpp>

#include <gtest/gtest.h>

#include <thread>

namespace {

using namespace foundation::usm;
using Tavi = Detail<scope::Tavi>;

const ID& counterID() {
    static const ID id = Tavi::getNextID(typeid(int));
    return id;
}

// The int under counterID in the current tavi, made on first use as the library's users do.
int& counter() {
    if (void* slot = Tavi::find(counterID(), typeid(int)))
        return *static_cast<int*>(slot);
    return *static_cast<int*>(Tavi::insert(counterID(), typeid(int), makeValue<int>(0)));
}

TEST(CurrentTavi, ScopesSwitchAndRestoreTheCurrentStore) {
    Store& own = Tavi::current();
    ++counter();
    Store first;
    Store second;
    {
        CurrentTavi useFirst(first);
        EXPECT_EQ(&Tavi::current(), &first);
        counter() += 10;
        {
            CurrentTavi useSecond(second);
            EXPECT_EQ(&Tavi::current(), &second);
            counter() += 100;
        }
        EXPECT_EQ(&Tavi::current(), &first);
    }
    EXPECT_EQ(&Tavi::current(), &own);
    EXPECT_EQ(counter(), 1);
    EXPECT_EQ(*static_cast<int*>(first.findOrThrow(counterID(), typeid(int))), 10);
    EXPECT_EQ(*static_cast<int*>(second.findOrThrow(counterID(), typeid(int))), 100);
}

TEST(CurrentTavi, ThreadsWithoutATaviEachHaveTheirOwn) {
    std::vector<int> seen(3, -1);
    std::vector<std::thread> workers;
    for (std::size_t t = 0; t < seen.size(); ++t) {
        workers.emplace_back([&seen, t] {
            EXPECT_EQ(Tavi::find(counterID(), typeid(int)), nullptr);
            for (std::size_t i = 0; i <= t; ++i)
                ++counter();
            seen[t] = counter();
        });
    }
    for (std::thread& worker : workers)
        worker.join();
    EXPECT_EQ(seen, (std::vector<int>{1, 2, 3}));
}

TEST(CurrentTaviDeathTest, BrokenScopesStopTheProcess) {
    EXPECT_DEATH(
        {
            auto store = std::make_unique<Store>();
            CurrentTavi use(*store);
            store.reset();
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
