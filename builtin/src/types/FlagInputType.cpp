#include <builtin/types/FlagInputType.hpp>

#include <cstdint>
#include <ostream>
#include <utility>

#include <fl/i18n.hpp>

namespace Norvane::builtin::types {

namespace {
constexpr std::uint64_t kFnvOffsetBasis = 0xcbf29ce484222325ULL;
constexpr std::uint64_t kFnvPrime = 0x100000001b3ULL;

void fnvMix(std::uint64_t& hash, unsigned byte) {
    hash ^= byte;
    hash *= kFnvPrime;
}
}  // namespace

FlagInputType::FlagInputType(const std::string& text)
    : value(std::in_place_index<0>, fl::i18n::utf8_to_ustring(text)) {}

FlagInputType::FlagInputType(std::u16string text)
    : value(std::in_place_index<0>, std::move(text)) {}

FlagInputType::FlagInputType(std::u16string_view text) : value(std::in_place_index<1>, text) {}

std::u16string_view FlagInputType::getValue() const {
    return std::visit([](const auto& text) { return std::u16string_view(text); }, value);
}

bool FlagInputType::operator<(const FlagInputType& other) const {
    // char16_t is unsigned, so the traits compare code units as unsigned 16-bit numbers.
    return getValue() < other.getValue();
}

std::size_t FlagInputType::hash() const {
    // The bytes of the text in memory order on a little-endian machine, written out so the
    // value does not depend on the machine.
    std::uint64_t hash = kFnvOffsetBasis;
    for (const char16_t unit : getValue()) {
        fnvMix(hash, static_cast<unsigned>(unit) & 0xffU);
        fnvMix(hash, static_cast<unsigned>(unit) >> 8U);
    }
    return static_cast<std::size_t>(hash);
}

std::string FlagInputType::toString() const {
    return "keldor_string<literal_flag<\"" + fl::i18n::ustring_to_utf8(getValue()) + "\">>";
}

std::ostream& operator<<(std::ostream& os, const FlagInputType& flag) {
    return os << flag.toString();
}

}  // namespace Norvane::builtin::types
