// The order that the sort of variants uses, over all alternatives and inside each, and hashes
// that agree with equality.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TypeTestSupport.hpp"

namespace typestest {
namespace {

TEST(OrderTest, PairsInAscendingOrder) {
    const auto d = [](kaClassID e, Shape shape, std::size_t dim, Density density = Density::FULL,
                      Complexity complexity = Complexity::COMPLEX) {
        return array(e, shape, dim, density, complexity);
    };
    const auto flag = [](std::u16string text) { return FlagInputType(std::move(text)); };
    const kaClassID c25 = classId(25), c26 = classId(26);
    const struct { const char* what; ArgType lower, higher; } cases[] = {
        {"alternative: unsupported, flag", UnsupportedArgType(), flag(u"zzz")},
        {"alternative: flag, scalar", flag(u"\uffff"), realScalar(kaLOGICAL_CLASS)},
        {"alternative: scalar, string", complexScalar(kaUINT64_CLASS), KeldorStringType(StringShape::SCALAR)},
        {"alternative: string, place", KeldorStringType(StringShape::ANY), OrroObjectPlaceTypes(classId(19), 0)},
        {"alternative: place, object", OrroObjectPlaceTypes(classId(19), 9), OrroObjectTypes(classId(19), 0, true)},
        {"alternative: object, array", OrroObjectTypes(c26, 1, true), array(classId(-1), Shape::SCALAR, 0)},
        {"array: tolerance first", openArray(), relaxed(d(kaDOUBLE_CLASS, Shape::ROW, 1))},
        {"array: element, open last", d(kaUINT64_CLASS, Shape::ROW, 1), d(kaUNKNOWN_CLASS, Shape::SCALAR, 0)},
        {"array: element, signed", d(classId(-1), Shape::ROW, 1), d(kaCELL_CLASS, Shape::ROW, 1)},
        {"array: density before complexity", d(kaDOUBLE_CLASS, Shape::ROW, 1),
         d(kaDOUBLE_CLASS, Shape::ROW, 1, Density::SPARSE, Complexity::NOT_COMPLEX)},
        {"array: density, open last", d(kaDOUBLE_CLASS, Shape::ROW, 1, Density::SPARSE),
         d(kaDOUBLE_CLASS, Shape::ROW, 1, Density::UNKNOWN)},
        {"array: complexity, open last", d(kaDOUBLE_CLASS, Shape::ROW, 1),
         d(kaDOUBLE_CLASS, Shape::ROW, 1, Density::FULL, Complexity::UNKNOWN)},
        {"array: dim before shape", d(kaDOUBLE_CLASS, Shape::SCALAR, 0), d(kaDOUBLE_CLASS, Shape::ROW, 1)},
        {"array: dim unsigned", d(kaDOUBLE_CLASS, Shape::ND, 4), d(kaDOUBLE_CLASS, Shape::ND, ANY_DIM)},
        {"array: shape", d(kaDOUBLE_CLASS, Shape::EMPTY_ROW, 0), d(kaDOUBLE_CLASS, Shape::SCALAR, 0)},
        {"array: shape, open last", d(kaDOUBLE_CLASS, Shape::ND, ANY_DIM), d(kaDOUBLE_CLASS, Shape::UNKNOWN, ANY_DIM)},
        {"scalar: real first", realScalar(kaDOUBLE_CLASS), complexScalar(kaDOUBLE_CLASS)},
        {"scalar: element first", complexScalar(kaDOUBLE_CLASS), realScalar(kaSINGLE_CLASS)},
        {"scalar: signed, no unknown-last", realScalar(classId(-1)), realScalar(kaUNKNOWN_CLASS)},
        {"flag: prefix first", flag(u"ab"), flag(u"abc")},
        {"flag: case is a unit", flag(u"B"), flag(u"a")},
        {"flag: unsigned units", flag(u"\u7fff"), flag(u"\u8000")},
        {"object: variant", OrroObjectTypes(c25, 3, true), OrroObjectTypes(c25, 4, false)},
        {"object: open variant last", OrroObjectTypes(c25, 2, true), OrroObjectTypes(c25, SIZE_MAX, true)},
        {"object: class first", OrroObjectTypes(c25, 9, true), OrroObjectTypes(c26, 0, true)},
        {"place: class first", OrroObjectPlaceTypes(c25, 9), OrroObjectPlaceTypes(c26, 0)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_TRUE(c.lower < c.higher);
        EXPECT_FALSE(c.higher < c.lower);
    }
    EXPECT_EQ(ArgType(), ArgType(UnsupportedArgType()));
    EXPECT_NE(flag(u"Abc"), flag(u"abc"));  // no folding of case
    // The flag of an object is not looked at; an open class and any positive one are each less
    // than the other, which only unequal pairs meet in the sort of variants.
    EXPECT_FALSE(OrroObjectTypes(c25, 3, true) < OrroObjectTypes(c25, 3, false));
    EXPECT_TRUE(OrroObjectTypes(kaUNKNOWN_CLASS, 1, true) < OrroObjectTypes(c25, 1, true));
    EXPECT_TRUE(OrroObjectTypes(c25, 1, true) < OrroObjectTypes(kaUNKNOWN_CLASS, 1, true));
    EXPECT_FALSE(OrroObjectTypes(c25, 1, true) < OrroObjectTypes(classId(-5), 1, true));
}

// std::sort needs a strict weak order: irreflexive, transitive, incomparability transitive.
// Every array key takes its open value, a low one and a higher one: open values sorting last
// could break transitivity.
TEST(OrderTest, IsAStrictWeakOrder) {
    std::vector<KaArrayTypes> v;
    const std::int32_t elements[] = {0, 6, -2};
    const Shape shapes[] = {Shape::UNKNOWN, Shape::SCALAR, Shape::ND};
    const std::size_t dims[] = {0, 3, ANY_DIM};
    for (int i = 0; i < 216; ++i) {
        v.push_back(array(classId(elements[i % 3]), shapes[i / 3 % 3], dims[i / 9 % 3],
                          i / 27 % 2 ? Density::UNKNOWN : Density::SPARSE,
                          i / 54 % 2 ? Complexity::UNKNOWN : Complexity::COMPLEX, i / 108 % 2 ? STRICT_ : RELAXED_));
    }
    const std::size_t n = v.size();
    std::vector<char> lt(n * n);
    for (std::size_t i = 0; i < n * n; ++i) lt[i] = v[i / n] < v[i % n];
    const auto less = [&](std::size_t i, std::size_t j) { return lt[i * n + j] != 0; };
    const auto incomparable = [&](std::size_t i, std::size_t j) { return !less(i, j) && !less(j, i); };
    for (std::size_t i = 0; i < n; ++i) {
        ASSERT_FALSE(less(i, i)) << i;
        for (std::size_t j = 0; j < n; ++j) {
            for (std::size_t k = 0; k < n; ++k) {
                ASSERT_TRUE(!(less(i, j) && less(j, k)) || less(i, k)) << i << " " << j << " " << k;
                ASSERT_TRUE(!(incomparable(i, j) && incomparable(j, k)) || incomparable(i, k)) << i << " " << j << " " << k;
            }
        }
    }
}

// The sort and the cleanup key on hashes: what compares equal must hash equal.
TEST(HashTest, EqualValuesHashEqual) {
    EXPECT_EQ(OrroObjectTypes(classId(25), 3, true).hash(), OrroObjectTypes(classId(25), 3, false).hash());
    std::u16string owner = u"abc";
    EXPECT_EQ(FlagInputType(std::string("abc")).hash(), FlagInputType(std::u16string_view{owner}).hash());
    EXPECT_NE(FlagInputType(std::string("abc")).hash(), FlagInputType(std::string("abd")).hash());
    const KaArrayTypes base = array(kaDOUBLE_CLASS, Shape::ROW, 1);
    for (const KaArrayTypes& other :
         {array(kaSINGLE_CLASS, Shape::ROW, 1), array(kaDOUBLE_CLASS, Shape::COLUMN, 1),
          array(kaDOUBLE_CLASS, Shape::ROW, 1, Density::SPARSE),
          array(kaDOUBLE_CLASS, Shape::ROW, 1, Density::FULL, Complexity::COMPLEX),
          array(kaDOUBLE_CLASS, Shape::ROW, 2), relaxed(base)}) {
        EXPECT_NE(base.hash(), other.hash()) << other;
    }
}

}  // namespace
}  // namespace typestest
