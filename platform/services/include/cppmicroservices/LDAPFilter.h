// LDAPFilter: a filter over properties in the text form of RFC 4515, as service lookups and
// bundle starts use it: "(&(a=1)(|(b=x)(!(c=*))))".
//
// Supported: and (&), or (|), not (!), equality (a=v), presence (a=*) and substrings (a=x*y),
// with \XX hex escapes (and \( \) \* \\) in values. Whitespace between the filters of a list
// and around an attribute name is ignored. The operators ~=, >= and <= are refused.
//
// Matching: attribute names are compared without regard to case. A string property equals
// the value exactly; a number equals a value that parses as the same number; a bool equals
// "true" or "false" in any case; a vector matches if any element does. Other types never match.
#pragma once

#include <memory>
#include <ostream>
#include <string>

#include <cppmicroservices/AnyMap.h>

namespace cppmicroservices {

class Bundle;
class LDAPPropExpr;
class ServiceReferenceBase;

namespace detail {
struct FilterNode;
}

class LDAPFilter {
public:
    // Matches everything; its text is empty.
    LDAPFilter() = default;
    // Throws std::invalid_argument naming the text and the place of the fault.
    explicit LDAPFilter(const std::string& filter);
    LDAPFilter(const LDAPPropExpr& expression);  // NOLINT: implicit, so that prop == v is a filter

    bool Match(const AnyMap& properties) const;
    // The service's properties.
    bool Match(const ServiceReferenceBase& reference) const;
    // The bundle's manifest.
    bool Match(const Bundle& bundle) const;

    // The text the filter was made from, unchanged.
    std::string ToString() const { return text_; }

    friend bool operator==(const LDAPFilter& a, const LDAPFilter& b) { return a.text_ == b.text_; }

private:
    std::shared_ptr<const detail::FilterNode> root_;  // null: match all
    std::string text_;
};

inline std::ostream& operator<<(std::ostream& os, const LDAPFilter& filter) {
    return os << filter.ToString();
}

}  // namespace cppmicroservices
