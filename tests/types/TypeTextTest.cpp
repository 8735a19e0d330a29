// Golden tables of the printed forms: the type expressions that the engine's type system reads
// (as an input and as an output; the index numbers the variables) and the diagnostic form.
#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "TypeTestSupport.hpp"

namespace typestest {
namespace {

TEST(TypeExpressionTest, ElementsInTheClosedFormAndAsScalars) {
    const std::pair<std::int32_t, const char*> elements[] = {
        {3, "boolean"},  {4, "kaChar"},  {6, "double"},  {7, "single"},  {8, "int8"},
        {9, "uint8"},    {10, "int16"},  {11, "uint16"}, {12, "int32"},  {13, "uint32"},
        {14, "int64"},   {15, "uint64"}, {1, "kaArray"}, {2, "kaArray"}, {5, "kaArray"},
        {18, "kaArray"}, {16, ""},       {-2, ""},
    };
    for (const auto& [element, name] : elements) {
        const std::string attribute = element == 1   ? "ka_cell"
                                      : element == 2 ? "ka_struct"
                                                     : "ka_full";
        const std::string text =
            std::string("kaArray_of<") + name + ",ka_2d_array," + attribute + ",false>";
        EXPECT_EQ(array(classId(element), Shape::TWO_D, 2).toString(IN, 7), text);
        EXPECT_EQ(array(classId(element), Shape::TWO_D, 2).toString(OUT, 7), text);
        // The numeric scalars share the names and print nothing for other classes.
        const bool numeric = element >= 3 && element <= 15 && element != 5;
        EXPECT_EQ(realScalar(classId(element)).toString(), numeric ? name : "");
        EXPECT_EQ(complexScalar(classId(element)).toString(), element == 6 || element == 7
                                                                  ? std::string("complex_") + name
                                                              : numeric ? name
                                                                        : "");
    }
}

TEST(TypeExpressionTest, ShapesStrictAndRelaxed) {
    // The shape's text inside "kaArray_of<double,...,ka_full,false>"; unless marked, the output is
    // "kaArray".
    const struct {
        Shape shape;
        std::size_t dim;
        SignatureTolerance tolerance;
        const char* shapeText;
        bool outputSame;
    } rows[] = {
        {Shape::UNKNOWN, ANY_DIM, STRICT_, "", true},
        {Shape::EMPTY_ROW, 0, STRICT_, "ka_empty<vector<row>, false>", true},
        {Shape::EMPTY_COL, 0, STRICT_, "ka_empty<vector<column>, false>", true},
        {Shape::EMPTY, 0, STRICT_, "ka_empty<$Shape2, $IsZeroByZero2>", false},
        {Shape::SCALAR, 0, STRICT_, "ka_scalar", false},
        {Shape::ROW, 1, STRICT_, "vector<row>", true},
        {Shape::COLUMN, 1, STRICT_, "vector<column>", true},
        {Shape::VECTOR, 1, STRICT_, "$Shape2:B2IsShapeAnyVector", false},
        {Shape::TWO_D, 2, STRICT_, "ka_2d_array", true},
        {Shape::ND, 3, STRICT_, "ka_nd_array<3>", true},
        {Shape::ND, ANY_DIM, STRICT_, "ka_nd_array<18446744073709551615>", true},
        {static_cast<Shape>(10), 0, STRICT_, "", true},
        {Shape::UNKNOWN, ANY_DIM, RELAXED_, "$Shape2", false},
        {Shape::ROW, 1, RELAXED_, "$Shape2:B2IsShapeRowVector", false},
        {Shape::COLUMN, 1, RELAXED_, "$Shape2:B2IsShapeColumnVector", false},
        {Shape::TWO_D, 2, RELAXED_, "$Shape2:B2IsShape2d", false},
        {Shape::ND, 3, RELAXED_, "$Shape2:B2IsShape3d", false},
        {Shape::ND, 5, RELAXED_, "ka_nd_array<5>", true},
        {Shape::ND, ANY_DIM, RELAXED_, "$Shape2", false},
    };
    for (const auto& row : rows) {
        const KaArrayTypes type = array(kaDOUBLE_CLASS, row.shape, row.dim, Density::FULL,
                                        Complexity::NOT_COMPLEX, row.tolerance);
        const std::string input =
            std::string("kaArray_of<double,") + row.shapeText + ",ka_full,false>";
        EXPECT_EQ(type.toString(IN, 2), input) << type;
        EXPECT_EQ(type.toString(OUT, 2), row.outputSame ? input : "kaArray") << type;
    }
}

TEST(TypeExpressionTest, EveryAlternative) {
    const struct {
        ArgType type;
        std::size_t index;
        const char *input, *output;
    } rows[] = {
        // "=": as the input
        // Opaque elements and classes of the class system leave the whole array open.
        {array(kaOPAQUE_CLASS, Shape::TWO_D, 2), 3, "kaArray_of<$a3,$b3,$c3,$d3>", "kaArray"},
        {relaxed(array(classId(19), Shape::SCALAR, 0)), 12, "kaArray_of<$a12,$b12,$c12,$d12>",
         "kaArray"},
        {array(kaDOUBLE_CLASS, Shape::TWO_D, 2, Density::SPARSE), 1,
         "kaArray_of<double,ka_2d_array,ka_sparse,false>", "="},
        // A relaxed sparse 2-D array drops the restriction behind the shape variable.
        {array(kaDOUBLE_CLASS, Shape::TWO_D, 2, Density::SPARSE, Complexity::NOT_COMPLEX, RELAXED_),
         1, "kaArray_of<double,$Shape1,ka_sparse,false>", "kaArray"},
        {array(kaLOGICAL_CLASS, Shape::TWO_D, 2, Density::UNKNOWN), 1,
         "kaArray_of<boolean,ka_2d_array,$Attribute1,false>", "kaArray"},
        {array(kaDOUBLE_CLASS, Shape::TWO_D, 2, Density::FULL, Complexity::COMPLEX), 1,
         "kaArray_of<double,ka_2d_array,ka_full,true>", "="},
        {array(kaDOUBLE_CLASS, Shape::TWO_D, 2, Density::FULL, Complexity::UNKNOWN), 1,
         "kaArray_of<double,ka_2d_array,ka_full,$Complexity1>", "kaArray"},
        // Numeric scalars, complex ones too, are passed unboxed: "kaArray" as outputs.
        {array(kaSINGLE_CLASS, Shape::SCALAR, 0, Density::FULL, Complexity::COMPLEX), 4,
         "kaArray_of<single,ka_scalar,ka_full,true>", "kaArray"},
        {array(kaCELL_CLASS, Shape::SCALAR, 0), 0, "kaArray_of<kaArray,ka_scalar,ka_cell,false>",
         "="},
        // Cells and structs ignore the density.
        {array(kaCELL_CLASS, Shape::TWO_D, 2, Density::UNKNOWN, Complexity::UNKNOWN), 6,
         "kaArray_of<kaArray,ka_2d_array,ka_cell,$Complexity6>", "kaArray"},
        {array(kaSTRUCT_CLASS, Shape::SCALAR, 0, Density::UNKNOWN), 6,
         "kaArray_of<kaArray,ka_scalar,ka_struct,false>", "="},
        // Every variable of one type takes the same index.
        {array(kaCHAR_CLASS, Shape::EMPTY, 0, Density::UNKNOWN, Complexity::UNKNOWN, RELAXED_), 123,
         "kaArray_of<kaChar,ka_empty<$Shape123, $IsZeroByZero123>,$Attribute123,$Complexity123>",
         "kaArray"},
        {UnsupportedArgType(), 4, "", ""},
        // Flags are written in UTF-8, unescaped.
        {FlagInputType(std::u16string(u"a\"b\u00e9")), 4,
         "keldor_string<literal_flag<\"a\"b\xc3\xa9\">>", "="},
        {complexScalar(kaDOUBLE_CLASS), 4, "complex_double", "="},
        {KeldorStringType(), 3, "keldor_string<$flag_idx3>", "keldor_string<nil>"},
        {KeldorStringType(StringShape::SCALAR), 3, "scalar_keldor_string", "keldor_string<nil>"},
        {OrroObjectTypes(), 2, "orro_object<$classid2,$variantid2,$bool2,$subType2>",
         "orro_object"},
        {OrroObjectTypes(classId(25), 3, false), 0, "orro_object<25,3, false,$subType0>",
         "orro_object<25,3, false,nil>"},
        // An open type writes the flag variable even though the flag is set.
        {OrroObjectTypes(classId(25), SIZE_MAX, true), 2,
         "orro_object<25,$variantid2,$bool2,$subType2>", "orro_object"},
        {OrroObjectPlaceTypes(classId(25), 3), 1, "orro_object_place<25,3>", "="},
        {OrroObjectPlaceTypes(classId(25), SIZE_MAX), 4, "orro_object_place<25,$variantid4>",
         "orro_object_place"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(toString(row.type, IN, row.index), row.input);
        EXPECT_EQ(toString(row.type, OUT, row.index),
                  std::string(row.output) == "=" ? row.input : row.output)
            << row.input;
    }
}

// The diagnostic form of an array (the other alternatives print their input expression).
TEST(DiagnosticFormTest, Arrays) {
    const std::pair<KaArrayTypes, const char*> rows[] = {
        {array(kaDOUBLE_CLASS, Shape::ND, 3), "kaDOUBLE_CLASS 3D FULL NOT_COMPLEX STRICT"},
        {relaxed(KaArrayTypes(UnsupportedArgType())),
         "kaUNKNOWN_CLASS Unknown Shape Unknown Density Unknown Complexity RELAXED"},
        {array(kaOPAQUE_CLASS, Shape::EMPTY_ROW, 0, Density::SPARSE, Complexity::COMPLEX),
         "kaOPAQUE_CLASS EMPTY_ROW SPARSE COMPLEX STRICT"},
        {array(classId(25), Shape::VECTOR, 1), "kaOBJECT_CLASS(25) VECTOR FULL NOT_COMPLEX STRICT"},
        {array(classId(-3), Shape::EMPTY, 0), "?-3? EMPTY FULL NOT_COMPLEX STRICT"},
        {array(kaCELL_CLASS, static_cast<Shape>(42), 0, static_cast<Density>(9),
               static_cast<Complexity>(9), static_cast<SignatureTolerance>(9)),
         "kaCELL_CLASS    "},
    };
    for (const auto& [type, text] : rows) {
        std::ostringstream os;
        os << ArgType(type);
        EXPECT_EQ(os.str(), std::string("KaArrayTypes: ") + text);
    }
    std::ostringstream os;
    os << ArgType(OrroObjectTypes(classId(25), 3, true)) << ArgType(UnsupportedArgType());
    EXPECT_EQ(os.str(), "orro_object<25,3, true,$subType0>");
}

}  // namespace
}  // namespace typestest
