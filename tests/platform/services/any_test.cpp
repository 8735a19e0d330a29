#include <cppmicroservices/Any.h>
#include <cppmicroservices/AnyMap.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using cppmicroservices::Any;
using cppmicroservices::AnyMap;
using cppmicroservices::any_cast;
using cppmicroservices::BadAnyCastException;
using cppmicroservices::ref_any_cast;

namespace {

std::string castMessage(const Any& any, bool asString) {
    try {
        if (asString) {
            (void)any_cast<std::string>(any);
        } else {
            (void)any_cast<int>(any);
        }
    } catch (const BadAnyCastException& error) {
        return error.what();
    }
    return "no exception";
}

TEST(Any, CopiesAreIndependentAndLiteralsBecomeStrings) {
    Any original = std::string("one");
    Any copy = original;
    ref_any_cast<std::string>(copy) = "two";
    EXPECT_EQ(any_cast<std::string>(original), "one");
    EXPECT_EQ(any_cast<std::string>(copy), "two");

    Any literal = "text";
    EXPECT_EQ(literal.Type(), typeid(std::string));
    EXPECT_TRUE(Any().Empty());
    EXPECT_EQ(Any().Type(), typeid(void));
}

TEST(Any, FailedCastsNameBothTypes) {
    const std::string stringName = "std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >";
    struct Case {
        Any held;
        bool asString;
        std::string expected;
    };
    const std::vector<Case> cases = {
        {Any(42), true, "Bad any_cast: cannot cast from int to " + stringName},
        {Any(std::string("x")), false, "Bad any_cast: cannot cast from " + stringName + " to int"},
        {Any(), false, "Bad any_cast: cannot cast from an empty Any to int"},
        {Any(3.5), false, "Bad any_cast: cannot cast from double to int"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.expected);
        EXPECT_EQ(castMessage(c.held, c.asString), c.expected);
    }
    Any number = 1;
    EXPECT_THROW(ref_any_cast<long>(number), BadAnyCastException);
    EXPECT_EQ(any_cast<long>(&number), nullptr);
    EXPECT_EQ(*any_cast<int>(&number), 1);
}

TEST(Any, TextOfValues) {
    AnyMap inner{{"c", std::string("x")}};
    const std::vector<std::pair<Any, std::string>> cases = {
        {Any(42), "42"},
        {Any(true), "true"},
        {Any(std::string("plain")), "plain"},
        {Any(std::vector<Any>{1, std::string("a"), false}), "[1, a, false]"},
        {Any(AnyMap{{"a", 1}, {"b", inner}}), "{a : 1, b : {c : x}}"},
        {Any(), ""},
    };
    for (const auto& [value, text] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(value.ToString(), text);
    }
}

TEST(AnyMap, AtNamesAMissingKey) {
    const AnyMap map{{"present", 1}};
    EXPECT_EQ(any_cast<int>(map.at("present")), 1);
    try {
        (void)map.at("absent");
        FAIL() << "no exception";
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "AnyMap has no key \"absent\"");
    }
}

}  // namespace
