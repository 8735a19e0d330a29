#include <cppmicroservices/Any.h>
#include <cppmicroservices/AnyMap.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace cppmicroservices;

namespace {

TEST(Any, CopiesAreIndependentAndLiteralsBecomeStrings) {
    Any original = std::string("one");
    Any copy = original;
    ref_any_cast<std::string>(copy) = "two";
    EXPECT_EQ(any_cast<std::string>(original), "one");
    EXPECT_EQ(Any("text").Type(), typeid(std::string));
    EXPECT_EQ(Any().Type(), typeid(void));
}

TEST(Any, FailedCastsNameBothTypes) {
    const std::string stringName = "std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >";
    const std::vector<std::pair<Any, std::string>> cases = {
        {Any(42), "Bad any_cast: cannot cast from int to " + stringName},
        {Any(), "Bad any_cast: cannot cast from an empty Any to " + stringName},
        {Any(3.5), "Bad any_cast: cannot cast from double to " + stringName},
    };
    for (const auto& [held, expected] : cases) {
        SCOPED_TRACE(expected);
        try {
            (void)any_cast<std::string>(held);
            ADD_FAILURE() << "no exception";
        } catch (const BadAnyCastException& error) {
            EXPECT_EQ(error.what(), expected);
        }
    }
    Any number = 1;
    EXPECT_THROW(ref_any_cast<long>(number), BadAnyCastException);
    EXPECT_EQ(any_cast<long>(&number), nullptr);
}

TEST(Any, TextOfValuesAndMissingKeys) {
    AnyMap inner{{"c", std::string("x")}};
    const std::vector<std::pair<Any, std::string>> cases = {
        {Any(true), "true"},
        {Any(std::vector<Any>{1, std::string("a"), false}), "[1, a, false]"},
        {Any(AnyMap{{"a", 1}, {"b", inner}}), "{a : 1, b : {c : x}}"},
        {Any(), ""},
    };
    for (const auto& [value, text] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(value.ToString(), text);
    }
    try {
        (void)inner.at("absent");
        FAIL() << "no exception";
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "AnyMap has no key \"absent\"");
    }
}

}  // namespace
