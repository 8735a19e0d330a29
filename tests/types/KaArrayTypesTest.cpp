// KaArrayTypes apart from its printed forms: construction, acceptance by the shape lattice,
// compatibility and precedence lists; and the order that the sort of variants uses, over all
// alternatives and inside each, with hashes that agree with equality.
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "TypeTestSupport.hpp"

namespace typestest {
namespace {

TEST(KaArrayTypesTest, Construction) {
    // The dimension count follows the shape; the refusals and their text are tests/badinput's.
    for (const auto& expected :
         {std::pair{Shape::EMPTY, std::size_t{0}}, std::pair{Shape::SCALAR, std::size_t{0}},
          std::pair{Shape::VECTOR, std::size_t{1}}, std::pair{Shape::TWO_D, std::size_t{2}}}) {
        EXPECT_EQ(
            KaArrayTypes(kaDOUBLE_CLASS, expected.first, Density::FULL, Complexity::NOT_COMPLEX)
                .getShape(),
            expected);
        KaArrayTypes reshaped;
        reshaped.setShape(expected.first);
        EXPECT_EQ(reshaped.getShape(), expected);
    }
    KaArrayTypes unchanged = array(kaDOUBLE_CLASS, Shape::ROW, 1);
    EXPECT_THROW(unchanged.setShape(Shape::UNKNOWN), std::invalid_argument);
    EXPECT_EQ(unchanged, array(kaDOUBLE_CLASS, Shape::ROW, 1));
    EXPECT_EQ(KaArrayTypes(), array(kaUNKNOWN_CLASS, Shape::SCALAR, 0));
    EXPECT_EQ(KaArrayTypes(kaINT16_ARRAY, Shape::ROW, Density::FULL, Complexity::COMPLEX),
              array(kaINT16_CLASS, Shape::ROW, 1, Density::FULL, Complexity::COMPLEX));
    EXPECT_EQ(KaArrayTypes(complexScalar(kaSINGLE_CLASS)),
              array(kaSINGLE_CLASS, Shape::SCALAR, 0, Density::FULL, Complexity::COMPLEX));
    EXPECT_EQ(KaArrayTypes(UnsupportedArgType()), openArray());
    EXPECT_EQ(KaArrayTypes(OrroObjectTypes(classId(25), 3, true)), openArray(classId(25)));
    EXPECT_EQ(KaArrayTypes(OrroObjectPlaceTypes(classId(26), 1)), openArray(classId(26)));
}

// A full array of a known element and complexity has a scalar form, whatever its shape.
TEST(KaArrayTypesTest, AsScalar) {
    EXPECT_EQ(*array(kaDOUBLE_CLASS, Shape::TWO_D, 2).asScalar(), realScalar(kaDOUBLE_CLASS));
    EXPECT_EQ(*array(kaDOUBLE_CLASS, Shape::ROW, 1, Density::FULL, Complexity::COMPLEX).asScalar(),
              complexScalar(kaDOUBLE_CLASS));
    EXPECT_FALSE(array(kaDOUBLE_CLASS, Shape::TWO_D, 2, Density::SPARSE).asScalar().has_value());
    EXPECT_FALSE(array(kaDOUBLE_CLASS, Shape::SCALAR, 0, Density::FULL, Complexity::UNKNOWN)
                     .asScalar()
                     .has_value());
    EXPECT_FALSE(array(kaUNKNOWN_CLASS, Shape::SCALAR, 0).asScalar().has_value());
}

TEST(KaArrayTypesTest, ShapeLatticeRowByRow) {
    // The candidates, one character each in the rows: U ER EC E S R C V 2 N3.
    const std::pair<Shape, std::size_t> candidates[] = {
        {Shape::UNKNOWN, ANY_DIM}, {Shape::EMPTY_ROW, 0}, {Shape::EMPTY_COL, 0}, {Shape::EMPTY, 0},
        {Shape::SCALAR, 0},        {Shape::ROW, 1},       {Shape::COLUMN, 1},    {Shape::VECTOR, 1},
        {Shape::TWO_D, 2},         {Shape::ND, 3}};
    const struct {
        const char* what;
        Shape shape;
        std::size_t dim;
        const char *relaxedTakes, *strictTakes;
    } rows[] = {
        {"UNKNOWN", Shape::UNKNOWN, ANY_DIM, "1111111111", "1000000000"},
        {"EMPTY_ROW", Shape::EMPTY_ROW, 0, "0100000000", "0100000000"},
        {"EMPTY_COL", Shape::EMPTY_COL, 0, "0010000000", "0010000000"},
        {"EMPTY", Shape::EMPTY, 0, "0111000000", "0111000000"},
        {"EMPTY of 3", Shape::EMPTY, 3, "0111000000", "0000000000"},
        {"SCALAR", Shape::SCALAR, 0, "0000100000", "0000100000"},
        {"ROW", Shape::ROW, 1, "0100110000", "0000010000"},
        {"COLUMN", Shape::COLUMN, 1, "0010101000", "0000001000"},
        {"VECTOR", Shape::VECTOR, 1, "0110111000", "0000000100"},
        {"TWO_D", Shape::TWO_D, 2, "0111111110", "0000000010"},
        {"ND 3", Shape::ND, 3, "0111111111", "0000000001"},
        {"ND 2", Shape::ND, 2, "0111111110", "0000000000"},
        {"ND any", Shape::ND, ANY_DIM, "1111111111", "0000000000"},
        {"outside the enum", static_cast<Shape>(42), 0, "0000000000", "0000000000"},
    };
    for (const auto& row : rows) {
        const KaArrayTypes strict = array(kaDOUBLE_CLASS, row.shape, row.dim);
        for (std::size_t i = 0; i < std::size(candidates); ++i) {
            const KaArrayTypes candidate =
                array(kaDOUBLE_CLASS, candidates[i].first, candidates[i].second);
            EXPECT_EQ(relaxed(strict).isAcceptable(candidate), row.relaxedTakes[i] == '1')
                << row.what << " / " << i;
            EXPECT_EQ(strict.isAcceptable(candidate), row.strictTakes[i] == '1')
                << row.what << " / " << i;
        }
    }
    // Dimension counts beyond the usual ones.
    const KaArrayTypes nd3 = relaxed(array(kaDOUBLE_CLASS, Shape::ND, 3));
    EXPECT_FALSE(nd3.isAcceptable(array(kaDOUBLE_CLASS, Shape::ND, 4)));
    EXPECT_TRUE(nd3.isAcceptable(array(kaDOUBLE_CLASS, Shape::EMPTY, 3)));
    EXPECT_TRUE(relaxed(array(kaDOUBLE_CLASS, Shape::ND, ANY_DIM))
                    .isAcceptable(array(kaDOUBLE_CLASS, Shape::ND, 99)));
}

TEST(KaArrayTypesTest, ElementComplexityAndDensityBeforeTheShape) {
    const KaArrayTypes candidate =
        array(kaINT32_CLASS, Shape::ROW, 1, Density::SPARSE, Complexity::COMPLEX);
    const struct {
        const char* what;
        kaClassID element;
        Density density;
        Complexity complexity;
        bool relaxedTakes, strictTakes;
    } cases[] = {
        {"all equal", kaINT32_CLASS, Density::SPARSE, Complexity::COMPLEX, true, true},
        {"open element", kaUNKNOWN_CLASS, Density::SPARSE, Complexity::COMPLEX, true, false},
        {"other element", kaINT64_CLASS, Density::SPARSE, Complexity::COMPLEX, false, false},
        {"open complexity", kaINT32_CLASS, Density::SPARSE, Complexity::UNKNOWN, true, false},
        {"other complexity", kaINT32_CLASS, Density::SPARSE, Complexity::NOT_COMPLEX, false, false},
        {"open density", kaINT32_CLASS, Density::UNKNOWN, Complexity::COMPLEX, true, false},
        {"other density", kaINT32_CLASS, Density::FULL, Complexity::COMPLEX, false, false},
    };
    for (const auto& c : cases) {
        const KaArrayTypes strict = array(c.element, Shape::ROW, 1, c.density, c.complexity);
        EXPECT_EQ(relaxed(strict).isAcceptable(candidate), c.relaxedTakes) << c.what;
        EXPECT_EQ(strict.isAcceptable(candidate), c.strictTakes) << c.what;
        // Compatibility asks the same three and nothing else, with no wildcards.
        EXPECT_EQ(relaxed(strict).isCompatible(candidate), c.strictTakes) << c.what;
    }
    // The candidate's open element is no wildcard.
    EXPECT_FALSE(relaxed(array(kaINT32_CLASS, Shape::ROW, 1))
                     .isAcceptable(array(kaUNKNOWN_CLASS, Shape::ROW, 1)));
    EXPECT_TRUE(
        array(kaDOUBLE_CLASS, Shape::ROW, 1).isCompatible(array(kaDOUBLE_CLASS, Shape::ND, 7)));
}

using Entry = KaArrayTypes::PrecedenceType;

// The entries as "shape:dim" (shape as its number), the numeric scalar as "scalar"; an array entry
// that is more than a relaxed double array of that shape is marked "!".
std::vector<std::string> shapesOf(const std::vector<Entry>& entries) {
    std::vector<std::string> shapes;
    for (const auto& entry : entries) {
        const auto* a = std::get_if<KaArrayTypes>(&entry);
        if (!a) {
            shapes.push_back("scalar");
            continue;
        }
        const auto [shape, dim] = a->getShape();
        shapes.push_back(std::to_string(static_cast<int>(shape)) + ":" +
                         (dim == ANY_DIM ? std::string("any") : std::to_string(dim)) +
                         (*a == relaxed(array(kaDOUBLE_CLASS, shape, dim)) ? "" : "!"));
    }
    return shapes;
}

// Shapes: 1 EMPTY_ROW, 2 EMPTY_COL, 3 EMPTY, 4 SCALAR, 5 ROW, 6 COLUMN, 7 VECTOR, 8 TWO_D, 9 ND.
// Arrays sort by dim, then shape; the numeric scalar comes last. Strict arrays have none.
TEST(KaArrayTypesTest, PrecedenceLists) {
    const std::vector<std::string> general = {"1:0", "2:0", "3:0", "5:1", "6:1", "7:1", "8:2"};
    const auto with = [&](std::vector<std::string> tail) {
        std::vector<std::string> all = general;
        all.insert(all.end(), tail.begin(), tail.end());
        return all;
    };
    const struct {
        Shape shape;
        std::size_t dim;
        std::vector<std::string> expected;
    } cases[] = {
        {Shape::SCALAR, 0, {}},
        {Shape::EMPTY, 0, {"1:0", "2:0"}},
        {Shape::ROW, 1, {"1:0", "scalar"}},
        {Shape::COLUMN, 1, {"2:0", "scalar"}},
        {Shape::VECTOR, 1, {"1:0", "2:0", "5:1", "6:1", "scalar"}},
        {Shape::TWO_D, 2, {"1:0", "2:0", "3:0", "5:1", "6:1", "7:1", "scalar"}},
        {Shape::ND, 3, with({"scalar"})},
        {Shape::ND, 7, with({"9:3", "9:4", "scalar"})},
        {Shape::ND, ANY_DIM, with({"9:3", "9:4", "9:any", "scalar"})},
        {Shape::UNKNOWN, ANY_DIM, with({"9:3", "9:4", "9:5", "9:any", "scalar"})},
        {Shape::UNKNOWN, 2, with({"9:2", "scalar"})},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(
            shapesOf(relaxed(array(kaDOUBLE_CLASS, c.shape, c.dim)).getGreaterPrecedenceTypes()),
            c.expected)
            << static_cast<int>(c.shape) << ":" << c.dim;
        EXPECT_TRUE(array(kaDOUBLE_CLASS, c.shape, c.dim).getGreaterPrecedenceTypes().empty());
    }
    // The scalar entry: of the element and complexity (open counts as real), the density not
    // asked; a cell's is a relaxed cell array.
    const std::pair<KaArrayTypes, Entry> scalars[] = {
        {array(kaINT8_CLASS, Shape::ROW, 1, Density::FULL, Complexity::UNKNOWN),
         realScalar(kaINT8_CLASS)},
        {array(kaSINGLE_CLASS, Shape::ROW, 1, Density::FULL, Complexity::COMPLEX),
         complexScalar(kaSINGLE_CLASS)},
        {array(kaDOUBLE_CLASS, Shape::ROW, 1, Density::SPARSE), realScalar(kaDOUBLE_CLASS)},
        {array(kaCELL_CLASS, Shape::ROW, 1), relaxed(array(kaCELL_CLASS, Shape::SCALAR, 0))},
    };
    for (const auto& [declared, scalar] : scalars) {
        const auto entries = relaxed(declared).getGreaterPrecedenceTypes();
        ASSERT_EQ(entries.size(), 2U) << declared;
        EXPECT_EQ(entries[1], scalar) << declared;
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
        {"alternative: scalar, string", complexScalar(kaUINT64_CLASS),
         KeldorStringType(StringShape::SCALAR)},
        {"alternative: string, place", KeldorStringType(StringShape::ANY),
         OrroObjectPlaceTypes(classId(19), 0)},
        {"alternative: place, object", OrroObjectPlaceTypes(classId(19), 9),
         OrroObjectTypes(classId(19), 0, true)},
        {"alternative: object, array", OrroObjectTypes(c26, 1, true),
         array(classId(-1), Shape::SCALAR, 0)},
        {"array: tolerance first", openArray(), relaxed(d(kaDOUBLE_CLASS, Shape::ROW, 1))},
        {"array: element, open last", d(kaUINT64_CLASS, Shape::ROW, 1),
         d(kaUNKNOWN_CLASS, Shape::SCALAR, 0)},
        {"array: element, signed", d(classId(-1), Shape::ROW, 1), d(kaCELL_CLASS, Shape::ROW, 1)},
        {"array: density before complexity", d(kaDOUBLE_CLASS, Shape::ROW, 1),
         d(kaDOUBLE_CLASS, Shape::ROW, 1, Density::SPARSE, Complexity::NOT_COMPLEX)},
        {"array: density, open last", d(kaDOUBLE_CLASS, Shape::ROW, 1, Density::SPARSE),
         d(kaDOUBLE_CLASS, Shape::ROW, 1, Density::UNKNOWN)},
        {"array: complexity, open last", d(kaDOUBLE_CLASS, Shape::ROW, 1),
         d(kaDOUBLE_CLASS, Shape::ROW, 1, Density::FULL, Complexity::UNKNOWN)},
        {"array: dim before shape", d(kaDOUBLE_CLASS, Shape::SCALAR, 0),
         d(kaDOUBLE_CLASS, Shape::ROW, 1)},
        {"array: dim unsigned", d(kaDOUBLE_CLASS, Shape::ND, 4),
         d(kaDOUBLE_CLASS, Shape::ND, ANY_DIM)},
        {"array: shape", d(kaDOUBLE_CLASS, Shape::EMPTY_ROW, 0),
         d(kaDOUBLE_CLASS, Shape::SCALAR, 0)},
        {"array: shape, open last", d(kaDOUBLE_CLASS, Shape::ND, ANY_DIM),
         d(kaDOUBLE_CLASS, Shape::UNKNOWN, ANY_DIM)},
        {"scalar: real first", realScalar(kaDOUBLE_CLASS), complexScalar(kaDOUBLE_CLASS)},
        {"scalar: element first", complexScalar(kaDOUBLE_CLASS), realScalar(kaSINGLE_CLASS)},
        {"scalar: signed, no unknown-last", realScalar(classId(-1)), realScalar(kaUNKNOWN_CLASS)},
        {"flag: prefix first", flag(u"ab"), flag(u"abc")},
        {"flag: case is a unit", flag(u"B"), flag(u"a")},
        {"flag: unsigned units", flag(u"\u7fff"), flag(u"\u8000")},
        {"object: variant", OrroObjectTypes(c25, 3, true), OrroObjectTypes(c25, 4, false)},
        {"object: open variant last", OrroObjectTypes(c25, 2, true),
         OrroObjectTypes(c25, SIZE_MAX, true)},
        {"object: class first", OrroObjectTypes(c25, 9, true), OrroObjectTypes(c26, 0, true)},
        {"place: class first", OrroObjectPlaceTypes(c25, 9), OrroObjectPlaceTypes(c26, 0)},
    };
    for (const auto& c : cases) EXPECT_TRUE(c.lower < c.higher && !(c.higher < c.lower)) << c.what;
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
                          i / 54 % 2 ? Complexity::UNKNOWN : Complexity::COMPLEX,
                          i / 108 % 2 ? STRICT_ : RELAXED_));
    }
    const std::size_t n = v.size();
    std::vector<char> lt(n * n);  // each comparison once: the checks are cubic
    for (std::size_t i = 0; i < n * n; ++i) lt[i] = v[i / n] < v[i % n];
    const auto less = [&](std::size_t i, std::size_t j) { return lt[i * n + j] != 0; };
    const auto same = [&](std::size_t i, std::size_t j) { return !less(i, j) && !less(j, i); };
    for (std::size_t i = 0; i < n; ++i) {
        ASSERT_FALSE(less(i, i)) << i;
        for (std::size_t j = 0; j < n; ++j) {
            for (std::size_t k = 0; k < n; ++k) {
                ASSERT_TRUE(!(less(i, j) && less(j, k)) || less(i, k)) << i << " " << j << " " << k;
                ASSERT_TRUE(!(same(i, j) && same(j, k)) || same(i, k)) << i << " " << j << " " << k;
            }
        }
    }
}

TEST(HashTest, EqualValuesHashEqual) {
    EXPECT_EQ(OrroObjectTypes(classId(25), 3, true).hash(),
              OrroObjectTypes(classId(25), 3, false).hash());
    std::u16string owner = u"abc";
    EXPECT_EQ(FlagInputType(std::string("abc")).hash(),
              FlagInputType(std::u16string_view{owner}).hash());
    EXPECT_NE(FlagInputType(std::string("abc")).hash(), FlagInputType(std::string("abd")).hash());
}

}  // namespace
}  // namespace typestest
