#include <cppmicroservices/Bundle.h>
#include <cppmicroservices/LDAPFilter.h>
#include <cppmicroservices/LDAPProp.h>
#include <cppmicroservices/ServiceReference.h>

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdlib>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "Core.h"

namespace cppmicroservices {

namespace detail {

struct FilterNode {
    enum class Kind { And, Or, Not, Equal, Present, Substring };
    Kind kind = Kind::Present;
    std::vector<FilterNode> children;  // And, Or: one or more; Not: one
    std::string attribute;
    std::string value;                // Equal: the unescaped value
    std::vector<std::string> pieces;  // Substring: initial, any..., final (ends may be empty)
};

namespace {

// A recursive-descent reader of RFC 4515 text. Each parse* function starts at the first
// character of its production and leaves pos_ just behind it.
class FilterParser {
public:
    explicit FilterParser(const std::string& text) : text_(text) {}

    FilterNode Parse() {
        SkipSpace();
        FilterNode root = ParseFilter();
        SkipSpace();
        if (pos_ != text_.size()) {
            Fail("unexpected text after the filter");
        }
        return root;
    }

private:
    [[noreturn]] void Fail(const std::string& reason) const {
        throw std::invalid_argument("Bad LDAP filter \"" + text_ + "\": " + reason +
                                    " at position " + std::to_string(pos_));
    }

    bool AtEnd() const { return pos_ >= text_.size(); }
    char Peek() const { return AtEnd() ? '\0' : text_[pos_]; }

    void SkipSpace() {
        while (!AtEnd() && std::isspace(static_cast<unsigned char>(text_[pos_]))) {
            ++pos_;
        }
    }

    void Expect(char c) {
        if (Peek() != c || AtEnd()) {
            Fail(std::string("expected '") + c + "'");
        }
        ++pos_;
    }

    FilterNode ParseFilter() {
        Expect('(');
        SkipSpace();
        FilterNode node = ParseComponent();
        SkipSpace();
        Expect(')');
        return node;
    }

    FilterNode ParseComponent() {
        switch (Peek()) {
            case '&': ++pos_; return ParseList(FilterNode::Kind::And);
            case '|': ++pos_; return ParseList(FilterNode::Kind::Or);
            case '!': {
                ++pos_;
                SkipSpace();
                FilterNode node{FilterNode::Kind::Not, {}, {}, {}, {}};
                node.children.push_back(ParseFilter());
                return node;
            }
            default: return ParseItem();
        }
    }

    FilterNode ParseList(FilterNode::Kind kind) {
        FilterNode node{kind, {}, {}, {}, {}};
        SkipSpace();
        while (Peek() == '(') {
            node.children.push_back(ParseFilter());
            SkipSpace();
        }
        if (node.children.empty()) {
            Fail("empty filter list");
        }
        return node;
    }

    FilterNode ParseItem() {
        FilterNode node;
        node.attribute = ParseAttribute();
        if (Peek() != '=') {
            const std::string_view rest(text_.data() + pos_,
                                        std::min<std::size_t>(2, text_.size() - pos_));
            if (rest == "~=" || rest == ">=" || rest == "<=") {
                Fail("operator '" + std::string(rest) + "' is not supported");
            }
            Fail("expected '=' after the attribute");
        }
        ++pos_;
        node.pieces = ParseValuePieces();
        if (node.pieces.size() == 1) {
            node.kind = FilterNode::Kind::Equal;
            node.value = std::move(node.pieces.front());
            node.pieces.clear();
        } else if (node.pieces.size() == 2 && node.pieces[0].empty() && node.pieces[1].empty()) {
            node.kind = FilterNode::Kind::Present;
            node.pieces.clear();
        } else {
            node.kind = FilterNode::Kind::Substring;
        }
        return node;
    }

    std::string ParseAttribute() {
        const std::size_t start = pos_;
        while (!AtEnd() &&
               std::string_view("=<>~()*\\").find(text_[pos_]) == std::string_view::npos) {
            ++pos_;
        }
        std::string_view name(text_.data() + start, pos_ - start);
        while (!name.empty() && std::isspace(static_cast<unsigned char>(name.back()))) {
            name.remove_suffix(1);
        }
        if (name.empty()) {
            Fail("missing attribute name");
        }
        if (std::any_of(name.begin(), name.end(),
                        [](char c) { return std::isspace(static_cast<unsigned char>(c)); })) {
            Fail("white space inside the attribute name");
        }
        return std::string(name);
    }

    // The value up to the closing parenthesis, split at unescaped '*'.
    std::vector<std::string> ParseValuePieces() {
        std::vector<std::string> pieces(1);
        while (true) {
            if (AtEnd()) {
                Fail("missing ')'");
            }
            const char c = text_[pos_];
            if (c == ')') {
                return pieces;
            }
            if (c == '(') {
                Fail("unescaped '(' in a value");
            }
            ++pos_;
            if (c == '*') {
                pieces.emplace_back();
            } else if (c == '\\') {
                pieces.back().push_back(ParseEscape());
            } else {
                pieces.back().push_back(c);
            }
        }
    }

    char ParseEscape() {
        if (pos_ + 2 <= text_.size()) {
            unsigned value = 0;
            const char* first = text_.data() + pos_;
            auto [end, error] = std::from_chars(first, first + 2, value, 16);
            if (error == std::errc() && end == first + 2) {
                pos_ += 2;
                return static_cast<char>(value);
            }
        }
        if (!AtEnd() && std::string_view("()*\\").find(text_[pos_]) != std::string_view::npos) {
            return text_[pos_++];
        }
        Fail("bad escape in a value");
    }

