// The memo of a builtin: its table made on demand, and the rule of what it may remember.
#include <builtin/invoke/VariantMemo.hpp>

#include <new>
#include <variant>

#include "../calling/Converters.hpp"
#include "VariantMemoSwitch.hpp"
#include "VariantMemoTable.hpp"

namespace Norvane::builtin::detail {

std::atomic<bool> variantMemoEnabled{true};

void setVariantMemoEnabled(bool enabled) noexcept {
    variantMemoEnabled.store(enabled, std::memory_order_relaxed);
}

VariantMemo::~VariantMemo() {
    delete table_.load(std::memory_order_relaxed);
}

// Two threads may make a table at once; the one that publishes first wins and the other
// gives its own back.
VariantMemoTable* VariantMemo::obtain() const noexcept {
    VariantMemoTable* table = table_.load(std::memory_order_acquire);
    if (table != nullptr) {
        return table;
    }
    auto* made = new (std::nothrow) VariantMemoTable();
    if (made == nullptr) {
        return nullptr;
    }
    if (table_.compare_exchange_strong(table, made, std::memory_order_acq_rel)) {
        return made;
    }
    delete made;
    return table;
}

bool VariantMemoTable::sameObjects(std::uint32_t objects, const std::uint64_t* variantIds,
                                   std::size_t nrhs, kaArray_tag* const* prhs) noexcept {
    const IZOBJRegWrapper* provider = types::detail::classProvider();
    if (provider == nullptr) {
        return false;
    }
    try {
        for (std::size_t i = 0; i < nrhs; ++i) {
            if ((objects >> i & 1u) != 0 && provider->getVariantId(prhs[i]) != variantIds[i]) {
                return false;
            }
        }
    } catch (...) {
        return false;
    }
    return true;
}

namespace {

// What one argument adds to an entry.
struct Remembered {
    bool provable = false;
    bool object = false;
    std::uint64_t variantId = 0;
};

// Whether the code of an argument proves the type that classification gave it, for every
// argument of that code from now on (step 3 of remember below).
Remembered provedByCode(std::uint64_t code, const ArgumentClassification& classified) {
    const kaClassID stored = callcode::storedClassOf(code);
    const kaClassID classId = callcode::classIdOf(code);
    const bool string = isStringOfStringClass(stored, classId);
    const bool flag = (code & callcode::flagText) != 0;
    switch (classified.type.index()) {
        case 0:  // UnsupportedArgType with a converter: a null argument
            return {code == 0};
        case 1:  // FlagInputType: the text is in the key
            return {string && flag};
        case 2:  // NumericScalarTypes
        case 6:  // KaArrayTypes
            // A struct array whose class is another is an engine object once its class is
            // known; typed as a struct, its class was not known yet, and may become so.
            return {stored != kaSTRUCT_CLASS || classId == kaSTRUCT_CLASS};
        case 3:  // KeldorStringType: a string that no flag stands for
            return {string && !flag};
        case 5:  // OrroObjectTypes: a known class stays known; the variant id is asked again
            return {true, true, std::get<types::OrroObjectTypes>(classified.type).variantId};
        default: return {};
    }
}

}  // namespace

// What may be remembered, and why it holds for every later call of the same key:
//
//   1. The search refused no variant by comparing live dimensions. A call of the same types
//      whose arrays do agree could be taken by it.
//   2. Each argument that the search classified was kept by the classification cache, which
//      keeps a type only with its converter. Arguments without one were refused by
//      classification (it threw), or are instances of classes that are neither the string
//      class nor known engine objects; those are asked afresh each time, since a
//      registration may make the class known.
//   3. The code of each classified argument proves its type (provedByCode): numbers, arrays
//      and null by class, complexity, density and dimension categories; strings by the flag
//      text that the key carries; engine objects by class id (a known class stays known) and
//      the variant id, which the entry keeps and a hit asks again.
//   4. Arguments beyond those classified were never looked at by any variant, so the answer
//      does not depend on them: an entry keeps their codes only because the key has them.
//   5. With the counts and the list in the header, every variant before the one taken refuses
//      the next call as it refused this one, and that one takes it, unless it was taken by
//      comparing dimensions: then a hit compares them again, and searches if they disagree.
//   6. A hit calls the variant with the converters that classification gave this call's
//      arguments, which the same types give again.
void VariantMemoTable::remember(const CallKey& key, std::size_t nrhs,
                                const ClassificationCache& classified,
                                const SearchOutcome& outcome) noexcept {
    constexpr auto relaxed = std::memory_order_relaxed;
    constexpr auto release = std::memory_order_release;
    if (outcome.refusedByDimensions) {
        return;
    }
    std::uint32_t details = outcome.takenByDimensions ? kCompareShapes : 0;
    Remembered arguments[kMemoArguments];
    for (std::size_t i = 0; i < nrhs && i < classified.size(); ++i) {
        if (classified[i].converter == nullptr) {
            return;
        }
        arguments[i] = provedByCode(key.codes[i], classified[i]);
        if (!arguments[i].provable) {
            return;
        }
        details |= arguments[i].object ? 1u << (kObjectShift + i) : 0;
    }
    // Every flag text is compared on a hit, the empty one too.
    std::size_t textUnits = 0;
    for (std::size_t i = 0; i < nrhs; ++i) {
        if ((key.codes[i] & callcode::flagText) != 0) {
            textUnits += key.flags[i].size;
            details |= kFlagTexts;
        }
    }
    if (textUnits > kTextUnits) {
        return;
    }
    std::uint32_t unboxed = 0;
    if (outcome.variant != nullptr) {
        for (std::size_t i = 0; i < nrhs; ++i) {
            const ArgType& declared = outcome.variant->inputArgTypes[i];
            details |= types::skipDuringInvoke(declared) ? 1u << i : 0;
            // A real number declared as one is unboxed on a hit as its converter would.
            const kaClassID stored = callcode::storedClassOf(key.codes[i]);
            if (i < classified.size() &&
                std::holds_alternative<types::NumericScalarTypes>(declared) &&
                classified[i].converter == types::detail::scalarConverterOf(stored, false)) {
                unboxed |= static_cast<std::uint32_t>(stored) << (4 * i);
            }
        }
    }

    // The entry to write: one that holds the key already is left as it is (another thread got
    // there first); else an empty one, else the one written longer ago.
    const auto replacedFirst = [](const Entry& a, const Entry& b) {
        const bool aEmpty = a.header.load(relaxed) == 0, bEmpty = b.header.load(relaxed) == 0;
        return aEmpty != bEmpty ? aEmpty : a.written.load(relaxed) < b.written.load(relaxed);
    };
    Entry* const ways = &entries_[setOf(key.hash)];
    Entry* target = ways;
    for (Entry* entry = ways; entry != ways + kWays; ++entry) {
        MemoAnswer held;
        std::uint32_t objects = 0;
        std::uint64_t extras[kMemoArguments];
        if (copyIfHeld(*entry, key, nrhs, held, objects, extras) && objects == 0) {
            return;
        }
        target = replacedFirst(*entry, *target) ? entry : target;
    }
    std::uint32_t sequence = target->sequence.load(relaxed);
    if ((sequence & 1u) != 0 ||
        !target->sequence.compare_exchange_strong(sequence, sequence + 1, relaxed)) {
        return;
    }
    target->written.store(clock_.fetch_add(1, relaxed), release);
    target->header.store(key.header, release);
    std::uint64_t words[kTextUnits / 4] = {};
    std::size_t offset = 0;
    for (std::size_t i = 0; i < kMemoArguments; ++i) {
        const bool argument = i < nrhs;
        target->codes[i].store(argument ? key.codes[i] : 0, release);
        const bool reached = argument && i < classified.size();
        target->converters[i].store(reached ? classified[i].converter : nullptr, release);
        std::uint64_t extra = reached ? arguments[i].variantId : 0;
        if (argument && (key.codes[i] & callcode::flagText) != 0) {
            const FlagText& flag = key.flags[i];
            extra = offset | flag.size << 8;
            for (std::size_t u = 0; u < flag.size; ++u, ++offset) {
                words[offset / 4] |= static_cast<std::uint64_t>(flag.data[u])
                                     << (16 * (offset % 4));
            }
        }
        target->extras[i].store(extra, release);
    }
    for (std::size_t w = 0; w < kTextUnits / 4; ++w) {
        target->text[w].store(words[w], release);
    }
    target->variant.store(outcome.variant, release);
    target->details.store(details, release);
    target->unboxed.store(unboxed, release);
    target->sequence.store(sequence + 2, release);
}

}  // namespace Norvane::builtin::detail
