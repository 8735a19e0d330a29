// One particular literal string, such as an option word. A builtin can declare a flag as an
// input: it then takes part in matching, by exact text, but is not handed to the native
// function. A live scalar string classifies as a flag that views its text.
//
// The text is UTF-16 and either owned or viewed. A viewed flag is valid only as long as the
// text it views; copying keeps the form (an owned flag copies its text, a viewed one stays a
// view of the same text), so a copy of a viewed flag must not outlive that text either.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <boost/operators.hpp>

#include <builtin/config.hpp>
#include <builtin/types/TypeVocabulary.hpp>

namespace Norvane::builtin::types {

struct BUILTIN_API FlagInputType
    : boost::equality_comparable<
          FlagInputType,
          boost::equivalent<FlagInputType, boost::less_than_comparable<FlagInputType>>> {
    // Alternative 0 owns the text, alternative 1 views text owned by another.
    std::variant<std::u16string, std::u16string_view> value;

    // Converts UTF-8 to UTF-16 and owns the result; throws what the conversion throws.
    explicit FlagInputType(const std::string& text);
    // Owns the text, moved in.
    explicit FlagInputType(std::u16string text);
    // Views the text; nothing is copied.
    explicit FlagInputType(std::u16string_view text);

    FlagInputType(const FlagInputType&) = default;
    FlagInputType(FlagInputType&&) = default;
    FlagInputType& operator=(const FlagInputType&) = default;
    FlagInputType& operator=(FlagInputType&&) = default;
    ~FlagInputType() = default;

    // The text, whichever form holds it. Throws std::bad_variant_access if valueless.
    std::u16string_view getValue() const;

    // Lexicographic by UTF-16 code units as unsigned numbers; a proper prefix is less. No
    // folding of case: flags match exactly.
    bool operator<(const FlagInputType& other) const;

    // 64-bit FNV-1a over the bytes of the text, low byte of each code unit first. Equal texts
    // hash alike whichever form holds them.
    std::size_t hash() const;

    static std::vector<FlagInputType> getGreaterPrecedenceTypes() { return {}; }
    static OrroSupportLevel getOrroSupportLevel(ArgTypeDirection) {
        return OrroSupportLevel::EQUIVALENT_SUPPORT;
    }

    // keldor_string<literal_flag<"text">>, the text in UTF-8 and not escaped.
    std::string toString() const;
};

// Writes toString().
BUILTIN_API std::ostream& operator<<(std::ostream& os, const FlagInputType& flag);

}  // namespace Norvane::builtin::types
