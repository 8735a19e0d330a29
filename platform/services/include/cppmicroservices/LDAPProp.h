// LDAPProp: builds filter texts from C++ expressions, with the values escaped:
//   LDAPFilter f = LDAPProp("name") == "a(b)" && !LDAPProp("hidden");
// gives "(&(name=a\28b\29)(!(hidden=*)))".
#pragma once

#include <string>
#include <type_traits>
#include <utility>

namespace cppmicroservices {

// A filter text under construction. A null expression (the default) stands for no condition:
// combining with it gives the other operand.
class LDAPPropExpr {
public:
    LDAPPropExpr() = default;
    explicit LDAPPropExpr(std::string filterText) : text_(std::move(filterText)) {}

    bool IsNull() const noexcept { return text_.empty(); }
    const std::string& ToString() const noexcept { return text_; }

    LDAPPropExpr operator!() const;
    LDAPPropExpr operator&&(const LDAPPropExpr& other) const;
    LDAPPropExpr operator||(const LDAPPropExpr& other) const;

private:
    std::string text_;
};

class LDAPProp {
public:
    explicit LDAPProp(std::string property) : property_(std::move(property)) {}

    LDAPPropExpr operator==(const std::string& value) const;
    LDAPPropExpr operator==(const char* value) const { return *this == std::string(value); }
    LDAPPropExpr operator==(bool value) const {
        return *this == std::string(value ? "true" : "false");
    }
    template <class T,
              class = std::enable_if_t<std::is_arithmetic_v<T> && !std::is_same_v<T, bool>>>
    LDAPPropExpr operator==(T value) const {
        return *this == std::to_string(value);
    }

    template <class T>
    LDAPPropExpr operator!=(const T& value) const {
        return !(*this == value);
    }

    // Presence: the property exists.
    operator LDAPPropExpr() const;  // NOLINT: implicit by design
    // Absence.
    LDAPPropExpr operator!() const;

private:
    std::string property_;
};

namespace detail {
// The value with the characters that RFC 4515 reserves written as \XX.
std::string EscapeFilterValue(const std::string& value);
}  // namespace detail

}  // namespace cppmicroservices
