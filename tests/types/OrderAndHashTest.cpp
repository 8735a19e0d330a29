// The order that the sort of variants uses, over all alternatives and inside each, and the
// hashes, checked against the mixing step written out independently.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TypeTestSupport.hpp"

namespace typestest {
namespace {

// The mixing step of hash_combine written out for a 64-bit size_t, independently of Boost.
std::uint64_t mixStep(std::uint64_t seed, std::uint64_t value) {
    constexpr std::uint64_t m = 0xe9846af9b1a615dULL;
    std::uint64_t x = seed + 0x9e3779b9ULL + value;
    x ^= x >> 32;
    x *= m;
    x ^= x >> 32;
    x *= m;
    x ^= x >> 28;
    return x;
}
// A 32-bit field as the mixing step sees it: sign-extended to 64 bits.
std::uint64_t widened(std::int32_t value) {
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
}

// operator< must be a strict weak order for std::sort: irreflexive, transitive, and with
// incomparability transitive. Cubic, so keep sets to a few hundred values.
template <class T>
void expectStrictWeakOrder(const std::vector<T>& values) {
    const std::size_t n = values.size();
    std::vector<char> lt(n * n);
    for (std::size_t i = 0; i < n * n; ++i) lt[i] = values[i / n] < values[i % n] ? 1 : 0;
    const auto less = [&](std::size_t i, std::size_t j) { return lt[i * n + j] != 0; };
    const auto incomparable = [&](std::size_t i, std::size_t j) {
        return !less(i, j) && !less(j, i);
    };
    for (std::size_t i = 0; i < n; ++i) {
        ASSERT_FALSE(less(i, i)) << "not irreflexive at " << i;
        for (std::size_t j = 0; j < n; ++j) {
            for (std::size_t k = 0; k < n; ++k) {
                if (less(i, j) && less(j, k)) {
                    ASSERT_TRUE(less(i, k)) << "not transitive at " << i << ", " << j << ", " << k;
                }
                if (incomparable(i, j) && incomparable(j, k)) {
                    ASSERT_TRUE(incomparable(i, k))
                        << "incomparability not transitive at " << i << ", " << j << ", " << k;
                }
            }
        }
    }
}

TEST(OrderTest, PairsInAscendingOrder) {
    const auto d = [](kaClassID e, Shape shape, std::size_t dim, Density density = Density::FULL,
                      Complexity complexity = Complexity::COMPLEX) {
        return array(e, shape, dim, density, complexity);
    };
    const auto flag = [](std::u16string text) { return FlagInputType(std::move(text)); };
    const kaClassID c25 = classId(25), c26 = classId(26);
    const struct {
        const char* what;
        ArgType lower, higher;
    } cases[] = {
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

TEST(OrderTest, IsAStrictWeakOrder) {
    // Each array key takes its open value, a negative or low value and a higher one.
    // Where open values sort last the order could lose its transitivity.
    std::vector<KaArrayTypes> arrays;
    for (int i = 0; i < 216; ++i) {
        const std::int32_t elements[] = {0, 6, -2};
        const Shape shapes[] = {Shape::UNKNOWN, Shape::SCALAR, Shape::ND};
        const std::size_t dims[] = {0, 3, ANY_DIM};
        arrays.push_back(array(classId(elements[i % 3]), shapes[i / 3 % 3], dims[i / 9 % 3],
                               i / 27 % 2 ? Density::UNKNOWN : Density::SPARSE,
                               i / 54 % 2 ? Complexity::UNKNOWN : Complexity::COMPLEX,
                               i / 108 % 2 ? STRICT_ : RELAXED_));
    }
    expectStrictWeakOrder(arrays);
}

std::uint64_t fnv1a(std::u16string_view text) {
    std::uint64_t hash = 0xcbf29ce484222325ULL;
    for (const char16_t unit : text) {
        for (const unsigned byte : {unit & 0xffU, (unit >> 8) & 0xffU}) {
            hash ^= byte;
            hash *= 0x100000001b3ULL;
        }
    }
    return hash;
}

TEST(HashTest, EachAlternativeMixesItsFieldsInOrder) {
    // Fixed in advance, so that the test and the library cannot share a mistake.
    EXPECT_EQ(array(kaDOUBLE_CLASS, Shape::ROW, 1).hash(), 0xec79d0908eacc044ULL);
    EXPECT_EQ(OrroObjectTypes(classId(25), 3, true).hash(), 0x101113e6ce93b40cULL);
    EXPECT_EQ(OrroObjectTypes(classId(25), 3, false).hash(), 0x101113e6ce93b40cULL);  // no flag
    EXPECT_EQ(FlagInputType(std::string("abc")).hash(), 0xcec64e155111225dULL);
    std::size_t seed = 0;
    hash_combine(seed, classId(-1));
    EXPECT_EQ(seed, 0x5c648fb76e902887ULL);

    const KaArrayTypes type =
        array(classId(-3), Shape::ND, ANY_DIM, Density::SPARSE, Complexity::COMPLEX, RELAXED_);
    std::uint64_t mixed = 0;
    for (const std::uint64_t field : {widened(-3), widened(static_cast<std::int32_t>(Shape::ND)),
                                      widened(static_cast<std::int32_t>(Density::SPARSE)),
                                      widened(static_cast<std::int32_t>(Complexity::COMPLEX)),
                                      std::uint64_t{ANY_DIM}, widened(static_cast<std::int32_t>(RELAXED_))}) {
        mixed = mixStep(mixed, field);
    }
    EXPECT_EQ(type.hash(), mixed);
    for (const auto& [cls, variant] : std::vector<std::pair<std::int32_t, std::size_t>>{{0, SIZE_MAX}, {-1, 0}}) {
        const std::uint64_t expected = mixStep(mixStep(0, widened(cls)), variant);
        EXPECT_EQ(OrroObjectTypes(classId(cls), variant, false).hash(), expected) << cls;
        EXPECT_EQ(OrroObjectPlaceTypes(classId(cls), variant).hash(), expected) << cls;
    }
    // A scalar hashes its element alone, the complexity is not mixed in; a string its shape.
    for (const std::int32_t element : {6, -1}) {
        EXPECT_EQ(realScalar(classId(element)).hash(), widened(element));
        EXPECT_EQ(complexScalar(classId(element)).hash(), widened(element));
    }
    EXPECT_EQ(KeldorStringType(StringShape::ANY).hash(), mixStep(0, 1));
    EXPECT_EQ(KeldorStringType(StringShape::SCALAR).hash(), mixStep(0, 0));
    for (const std::u16string text : {u"", u"\u0100", u"\uffff\u0001", u"\u00e9t\u00e9"}) {
        EXPECT_EQ(FlagInputType(text).hash(), fnv1a(text)) << text.size() << " units";
    }
}

}  // namespace
}  // namespace typestest