    const std::string& text_;
    std::size_t pos_ = 0;
};

std::string_view Trim(std::string_view text) {
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.front())))
        text.remove_prefix(1);
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back())))
        text.remove_suffix(1);
    return text;
}

bool EqualsIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) ==
                      std::tolower(static_cast<unsigned char>(y));
           });
}

template <class T>
bool EqualsNumber(const Any& property, std::string_view value, bool& handled) {
    const T* held = any_cast<T>(&property);
    if (held == nullptr) {
        return false;
    }
    handled = true;
    value = Trim(value);
    if constexpr (std::is_floating_point_v<T>) {
        const std::string text(value);
        char* end = nullptr;
        const double parsed = std::strtod(text.c_str(), &end);
        return !text.empty() && end == text.c_str() + text.size() &&
               parsed == static_cast<double>(*held);
    } else {
        T parsed{};
        auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), parsed);
        return !value.empty() && error == std::errc() && end == value.data() + value.size() &&
               parsed == *held;
    }
}

template <class... Ts>
bool EqualsAnyNumber(const Any& property, std::string_view value, bool& handled) {
    return (EqualsNumber<Ts>(property, value, handled) || ...);
}

bool MatchesPieces(std::string_view text, const std::vector<std::string>& pieces) {
    const std::string& initial = pieces.front();
    const std::string& final = pieces.back();
    if (text.size() < initial.size() + final.size() || !text.starts_with(initial) ||
        !text.ends_with(final)) {
        return false;
    }
    text = text.substr(initial.size(), text.size() - initial.size() - final.size());
    for (std::size_t i = 1; i + 1 < pieces.size(); ++i) {
        const std::size_t found = text.find(pieces[i]);
        if (found == std::string_view::npos) {
            return false;
        }
        text.remove_prefix(found + pieces[i].size());
    }
    return true;
}

// Whether the property, or for a vector any of its elements, passes the test on strings or,
// for Equal, on the other value types.
bool MatchesValue(const Any& property, const FilterNode& node) {
    if (const auto* text = any_cast<std::string>(&property)) {
        return node.kind == FilterNode::Kind::Equal ? *text == node.value
                                                    : MatchesPieces(*text, node.pieces);
    }
    if (const auto* list = any_cast<std::vector<Any>>(&property)) {
        return std::any_of(list->begin(), list->end(),
                           [&](const Any& element) { return MatchesValue(element, node); });
    }
    if (const auto* texts = any_cast<std::vector<std::string>>(&property)) {
        return std::any_of(texts->begin(), texts->end(), [&](const std::string& element) {
            return MatchesValue(Any(element), node);
        });
    }
    if (node.kind != FilterNode::Kind::Equal) {
        return false;
    }
    if (const auto* flag = any_cast<bool>(&property)) {
        return EqualsIgnoringCase(Trim(node.value), *flag ? "true" : "false");
    }
    bool handled = false;
    const bool equal =
        EqualsAnyNumber<int, long, long long, unsigned, unsigned long, unsigned long long, short,
                        unsigned short, double, float>(property, node.value, handled);
    return handled && equal;
}

bool Matches(const FilterNode& node, const AnyMap& properties) {
    switch (node.kind) {
        case FilterNode::Kind::And:
            return std::all_of(node.children.begin(), node.children.end(),
                               [&](const FilterNode& child) { return Matches(child, properties); });
        case FilterNode::Kind::Or:
            return std::any_of(node.children.begin(), node.children.end(),
                               [&](const FilterNode& child) { return Matches(child, properties); });
        case FilterNode::Kind::Not: return !Matches(node.children.front(), properties);
        case FilterNode::Kind::Present: return FindProperty(properties, node.attribute) != nullptr;
        case FilterNode::Kind::Equal:
        case FilterNode::Kind::Substring: {
            const Any* property = FindProperty(properties, node.attribute);
            return property != nullptr && MatchesValue(*property, node);
        }
    }
    return false;
}

}  // namespace

const Any* FindProperty(const AnyMap& properties, const std::string& key) {
    if (auto exact = properties.find(key); exact != properties.end()) {
        return &exact->second;
    }
    for (const auto& [name, value] : properties) {
        if (EqualsIgnoringCase(name, key)) {
            return &value;
        }
    }
    return nullptr;
}

}  // namespace detail

LDAPFilter::LDAPFilter(const std::string& filter)
    : root_(std::make_shared<const detail::FilterNode>(detail::FilterParser(filter).Parse())),
      text_(filter) {}

LDAPFilter::LDAPFilter(const LDAPPropExpr& expression) {
    if (!expression.IsNull()) {
        *this = LDAPFilter(expression.ToString());
    }
}

bool LDAPFilter::Match(const AnyMap& properties) const {
    return root_ == nullptr || detail::Matches(*root_, properties);
}

bool LDAPFilter::Match(const ServiceReferenceBase& reference) const {
    return reference ? Match(reference.GetProperties()) : root_ == nullptr;
}

bool LDAPFilter::Match(const Bundle& bundle) const {
    return bundle ? Match(bundle.GetHeaders()) : root_ == nullptr;
}

}  // namespace cppmicroservices
