// With a StringSupport double (own process: holders fill once): the string class id is asked
// once and kept, and conversions, support levels and compatibility use it.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>

#include <builtin/types/StringClassId.hpp>

#include "../services/ServiceDoubles.hpp"
#include "TypeTestSupport.hpp"

namespace typestest {
namespace {

using Norvane::builtin::StringSupport;

constexpr std::int32_t kStringClass = 42;

class WithStringSupportTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        static const std::filesystem::path root =
            std::filesystem::temp_directory_path() / "builtin-types-test-root";
        std::filesystem::create_directories(root);
        ::setenv("KELDOR_INSTALL_ROOT", root.c_str(), 1);
        foundation::cppmicroservices::createFramework();
        service = servicedoubles::registerDouble<StringSupport>(
            std::make_shared<servicedoubles::StubStringSupport>(kStringClass));
    }
    static inline std::shared_ptr<servicedoubles::StubStringSupport> service;
};

TEST_F(WithStringSupportTest, ClassIdIsAskedOnceAndKept) {
    ASSERT_EQ(Norvane::builtin::getHeldService<StringSupport>(), service);
    for (int call = 0; call < 3; ++call)
        EXPECT_EQ(KeldorStringType::getZobjClassId(), classId(kStringClass));
    EXPECT_EQ(service->classIdCalls, 1);
    // The lenient reading keeps its own copy, asked once as well.
    for (int call = 0; call < 3; ++call)
        EXPECT_EQ(detail::getKnownStringClassId(), classId(kStringClass));
    EXPECT_EQ(service->classIdCalls, 2);
}

TEST_F(WithStringSupportTest, ConversionsAndRulesUseTheStringClass) {
    const kaClassID string = classId(kStringClass);
    const FlagInputType flag(std::string("on"));
    EXPECT_EQ(KaArrayTypes(flag), array(string, Shape::SCALAR, 0));
    EXPECT_EQ(KaArrayTypes(KeldorStringType(StringShape::SCALAR)), array(string, Shape::SCALAR, 0));
    EXPECT_EQ(KaArrayTypes(KeldorStringType()), openArray(string));
    EXPECT_TRUE(isAcceptable(relaxed(array(string, Shape::SCALAR, 0)), flag));
    EXPECT_FALSE(isAcceptable(relaxed(array(kaDOUBLE_CLASS, Shape::SCALAR, 0)), flag));
    EXPECT_FALSE(isAcceptable(array(string, Shape::SCALAR, 0), flag));  // strict
    EXPECT_TRUE(isCompatible(KeldorStringType(), openArray(string)));
    EXPECT_EQ(array(string, Shape::SCALAR, 0).getOrroSupportLevel(OUT), L::EQUIVALENT_SUPPORT);
    EXPECT_EQ(array(string, Shape::SCALAR, 0).getOrroSupportLevel(IN), L::NO_SUPPORT);
    EXPECT_EQ(array(classId(kStringClass + 1), Shape::SCALAR, 0).getOrroSupportLevel(OUT),
              L::NO_SUPPORT);
}

}  // namespace
}  // namespace typestest
