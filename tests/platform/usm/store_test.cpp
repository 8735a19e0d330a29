#include <foundation/usm/store.hpp>

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

namespace {

using namespace foundation::usm;

static_assert(std::is_base_of_v<TypeError, DoesNotExistTypeError>,
              "callers that tell the two apart catch DoesNotExistTypeError first");

// Records the order in which values die.
struct tracked {
    std::vector<int>* deaths;
    int tag;
    ~tracked() { deaths->push_back(tag); }
};

TEST(Store, LookupsTellMissingFromMistypedValues) {
    Store store;
    const ID id = Detail<scope::Tavi>::getNextID(typeid(int));
    EXPECT_EQ(store.find(id, typeid(int)), nullptr);
    EXPECT_THROW(store.findOrThrow(id, typeid(int)), DoesNotExistTypeError);

    void* slot = store.insert(id, typeid(int), makeValue<int>(42));
    EXPECT_EQ(*static_cast<int*>(slot), 42);
    EXPECT_EQ(store.find(id, typeid(int)), slot);
    EXPECT_EQ(store.findOrThrow(id, typeid(int)), slot);
    EXPECT_EQ(store.findOrFail(id, typeid(int)), slot);

    // Another type under the id: not found, and a TypeError that is no DoesNotExistTypeError.
    EXPECT_EQ(store.find(id, typeid(long)), nullptr);
    try {
        store.findOrThrow(id, typeid(long));
        ADD_FAILURE() << "no exception";
    } catch (const DoesNotExistTypeError&) {
        ADD_FAILURE() << "the value exists";
    } catch (const TypeError& error) {
        EXPECT_EQ(std::string(error.what()),
                  "The tavi store holds int under id " + std::to_string(id) + ", not long");
    }
}

TEST(Store, InsertRejectsBadCalls) {
    Store store;
    const ID intID = Detail<scope::Tavi>::getNextID(typeid(int));
    store.insert(intID, typeid(int), makeValue<int>(1));
    const ID freshID = Detail<scope::Tavi>::getNextID(typeid(int));
    const ID neverGiven = Detail<scope::Tavi>::getNextID(typeid(int)) + 1000000;

    EXPECT_THROW(store.insert(intID, typeid(int), makeValue<int>(2)), AlreadyExistsError);
    EXPECT_THROW(store.insert(freshID, typeid(long), makeValue<long>(2)), TypeError);
    EXPECT_THROW(store.insert(neverGiven, typeid(int), makeValue<int>(2)), std::invalid_argument);
    EXPECT_THROW(store.insert(freshID, typeid(int), Value(nullptr, [](void*) {})),
                 std::invalid_argument);
    // The refused calls left the store as it was.
    EXPECT_EQ(store.size(), 1u);
    EXPECT_EQ(*static_cast<int*>(store.find(intID, typeid(int))), 1);
}

TEST(Store, DestroysValuesInReverseOrderOfInsertion) {
    std::vector<int> deaths;
    {
        Store store;
        for (int tag : {1, 2, 3}) {
            const ID id = Detail<scope::Tavi>::getNextID(typeid(tracked));
            store.insert(id, typeid(tracked), makeValue<tracked>(tracked{&deaths, tag}));
        }
        deaths.clear();  // the temporaries handed to makeValue
    }
    EXPECT_EQ(deaths, (std::vector<int>{3, 2, 1}));
}

TEST(StoreDeathTest, FindOrFailStopsWhenNothingFits) {
    Store store;
    const ID id = Detail<scope::Tavi>::getNextID(typeid(int));
    EXPECT_DEATH(store.findOrFail(id, typeid(int)), "no value under id");
    store.insert(id, typeid(int), makeValue<int>(1));
    EXPECT_DEATH(store.findOrFail(id, typeid(double)), "holds int under id .*, not double");
}

}  // namespace
