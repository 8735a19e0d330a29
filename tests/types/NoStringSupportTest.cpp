// A process without the StringSupport service (no framework at all): the string class id is
// unknown, nothing stops the process, and string conversions come out with an open element.
// Its own executable, since the service holders are filled once per process.
#include <gtest/gtest.h>

#include <builtin/services/BuiltinServices.hpp>
#include <builtin/types/StringClassId.hpp>

#include "TypeTestSupport.hpp"

namespace typestest {
namespace {

TEST(NoStringSupportTest, StringClassIdIsUnknownAndNotKept) {
    ASSERT_EQ(Norvane::builtin::getHeldService<Norvane::builtin::StringSupport>(), nullptr);
    for (int call = 0; call < 3; ++call) {
        SCOPED_TRACE(call);
        EXPECT_EQ(KeldorStringType::getZobjClassId(), kaUNKNOWN_CLASS);
        EXPECT_FALSE(detail::getKnownStringClassId().has_value());
    }
}

TEST(NoStringSupportTest, ConversionsGiveAnOpenElement) {
    const FlagInputType flag(std::string("on"));
    EXPECT_EQ(KaArrayTypes(flag), array(kaUNKNOWN_CLASS, Shape::SCALAR, 0));
    EXPECT_EQ(KaArrayTypes(KeldorStringType()), array(kaUNKNOWN_CLASS, Shape::UNKNOWN, ANY_DIM,
                                                      Density::UNKNOWN, Complexity::UNKNOWN));
    EXPECT_EQ(toString(ArgType(KaArrayTypes(flag)), IN, 1), "kaArray_of<$a1,$b1,$c1,$d1>");

    // Matching goes on: a declared numeric array still refuses strings and flags, an open one
    // still takes them.
    const ArgType relaxedDoubles = relaxed(array(kaDOUBLE_CLASS, Shape::UNKNOWN, ANY_DIM));
    const ArgType openRelaxed = array(kaUNKNOWN_CLASS, Shape::UNKNOWN, ANY_DIM, Density::UNKNOWN,
                                      Complexity::UNKNOWN, RELAXED_);
    EXPECT_FALSE(isAcceptable(relaxedDoubles, flag));
    EXPECT_FALSE(isAcceptable(relaxedDoubles, KeldorStringType()));
    EXPECT_TRUE(isAcceptable(openRelaxed, flag));
    EXPECT_EQ(asElementWiseArrayType(flag), ArgType(flag));
    EXPECT_EQ(asElementWiseArrayType(KeldorStringType()), ArgType(KeldorStringType()));
}

TEST(NoStringSupportTest, NoClassOfTheClassSystemIsSupportedAsAnOutput) {
    for (const std::int32_t element : {18, 19, 42}) {
        SCOPED_TRACE(element);
        EXPECT_EQ(array(classId(element), Shape::SCALAR, 0).getOrroSupportLevel(OUT),
                  OrroSupportLevel::NO_SUPPORT);
    }
}

}  // namespace
}  // namespace typestest
