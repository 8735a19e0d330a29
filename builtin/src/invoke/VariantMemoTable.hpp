// The table behind a builtin's VariantMemo: for each remembered call key, the variant that took
// the call (or none: the default implementation), with what a hit needs to call it without
// classifying anything: the converter of each argument, which inputs are flags, and whether the
// variant was lifted over arrays whose shapes must agree again.
//
// 16 entries in 8 sets of 2, chosen by the top bits of the key's hash. A new key replaces an empty
// entry of its set, else the one written longer ago. Each entry is a sequence lock: a writer makes
// the sequence odd, writes, and makes it even again; a reader copies what it needs and keeps the
// copy only if the sequence was even and unchanged around it. Readers take no lock, write
// nothing and allocate nothing; a writer that finds the entry being written leaves it.
// Every field is an atomic, written with release and read with acquire: a reader that sees
// anything of a write sees the odd sequence that began it when it reads the sequence again.
// (On x86 both are plain moves; and unlike fences, ThreadSanitizer follows them.)
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

#include <builtin/invoke/VariantMemo.hpp>
#include <builtin/variants/BuiltinVariant.hpp>
#include <builtin/variants/VariantSignature.hpp>

#include "CallKey.hpp"

namespace Norvane::builtin::detail {

// What a search found, and whether its answer rested on live dimensions.
struct SearchOutcome {
    const BuiltinVariant* variant = nullptr;  // null: no variant takes the call
    bool refusedByDimensions = false;         // some variant was refused by comparing them
    bool takenByDimensions = false;           // the variant was taken by comparing them
};

// What a hit hands back.
struct MemoAnswer {
    const BuiltinVariant* variant;  // null: the default implementation takes the call
    std::uint32_t flagInputs;       // bit i: input i is a flag, matched but not passed on
    // Four bits an input: the class of a real number that its converter would unbox, 0 for
    // an input that goes through its converter.
    std::uint32_t unboxed;
    bool compareShapes;  // the element-wise shape test must pass again
    types::Converter converters[kMemoArguments];
};

class VariantMemoTable {
public:
    static constexpr int kSetBits = 3;
    static constexpr std::size_t kSets = std::size_t{1} << kSetBits;
    static constexpr std::size_t kWays = 2;
    // Code units of flag text that one entry holds, over all its arguments.
    static constexpr std::size_t kTextUnits = 32;

    // The answer remembered for the call, if there is one. `Count` as for readCallKey.
    template <class Count>
    bool find(const CallKey& key, Count nrhs, kaArray_tag* const* prhs,
              MemoAnswer& answer) const noexcept;

    // Remembers the outcome of a search whose arguments `classified` holds, if the types that
    // the key stands for prove it for every call of that key (see the .cpp).
    void remember(const CallKey& key, std::size_t nrhs, const ClassificationCache& classified,
                  const SearchOutcome& outcome) noexcept;

private:
    // What a hit reads lies in the first two cache lines.
    struct Entry {
        std::atomic<std::uint32_t> sequence{0};  // odd while written
        std::atomic<std::uint32_t> written{0};   // the table's clock when it was written
        std::atomic<std::uint64_t> header{0};    // 0: empty
        std::atomic<std::uint64_t> codes[kMemoArguments];
        std::atomic<const BuiltinVariant*> variant{nullptr};
        // Bits 0-7: flag inputs; 8-15: arguments that are engine objects; 16: compare shapes;
        // 17: some argument has a flag text.
        std::atomic<std::uint32_t> details{0};
        std::atomic<std::uint32_t> unboxed{0};  // as in MemoAnswer
        std::atomic<types::Converter> converters[kMemoArguments];
        // An engine object's variant id; a flag's text as offset | length << 8 into `text`.
        std::atomic<std::uint64_t> extras[kMemoArguments];
        std::atomic<std::uint64_t> text[kTextUnits / 4];  // four code units a word
    };

    static constexpr std::uint32_t kObjectShift = 8;
    static constexpr std::uint32_t kCompareShapes = 1u << 16;
    static constexpr std::uint32_t kFlagTexts = 1u << 17;

