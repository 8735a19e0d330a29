#include <cppmicroservices/LDAPProp.h>

#include <cstdio>

namespace cppmicroservices {

namespace detail {

std::string EscapeFilterValue(const std::string& value) {
    std::string escaped;
    escaped.reserve(value.size());
    for (char c : value) {
        if (c == '\\' || c == '*' || c == '(' || c == ')' || c == '\0') {
            char code[4];
            std::snprintf(code, sizeof code, "\\%02x",
                          static_cast<unsigned>(static_cast<unsigned char>(c)));
            escaped += code;
        } else {
            escaped += c;
        }
    }
    return escaped;
}

}  // namespace detail

LDAPPropExpr LDAPPropExpr::operator!() const {
    return IsNull() ? *this : LDAPPropExpr("(!" + text_ + ")");
}

LDAPPropExpr LDAPPropExpr::operator&&(const LDAPPropExpr& other) const {
    if (IsNull()) return other;
    if (other.IsNull()) return *this;
    return LDAPPropExpr("(&" + text_ + other.text_ + ")");
}

LDAPPropExpr LDAPPropExpr::operator||(const LDAPPropExpr& other) const {
    if (IsNull()) return other;
    if (other.IsNull()) return *this;
    return LDAPPropExpr("(|" + text_ + other.text_ + ")");
}

LDAPPropExpr LDAPProp::operator==(const std::string& value) const {
    return LDAPPropExpr("(" + property_ + "=" + detail::EscapeFilterValue(value) + ")");
}

LDAPProp::operator LDAPPropExpr() const {
    return LDAPPropExpr("(" + property_ + "=*)");
}

LDAPPropExpr LDAPProp::operator!() const {
    return !static_cast<LDAPPropExpr>(*this);
}

}  // namespace cppmicroservices
