// Without StringSupport (own process: holders fill once): the string class id is unknown and
// not kept, string conversions give an open element, and matching goes on.
#include <gtest/gtest.h>

#include <builtin/services/BuiltinServices.hpp>
#include <builtin/types/StringClassId.hpp>

#include "TypeTestSupport.hpp"

namespace typestest {
namespace {

TEST(NoStringSupportTest, OpenStringClass) {
    ASSERT_EQ(Norvane::builtin::getHeldService<Norvane::builtin::StringSupport>(), nullptr);
    for (int call = 0; call < 2; ++call) {
        EXPECT_EQ(KeldorStringType::getZobjClassId(), kaUNKNOWN_CLASS);
        EXPECT_FALSE(detail::getKnownStringClassId().has_value());
    }
    const FlagInputType flag(std::string("on"));
    EXPECT_EQ(KaArrayTypes(flag), array(kaUNKNOWN_CLASS, Shape::SCALAR, 0));
    EXPECT_EQ(KaArrayTypes(KeldorStringType()), openArray());
    EXPECT_EQ(toString(ArgType(KaArrayTypes(flag)), IN, 1), "kaArray_of<$a1,$b1,$c1,$d1>");
    // A declared numeric array still refuses strings and flags, an open one still takes them.
    const ArgType relaxedDoubles = relaxed(array(kaDOUBLE_CLASS, Shape::UNKNOWN, ANY_DIM));
    EXPECT_FALSE(isAcceptable(relaxedDoubles, flag));
    EXPECT_FALSE(isAcceptable(relaxedDoubles, KeldorStringType()));
    EXPECT_TRUE(isAcceptable(openArray(kaUNKNOWN_CLASS, RELAXED_), flag));
    EXPECT_EQ(asElementWiseArrayType(flag), ArgType(flag));
    for (const std::int32_t element : {18, 19, 42}) {
        EXPECT_EQ(array(classId(element), Shape::SCALAR, 0).getOrroSupportLevel(OUT), L::NO_SUPPORT)
            << element;
    }
}

}  // namespace
}  // namespace typestest
