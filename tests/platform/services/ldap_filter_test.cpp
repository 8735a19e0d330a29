#include <cppmicroservices/AnyMap.h>
#include <cppmicroservices/LDAPFilter.h>
#include <cppmicroservices/LDAPProp.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using cppmicroservices::Any;
using cppmicroservices::AnyMap;
using cppmicroservices::LDAPFilter;
using cppmicroservices::LDAPProp;

namespace {

const AnyMap& properties() {
    static const AnyMap map{
        {"name", std::string("builtin2/builtin")},
        {"Count", 3},
        {"enabled", true},
        {"tags", std::vector<Any>{std::string("red"), std::string("blue")}},
        {"objectclass", std::vector<std::string>{"A::I", "B::J"}},
        {"odd", std::string("a(b)*c\\")},
    };
    return map;
}

TEST(LDAPFilter, Matches) {
    const std::vector<std::pair<std::string, bool>> cases = {
        {"(name=builtin2/builtin)", true},
        {"(name=builtin2/Builtin)", false},  // values keep their case
        {"(NAME=builtin2/builtin)", true},   // names do not
        {"(count=3)", true},
        {"(count=3x)", false},
        {"(enabled=TRUE)", true},
        {"(tags=blue)", true},
        {"(objectclass=B::J)", true},
        {"(missing=*)", false},
        {"(name=*/*in)", true},
        {"(odd=a\\28b\\29\\2ac\\5c)", true},
        {"(|(count=4)(tags=red))", true},
        {"(&(|(count=4)(!(missing=*)))(!(&(enabled=true)(ratio=1))))", true},
        {"(|(&(count=3)(!(enabled=true)))(!(|(name=*)(count=3))))", false},
        {" ( & (count=3) (enabled=true) ) ", true},
    };
    for (const auto& [text, expected] : cases) {
        SCOPED_TRACE(text);
        const LDAPFilter filter(text);
        EXPECT_EQ(filter.Match(properties()), expected);
        EXPECT_EQ(filter.ToString(), text);
    }
    EXPECT_TRUE(LDAPFilter().Match(AnyMap{}));  // the default matches everything
}

TEST(LDAPProp, BuildsEscapedFilters) {
    const LDAPProp name("odd");
    const std::vector<std::pair<LDAPFilter, std::string>> cases = {
        {name == "a(b)*c\\", "(odd=a\\28b\\29\\2ac\\5c)"},
        {LDAPProp("count") == 3 && !LDAPProp("missing"), "(&(count=3)(!(missing=*)))"},
        {LDAPProp("count") == 4 || LDAPProp("tags") == "red", "(|(count=4)(tags=red))"},
    };
    for (const auto& [filter, text] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(filter.ToString(), text);
        EXPECT_TRUE(filter.Match(properties()));
    }
    EXPECT_FALSE(LDAPFilter(name == "a(b)*c").Match(properties()));
}

}  // namespace
