// LDAP filters of the service framework: text that is no filter names itself and the place of the
// fault. Names that look like filter syntax are values where a filter is made from them.
#include <cppmicroservices/LDAPFilter.h>

#include <builtin/services/ModuleUtilities.hpp>

#include "BadInput.hpp"

namespace badinput {
namespace {

Row filter(std::string text, const std::string& reason, std::size_t position) {
    return {"filter " + text, [text] { cppmicroservices::LDAPFilter{text}; },
            refusal<std::invalid_argument>("Bad LDAP filter \"" + text + "\": " + reason +
                                           " at position " + std::to_string(position))};
}

// A module name that the walk over upstream modules puts into a filter: no module has it, so
// nothing is called, and the filter is not broken by it.
Row upstreamName(std::string name) {
    return {"upstream module " + name,
            [name] {
                int calls = 0;
                builtinreg::callUpstreamModules(
                    {name}, [&](builtinreg::IOrroObjectModuleMgr*) { ++calls; });
                EXPECT_EQ(calls, 0);
            },
            taken};
}

TEST(BadInput, LdapFilters) {
    runTable("LDAP filters", {
                                 filter("", "expected '('", 0),
                                 filter("   ", "expected '('", 3),
                                 filter("name=x", "expected '('", 0),
                                 filter("(name=x", "missing ')'", 7),
                                 filter("(name=x))", "unexpected text after the filter", 8),
                                 filter("(a=1)(b=2)", "unexpected text after the filter", 5),
                                 filter("((a=1))", "missing attribute name", 1),
                                 filter("(&)", "empty filter list", 2),
                                 filter("(|)", "empty filter list", 2),
                                 filter("(!)", "expected '('", 2),
                                 filter("(!(a=1)(b=2))", "expected ')'", 7),
                                 filter("(&(a=1)", "expected ')'", 7),
                                 filter("(&(a=1)x)", "expected ')'", 7),
                                 filter("(=x)", "missing attribute name", 1),
                                 filter("( =x)", "missing attribute name", 2),
                                 filter("(na me=x)", "white space inside the attribute name", 6),
                                 filter("(name)", "expected '=' after the attribute", 5),
                                 filter("(name=a(b)", "unescaped '(' in a value", 7),
                                 filter("(name=\\zz)", "bad escape in a value", 7),
                                 filter("(name=\\", "bad escape in a value", 7),
                                 filter("(name=x\\2)", "bad escape in a value", 8),
                                 filter("(name~=x)", "operator '~=' is not supported", 5),
                                 filter("(count>=3)", "operator '>=' is not supported", 6),
                                 filter("(count<=3)", "operator '<=' is not supported", 6),
                                 filter("(count>3)", "expected '=' after the attribute", 6),
                                 filter("(started-in=builtin2/builtin", "missing ')'", 28),

                                 upstreamName("a)(builtin-module=*"),
                                 upstreamName("*"),
                                 upstreamName("(|(cppMangledTypeName=*))"),
                                 upstreamName("\\"),
                                 upstreamName(""),
                             });
}

}  // namespace
}  // namespace badinput