    static bool sameText(const Entry& entry, std::uint64_t extra, const FlagText& flag);
    template <class Count>
    static bool copyIfHeld(const Entry& entry, const CallKey& key, Count nrhs, MemoAnswer& answer,
                           std::uint32_t& objects, std::uint64_t* extras);
    static bool sameObjects(std::uint32_t objects, const std::uint64_t* variantIds,
                            std::size_t nrhs, kaArray_tag* const* prhs) noexcept;
    static std::size_t setOf(std::uint64_t hash) { return (hash >> (64 - kSetBits)) * kWays; }
    const Entry* set(std::uint64_t hash) const { return &entries_[setOf(hash)]; }

    std::array<Entry, kSets * kWays> entries_;
    std::atomic<std::uint32_t> clock_{0};
};

// Whether invoke reads and fills memos (VariantMemoSwitch.hpp); read relaxed on every call.
extern std::atomic<bool> variantMemoEnabled;

// A flag text compared with the one an entry holds; read while the entry may be written, so
// the answer counts only once the sequence has been checked.
inline bool VariantMemoTable::sameText(const Entry& entry, std::uint64_t extra,
                                       const FlagText& flag) {
    const std::size_t offset = extra & 0xFFu;
    const std::size_t length = (extra >> 8) & 0xFFu;
    if (length != flag.size || offset + length > kTextUnits) {
        return false;
    }
    for (std::size_t u = 0; u < length; ++u) {
        const std::size_t at = offset + u;
        const std::uint64_t word = entry.text[at / 4].load(std::memory_order_acquire);
        if (static_cast<char16_t>(word >> (16 * (at % 4))) != flag.data[u]) {
            return false;
        }
    }
    return true;
}

// The answer of an entry if it holds the key, with its extras (the variant ids of its engine
// objects among them); read while the entry may be written, so the copy counts only if the
// sequence is even and the same before and after it.
template <class Count>
[[gnu::always_inline]] inline bool VariantMemoTable::copyIfHeld(const Entry& entry,
                                                                const CallKey& key, Count nrhs,
                                                                MemoAnswer& answer,
                                                                std::uint32_t& objects,
                                                                std::uint64_t* extras) {
    constexpr auto acquire = std::memory_order_acquire;
    const std::uint32_t before = entry.sequence.load(acquire);
    if ((before & 1u) != 0 || entry.header.load(acquire) != key.header) {
        return false;
    }
    for (std::size_t i = 0; i < nrhs; ++i) {
        if (entry.codes[i].load(acquire) != key.codes[i]) {
            return false;
        }
    }
    const std::uint32_t details = entry.details.load(acquire);
    answer.variant = entry.variant.load(acquire);
    answer.flagInputs = details & 0xFFu;
    answer.compareShapes = (details & kCompareShapes) != 0;
    answer.unboxed = entry.unboxed.load(acquire);
    for (std::size_t i = 0; i < nrhs; ++i) {
        answer.converters[i] = entry.converters[i].load(acquire);
    }
    objects = (details >> kObjectShift) & 0xFFu;
    bool sameTexts = true;
    if ((objects != 0 || (details & kFlagTexts) != 0)) [[unlikely]] {
        for (std::size_t i = 0; i < nrhs; ++i) {
            extras[i] = entry.extras[i].load(acquire);
            if ((key.codes[i] & callcode::flagText) != 0) {
                sameTexts = sameTexts && sameText(entry, extras[i], key.flags[i]);
            }
        }
    }
    return entry.sequence.load(std::memory_order_relaxed) == before && sameTexts;
}

// The entries of the key's set are tried in turn. Engine objects among the arguments are asked
// for their variant ids once an entry holds the key, and must have those it remembers.
template <class Count>
[[gnu::always_inline]] inline bool VariantMemoTable::find(const CallKey& key, Count nrhs,
                                                          kaArray_tag* const* prhs,
                                                          MemoAnswer& answer) const noexcept {
    const Entry* const ways = set(key.hash);
    for (std::size_t way = 0; way < kWays; ++way) {
        std::uint32_t objects = 0;
        std::uint64_t extras[kMemoArguments];
        if (copyIfHeld(ways[way], key, nrhs, answer, objects, extras) &&
            (objects == 0 || sameObjects(objects, extras, nrhs, prhs))) [[likely]] {
            return true;
        }
    }
    return false;
}

}  // namespace Norvane::builtin::detail
