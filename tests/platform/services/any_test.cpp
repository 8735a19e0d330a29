#include <cppmicroservices/Any.h>
#include <cppmicroservices/AnyMap.h>

#include <gtest/gtest.h>

#include <string>

using namespace cppmicroservices;

namespace {

TEST(Any, CopiesAreIndependentAndFailuresNameTheTypes) {
    Any original = std::string("one");
    Any copy = original;
    ref_any_cast<std::string>(copy) = "two";
    EXPECT_EQ(any_cast<std::string>(original), "one");
    EXPECT_EQ(Any("text").Type(), typeid(std::string));
    try {
        (void)any_cast<std::string>(Any(42));
        ADD_FAILURE() << "no exception";
    } catch (const BadAnyCastException& error) {
        EXPECT_STREQ(error.what(), "Bad any_cast: cannot cast from int to std::__cxx11::basic_string<char, "
                                   "std::char_traits<char>, std::allocator<char> >");
    }
    Any number = 1;
    EXPECT_EQ(any_cast<long>(&number), nullptr);
    EXPECT_THROW((void)AnyMap{}.at("absent"), std::out_of_range);
}

}  // namespace
