// Each alternative of ArgType as a person reads it, and an open array as an input and as an
// output. The string class and class-system classes need their services, which the sample
// module's run through kcall shows (tests/kcall).
#include <gtest/gtest.h>

#include <builtin/declare/ReadableTypes.hpp>
#include <builtin/types/NativeArgTypes.hpp>

namespace {

using namespace Norvane::builtin;
using types::ArgTypeDirection;
using types::KaArrayTypes;
using Shape = KaArrayTypes::Shape;
using Density = KaArrayTypes::Density;
using Complexity = KaArrayTypes::Complexity;

KaArrayTypes array(kaClassID element, Shape shape, std::size_t dim = 2,
                   Density density = Density::FULL, Complexity c = Complexity::NOT_COMPLEX) {
    return KaArrayTypes(element, shape, density, c, dim);
}

TEST(ReadableTypes, EveryAlternative) {
    const struct {
        types::ArgType type;
        const char* text;
    } cases[] = {
        {types::UnsupportedArgType{}, "nothing"},
        {types::FlagInputType(std::string("log")), "option word 'log'"},
        {types::NumericScalarTypes(kaDOUBLE_CLASS, types::NumericScalarTypes::Complexity::REAL),
         "double scalar"},
        {types::NumericScalarTypes(kaSINGLE_CLASS, types::NumericScalarTypes::Complexity::COMPLEX),
         "complex single scalar"},
        {types::KeldorStringType(types::KeldorStringType::Shape::SCALAR), "string"},
        {types::KeldorStringType(types::KeldorStringType::Shape::ANY), "string array"},
        {types::OrroObjectTypes(), "object of any class"},
        {types::OrroObjectPlaceTypes(), "place that holds an object of any class"},
        {types::getAnyShapeArgType<double>(0), "double array, any shape"},
        {types::anyArrayArgType(0), "any array"},
        {array(kaINT32_CLASS, Shape::ROW), "int32 row vector"},
        {array(kaLOGICAL_CLASS, Shape::COLUMN), "logical column vector"},
        {array(kaCHAR_CLASS, Shape::EMPTY), "empty char array"},
        {array(kaDOUBLE_CLASS, Shape::EMPTY_ROW), "double 1-by-0 array"},
        {array(kaDOUBLE_CLASS, Shape::TWO_D, 2, Density::SPARSE), "sparse double matrix"},
        {array(kaUINT8_CLASS, Shape::ND, 3, Density::FULL, Complexity::COMPLEX),
         "complex uint8 3-d array"},
        {array(kaUNKNOWN_CLASS, Shape::VECTOR, 2, Density::UNKNOWN, Complexity::UNKNOWN),
         "vector of any class"},
        {array(kaCELL_CLASS, Shape::SCALAR), "cell scalar"},
    };
    for (const auto& c : cases) EXPECT_EQ(declare::readableType(c.type), c.text);
    EXPECT_EQ(declare::readableType(types::plainArrayArgType(0), ArgTypeDirection::OUTPUT),
              "array");
}

}  // namespace
