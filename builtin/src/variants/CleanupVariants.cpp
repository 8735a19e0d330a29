// The six stages of cleanup. Each works in place on the sorted vector and keeps the order of
// what it keeps, since the search of a call and the later stages rely on that order.
#include "CleanupVariants.hpp"

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <string>
#include <unordered_set>

#include <boost/container_hash/hash.hpp>
#include <boost/lexical_cast.hpp>

#include <foundation/log/diagnostic_logger.hpp>

#include <builtin/variants/MakeVariant.hpp>

namespace Norvane::builtin::builtinreg::detail {

namespace {

constexpr std::uint32_t kCleanupSeverity = 4;

const foundation::log::diagnostic_logger& cleanupLogger() {
    static const foundation::log::diagnostic_logger logger("builtin2::cleanupVariants");
    return logger;
}

void logStage(const char* label, const std::vector<BuiltinVariant>& variants) {
    cleanupLogger().write(kCleanupSeverity, [&](std::ostream& os) {
        os << label;
        for (const BuiltinVariant& variant : variants) {
            os << variant << '\n';
        }
    });
}

bool isBoxing(const BuiltinVariant& variant) {
    return variant.originalVariant != nullptr;
}

// What makes a boxing variant unreachable behind another: the same output count and input
// types. Two boxing variants of one source never match, since each boxes its own signature of
// the source; a declared variant and a boxing one, or two declared ones, can. The key points
// into the variant, which stays where it is while the keys live.
struct ReachKey {
    std::size_t outputs;
    const std::vector<ArgType>* inputs;
    const BuiltinVariant* source;
};

struct ReachKeyHash {
    std::size_t operator()(const ReachKey& key) const {
        std::size_t seed = 0;
        boost::hash_combine(seed, key.outputs);
        for (const ArgType& input : *key.inputs) {
            boost::hash_combine(
                seed, boost::hash<std::string>()(boost::lexical_cast<std::string>(input)));
        }
        return seed;
    }
};

struct ReachKeyEqual {
    bool operator()(const ReachKey& a, const ReachKey& b) const {
        return a.outputs == b.outputs && *a.inputs == *b.inputs &&
               (a.source != b.source || a.source == nullptr);
    }
};

ReachKey reachKeyOf(const BuiltinVariant& variant) {
    return {variant.outputArgTypes.size(), &variant.inputArgTypes, variant.originalVariant.get()};
}

// Keeps the variants for which keep(index) holds, in their order.
template <class Keep>
void keepIf(std::vector<BuiltinVariant>& variants, Keep keep) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < variants.size(); ++i) {
        if (keep(i)) {
            if (kept != i) {
                variants[kept] = std::move(variants[i]);
            }
            ++kept;
        }
    }
    variants.erase(variants.begin() + static_cast<std::ptrdiff_t>(kept), variants.end());
}

// A declared variant is never dropped here, even one that repeats an earlier signature: at
// call time the first in the order wins, and both stay visible to a reader of the lists.
void removeUnreachable(std::vector<BuiltinVariant>& variants) {
    std::unordered_set<ReachKey, ReachKeyHash, ReachKeyEqual> seen;
    seen.reserve(variants.size());
    std::vector<bool> reachable(variants.size(), true);
    for (std::size_t i = 0; i < variants.size(); ++i) {
        const bool inserted = seen.insert(reachKeyOf(variants[i])).second;
        reachable[i] = inserted || !isBoxing(variants[i]);
    }
    keepIf(variants, [&reachable](std::size_t i) { return reachable[i]; });
}

// Would w take every input type of v, as the engine matches?
bool takesAllInputsOf(const BuiltinVariant& w, const BuiltinVariant& v) {
    for (std::size_t i = 0; i < w.inputArgTypes.size(); ++i) {
        if (!types::isAcceptableToOrro(w.inputArgTypes[i], v.inputArgTypes[i])) {
            return false;
        }
    }
    return true;
}

// A variant behind a NO_SUPPORT variant that would take all its inputs cannot be offered to
// the engine: the engine would call it for arguments that the interpreter sends to the
// NO_SUPPORT one. Lowered variants shadow in their turn, as the walk reaches them.
void applyShadowing(std::vector<BuiltinVariant>& variants) {
    for (std::size_t vi = 0; vi < variants.size(); ++vi) {
        const BuiltinVariant& v = variants[vi];
        if (v.orroSupportLevel != OrroSupportLevel::NO_SUPPORT) {
            continue;
        }
        const std::size_t arity = v.inputArgTypes.size();
        for (std::size_t wi = vi + 1;
             wi < variants.size() && variants[wi].inputArgTypes.size() == arity; ++wi) {
            BuiltinVariant& w = variants[wi];
            if (w.orroSupportLevel != OrroSupportLevel::NO_SUPPORT && takesAllInputsOf(w, v)) {
                w.orroSupportLevel = types::combine(w.orroSupportLevel, v.orroSupportLevel);
            }
        }
    }
}

void removeUnsupportedBoxing(std::vector<BuiltinVariant>& variants) {
    keepIf(variants, [&variants](std::size_t i) {
        return !(isBoxing(variants[i]) &&
                 variants[i].orroSupportLevel == OrroSupportLevel::NO_SUPPORT);
    });
}

}  // namespace

std::vector<BuiltinVariant> cleanupVariants(std::vector<BuiltinVariant>&& input) {
    std::vector<BuiltinVariant> variants = std::move(input);
    std::sort(variants.begin(), variants.end());
    logStage("before cleanup:\n", variants);
    removeUnsupportedVariants(variants);
    logStage("removed unsupported:\n", variants);
    removeUnreachable(variants);
    logStage("removed unreachable:\n", variants);
    applyShadowing(variants);
    logStage("removed shadowed:\n", variants);
    removeUnsupportedBoxing(variants);
    logStage("removed unsupported boxing variants:\n", variants);
    variants.shrink_to_fit();
    return variants;
}

}  // namespace Norvane::builtin::builtinreg::detail
