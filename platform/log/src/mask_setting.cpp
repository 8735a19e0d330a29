// Reading the masks of KELDOR_LOG: "pattern=mask" entries, the best match for a channel wins.
#include <foundation/log/channel_masks.hpp>

#include <charconv>
#include <optional>

namespace foundation::log {
namespace {

std::string_view trim(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    const auto last = text.find_last_not_of(" \t");
    return text.substr(first, last - first + 1);
}

std::optional<std::uint32_t> parseMask(std::string_view text) {
    int base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        text.remove_prefix(2);
        base = 16;
    }
    std::uint32_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (text.empty() || error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

// How well `pattern` matches `channel`: none, a prefix of some length, or exact (ranked above
// every prefix). Returns nullopt for no match; sets `malformed` for a pattern with a '*' inside.
std::optional<std::size_t> matchRank(std::string_view pattern, std::string_view channel,
                                     bool& malformed) {
    const auto star = pattern.find('*');
    if (star == std::string_view::npos) {
        if (pattern == channel) return channel.size() + 1;
        return std::nullopt;
    }
    if (star + 1 != pattern.size()) {
        malformed = true;
        return std::nullopt;
    }
    const std::string_view prefix = pattern.substr(0, star);
    if (channel.substr(0, prefix.size()) == prefix) return prefix.size();
    return std::nullopt;
}

void complain(std::vector<std::string>* problems, std::string_view entry, const char* why) {
    if (problems != nullptr) problems->push_back("'" + std::string(entry) + "': " + why);
}

}  // namespace

std::uint32_t maskFromSetting(std::string_view setting, std::string_view channel,
                              std::vector<std::string>* problems) {
    std::uint32_t best = 0;
    std::optional<std::size_t> bestRank;
    while (!setting.empty()) {
        const auto cut = setting.find_first_of(",;");
        const std::string_view entry = trim(setting.substr(0, cut));
        setting = cut == std::string_view::npos ? std::string_view() : setting.substr(cut + 1);
        if (entry.empty()) continue;

        const auto equals = entry.find('=');
        if (equals == std::string_view::npos) {
            complain(problems, entry, "expected pattern=mask");
            continue;
        }
        const std::string_view pattern = trim(entry.substr(0, equals));
        const auto mask = parseMask(trim(entry.substr(equals + 1)));
        bool malformed = pattern.empty();
        const auto rank = malformed ? std::nullopt : matchRank(pattern, channel, malformed);
        if (malformed) {
            complain(problems, entry, "the pattern is a channel, a prefix ending in '*', or '*'");
            continue;
        }
        if (!mask) {
            complain(problems, entry, "the mask is a 32-bit decimal or 0x-hexadecimal number");
            continue;
        }
        if (rank && (!bestRank || *rank >= *bestRank)) {
            best = *mask;
            bestRank = rank;
        }
    }
    return best;
}

}  // namespace foundation::log
