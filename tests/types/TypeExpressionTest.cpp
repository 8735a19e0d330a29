// Golden tables of the type expressions that the engine's type system reads. Each row is one
// array type with its text as an input and as an output; the index numbers the variables.
#include <gtest/gtest.h>

#include <string>

#include "TypeTestSupport.hpp"

namespace typestest {
namespace {

struct Golden {
    KaArrayTypes type;
    std::size_t index;
    const char* input;
    const char* output;  // "=": the same as the input
};

template <std::size_t N>
void expectRows(const Golden (&rows)[N]) {
    for (const auto& row : rows) {
        SCOPED_TRACE(testing::Message() << row.type << " #" << row.index);
        EXPECT_EQ(row.type.toString(IN, row.index), row.input);
        const std::string output = std::string(row.output) == "=" ? row.input : row.output;
        EXPECT_EQ(row.type.toString(OUT, row.index), output);
        EXPECT_EQ(toString(ArgType(row.type), IN, row.index), row.input);
        EXPECT_EQ(toString(ArgType(row.type), OUT, row.index), output);
    }
}

KaArrayTypes full(kaClassID element, Shape shape, std::size_t dim,
                  SignatureTolerance tolerance = STRICT_) {
    return array(element, shape, dim, Density::FULL, Complexity::NOT_COMPLEX, tolerance);
}

TEST(TypeExpressionTest, ElementsInTheClosedForm) {
    const struct {
        std::int32_t element;
        const char* name;
    } elements[] = {
        {3, "boolean"},  {4, "kaChar"},  {6, "double"},  {7, "single"},  {8, "int8"},
        {9, "uint8"},    {10, "int16"},  {11, "uint16"}, {12, "int32"},  {13, "uint32"},
        {14, "int64"},   {15, "uint64"}, {1, "kaArray"}, {2, "kaArray"}, {5, "kaArray"},
        {18, "kaArray"}, {16, ""},       {-2, ""},
    };
    for (const auto& e : elements) {
        SCOPED_TRACE(e.element);
        const KaArrayTypes type = full(classId(e.element), Shape::TWO_D, 2);
        const std::string attribute = e.element == 1   ? "ka_cell"
                                      : e.element == 2 ? "ka_struct"
                                                       : "ka_full";
        const std::string text =
            std::string("kaArray_of<") + e.name + ",ka_2d_array," + attribute + ",false>";
        EXPECT_EQ(type.toString(IN, 7), text);
        EXPECT_EQ(type.toString(OUT, 7), text);
    }
}

TEST(TypeExpressionTest, OpenElementsGiveTheOpenForm) {
    const Golden rows[] = {
        {KaArrayTypes(), 0, "kaArray_of<$a0,$b0,$c0,$d0>", "kaArray"},  // shape known, still open
        {full(kaUNKNOWN_CLASS, Shape::ROW, 1), 0, "kaArray_of<$a0,$b0,$c0,$d0>", "kaArray"},
        {full(kaOPAQUE_CLASS, Shape::TWO_D, 2), 3, "kaArray_of<$a3,$b3,$c3,$d3>", "kaArray"},
        {full(classId(19), Shape::SCALAR, 0, RELAXED_), 12, "kaArray_of<$a12,$b12,$c12,$d12>",
         "kaArray"},
        {KaArrayTypes(UnsupportedArgType()), 1, "kaArray_of<$a1,$b1,$c1,$d1>", "kaArray"},
    };
    expectRows(rows);
}

TEST(TypeExpressionTest, ShapesStrictAndRelaxed) {
    const Golden rows[] = {
        // Strict
        {full(kaDOUBLE_CLASS, Shape::UNKNOWN, ANY_DIM), 2, "kaArray_of<double,,ka_full,false>",
         "="},
        {full(kaDOUBLE_CLASS, Shape::EMPTY_ROW, 0), 2,
         "kaArray_of<double,ka_empty<vector<row>, false>,ka_full,false>", "="},
        {full(kaDOUBLE_CLASS, Shape::EMPTY_COL, 0), 2,
         "kaArray_of<double,ka_empty<vector<column>, false>,ka_full,false>", "="},
        {full(kaDOUBLE_CLASS, Shape::EMPTY, 0), 2,
         "kaArray_of<double,ka_empty<$Shape2, $IsZeroByZero2>,ka_full,false>", "kaArray"},
        {full(kaDOUBLE_CLASS, Shape::SCALAR, 0), 2, "kaArray_of<double,ka_scalar,ka_full,false>",
         "kaArray"},
        {full(kaDOUBLE_CLASS, Shape::ROW, 1), 2, "kaArray_of<double,vector<row>,ka_full,false>",
         "="},
        {full(kaDOUBLE_CLASS, Shape::COLUMN, 1), 2,
         "kaArray_of<double,vector<column>,ka_full,false>", "="},
        {full(kaDOUBLE_CLASS, Shape::VECTOR, 1), 2,
         "kaArray_of<double,$Shape2:B2IsShapeAnyVector,ka_full,false>", "kaArray"},
        {full(kaDOUBLE_CLASS, Shape::TWO_D, 2), 2, "kaArray_of<double,ka_2d_array,ka_full,false>",
         "="},
        {full(kaDOUBLE_CLASS, Shape::ND, 3), 2, "kaArray_of<double,ka_nd_array<3>,ka_full,false>",
         "="},
        {full(kaDOUBLE_CLASS, Shape::ND, 4), 2, "kaArray_of<double,ka_nd_array<4>,ka_full,false>",
         "="},
        {full(kaDOUBLE_CLASS, Shape::ND, 7), 2, "kaArray_of<double,ka_nd_array<7>,ka_full,false>",
         "="},
        {full(kaDOUBLE_CLASS, Shape::ND, ANY_DIM), 2,
         "kaArray_of<double,ka_nd_array<18446744073709551615>,ka_full,false>", "="},
        {full(kaDOUBLE_CLASS, static_cast<Shape>(10), 0), 2, "kaArray_of<double,,ka_full,false>",
         "="},
        // Relaxed
        {full(kaDOUBLE_CLASS, Shape::UNKNOWN, ANY_DIM, RELAXED_), 2,
         "kaArray_of<double,$Shape2,ka_full,false>", "kaArray"},
        {full(kaDOUBLE_CLASS, Shape::EMPTY_ROW, 0, RELAXED_), 2,
         "kaArray_of<double,ka_empty<vector<row>, false>,ka_full,false>", "="},
        {full(kaDOUBLE_CLASS, Shape::EMPTY_COL, 0, RELAXED_), 2,
         "kaArray_of<double,ka_empty<vector<column>, false>,ka_full,false>", "="},
        {full(kaDOUBLE_CLASS, Shape::EMPTY, 0, RELAXED_), 2,
         "kaArray_of<double,ka_empty<$Shape2, $IsZeroByZero2>,ka_full,false>", "kaArray"},
        {full(kaDOUBLE_CLASS, Shape::SCALAR, 0, RELAXED_), 2,
         "kaArray_of<double,ka_scalar,ka_full,false>", "kaArray"},
        {full(kaDOUBLE_CLASS, Shape::ROW, 1, RELAXED_), 2,
         "kaArray_of<double,$Shape2:B2IsShapeRowVector,ka_full,false>", "kaArray"},
        {full(kaDOUBLE_CLASS, Shape::COLUMN, 1, RELAXED_), 2,
         "kaArray_of<double,$Shape2:B2IsShapeColumnVector,ka_full,false>", "kaArray"},
        {full(kaDOUBLE_CLASS, Shape::VECTOR, 1, RELAXED_), 2,
         "kaArray_of<double,$Shape2:B2IsShapeAnyVector,ka_full,false>", "kaArray"},
        {full(kaDOUBLE_CLASS, Shape::TWO_D, 2, RELAXED_), 2,
         "kaArray_of<double,$Shape2:B2IsShape2d,ka_full,false>", "kaArray"},
        {full(kaDOUBLE_CLASS, Shape::ND, 3, RELAXED_), 2,
         "kaArray_of<double,$Shape2:B2IsShape3d,ka_full,false>", "kaArray"},
        {full(kaDOUBLE_CLASS, Shape::ND, 4, RELAXED_), 2,
         "kaArray_of<double,$Shape2:B2IsShape4d,ka_full,false>", "kaArray"},
        {full(kaDOUBLE_CLASS, Shape::ND, 5, RELAXED_), 2,
         "kaArray_of<double,ka_nd_array<5>,ka_full,false>", "="},
        {full(kaDOUBLE_CLASS, Shape::ND, ANY_DIM, RELAXED_), 2,
         "kaArray_of<double,$Shape2,ka_full,false>", "kaArray"},
        {full(kaDOUBLE_CLASS, static_cast<Shape>(10), 0, RELAXED_), 2,
         "kaArray_of<double,,ka_full,false>", "kaArray_of<double,,ka_full,false>"},
    };
    expectRows(rows);
}

TEST(TypeExpressionTest, DensitiesComplexitiesAndTheSparseTwoD) {
    const Golden rows[] = {
        {array(kaDOUBLE_CLASS, Shape::TWO_D, 2, Density::SPARSE), 1,
         "kaArray_of<double,ka_2d_array,ka_sparse,false>", "="},
        // A relaxed sparse 2-D array drops the restriction behind the shape variable.
        {array(kaDOUBLE_CLASS, Shape::TWO_D, 2, Density::SPARSE, Complexity::NOT_COMPLEX, RELAXED_),
         1, "kaArray_of<double,$Shape1,ka_sparse,false>", "kaArray"},
        {array(kaLOGICAL_CLASS, Shape::TWO_D, 2, Density::UNKNOWN), 1,
         "kaArray_of<boolean,ka_2d_array,$Attribute1,false>", "kaArray"},
        {array(kaSINGLE_CLASS, Shape::ROW, 1, static_cast<Density>(7)), 1,
         "kaArray_of<single,vector<row>,,false>", "kaArray_of<single,vector<row>,,false>"},
        {array(kaDOUBLE_CLASS, Shape::TWO_D, 2, Density::FULL, Complexity::COMPLEX), 1,
         "kaArray_of<double,ka_2d_array,ka_full,true>", "="},
        {array(kaDOUBLE_CLASS, Shape::TWO_D, 2, Density::FULL, Complexity::UNKNOWN), 1,
         "kaArray_of<double,ka_2d_array,ka_full,$Complexity1>", "kaArray"},
        {array(kaDOUBLE_CLASS, Shape::TWO_D, 2, Density::FULL, static_cast<Complexity>(5)), 1,
         "kaArray_of<double,ka_2d_array,ka_full,>", "kaArray_of<double,ka_2d_array,ka_full,>"},
        // A complex numeric scalar is passed unboxed too: "kaArray" as an output.
        {array(kaSINGLE_CLASS, Shape::SCALAR, 0, Density::FULL, Complexity::COMPLEX), 4,
         "kaArray_of<single,ka_scalar,ka_full,true>", "kaArray"},
        // A sparse scalar of a numeric class counts as a numeric scalar for the output rule.
        {array(kaDOUBLE_CLASS, Shape::SCALAR, 0, Density::SPARSE), 4,
         "kaArray_of<double,ka_scalar,ka_sparse,false>", "kaArray"},
        {full(kaCELL_CLASS, Shape::SCALAR, 0), 0, "kaArray_of<kaArray,ka_scalar,ka_cell,false>",
         "="},
        {full(kaFUNCTION_CLASS, Shape::SCALAR, 0), 0, "kaArray_of<,ka_scalar,ka_full,false>", "="},
        // Cells and structs ignore the density.
        {array(kaCELL_CLASS, Shape::TWO_D, 2, Density::UNKNOWN, Complexity::UNKNOWN), 6,
         "kaArray_of<kaArray,ka_2d_array,ka_cell,$Complexity6>", "kaArray"},
        {array(kaSTRUCT_CLASS, Shape::SCALAR, 0, Density::UNKNOWN), 6,
         "kaArray_of<kaArray,ka_scalar,ka_struct,false>", "="},
        // Every variable of one type takes the same index.
        {array(kaCHAR_CLASS, Shape::EMPTY, 0, Density::UNKNOWN, Complexity::UNKNOWN, RELAXED_), 123,
         "kaArray_of<kaChar,ka_empty<$Shape123, $IsZeroByZero123>,$Attribute123,$Complexity123>",
         "kaArray"},
    };
    expectRows(rows);
}

}  // namespace
}  // namespace typestest
