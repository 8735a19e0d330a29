// CallKey: a call as the memo of a builtin sees it before any variant is asked. The list
// searched and the counts make its header; each argument is coded from its array record, so
// that two arguments of one code classify alike (the code is at least as fine as the type):
//
//   bits 0-7    its stored class
//   bits 8-19   its complex and sparse marks, as the record has them
//   bit 20      a string of the string class that a flag stands for (text beside the code)
//   bits 21-24  its number of dimensions, at most 8
//   bits 25-40  each dimension as 0, 1 or more, two bits each
//   bits 41-62  its class id, as classification reads it (the class provider first)
//   bit 63      the argument is there (a null argument codes as 0)
//
// Classification reads nothing else of a number or an array: its class ids, complexity and
// density, its number of dimensions and which of them are 0 or 1. A string of the string class
// types by its flag text too, which the key carries beside the code; an engine object by its
// variant id too, which the memo asks for again on a hit, once an entry says that the argument
// is one. A call with an argument beyond these limits (a class id of more than 22 bits, say)
// has no key.
//
// Reading a key asks the class provider for each argument's class id, as classification does
// for each argument it reaches, and the string service for the flag text of each string; both
// are queries. Anything that throws leaves the call without a key.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include <ka/ka.hpp>

#include <builtin/types/StringClassId.hpp>

#include "../types/HeldServices.hpp"

namespace Norvane::builtin::detail {

// The calls that have a key: at most this many arguments, of at most 8 dimensions each.
inline constexpr std::size_t kMemoArguments = 6;
inline constexpr std::size_t kMemoDimensions = 8;

namespace callcode {
inline constexpr std::uint64_t present = std::uint64_t{1} << 63;
inline constexpr std::uint32_t marks =
    matrix::flags::sparse | matrix::flags::complexLow | matrix::flags::complexHigh;
inline constexpr int marksShift = 8;
inline constexpr std::uint64_t flagText = std::uint64_t{1} << 20;
inline constexpr int countShift = 21;
inline constexpr int dimensionShift = 25;
inline constexpr int classShift = 41;
inline constexpr std::uint32_t classLimit = 1u << 22;

inline kaClassID classIdOf(std::uint64_t code) {
    return static_cast<kaClassID>((code >> classShift) & (classLimit - 1));
}
inline kaClassID storedClassOf(std::uint64_t code) {
    return static_cast<kaClassID>(code & 0xFFu);
}
}  // namespace callcode

// The text of a flag, viewed in the argument; valid for the call.
struct FlagText {
    const char16_t* data;
    std::size_t size;
};

struct CallKey {
    std::uint64_t header;  // never 0
    std::uint64_t hash;
    std::uint64_t codes[kMemoArguments];
    FlagText flags[kMemoArguments];  // set where the code has callcode::flagText
};

// Whether an argument of this stored class and class id is a string of the string class, which
// classification types by its flag text.
inline bool isStringOfStringClass(kaClassID stored, kaClassID classId) {
    if (stored != kaOPAQUE_CLASS || types::detail::stringSupport() == nullptr) {
        return false;
    }
    const auto stringClassId = types::detail::getKnownStringClassId();
    return stringClassId && *stringClassId == classId;
}

// One step of the hash: a multiply by an odd constant, which carries every bit of the word into
// the top bits of the product; the top bits choose the set of entries.
inline std::uint64_t mixHash(std::uint64_t hash, std::uint64_t value) {
    return (hash ^ value) * 0x9E3779B97F4A7C15u;
}

// A dimension as the code keeps it: 0, 1 or more.
inline std::uint64_t dimensionCategory(std::size_t extent) {
    return extent < 2 ? extent : 2;
}

// The code of an argument in general. False if it has none: a stored class or class id out of
// range, too many dimensions.
inline bool codeArgument(kaArray_tag* array, const IZOBJRegWrapper* provider, std::uint64_t& code,
                         FlagText& flag) {
    using namespace callcode;
    const auto stored = static_cast<std::uint32_t>(array->storedClass);
    const auto classId = static_cast<std::uint32_t>(
        provider != nullptr ? provider->getClassId(array) : matrix::classId(array));
    const std::span<const std::size_t> dims = matrix::dimensions(array);
    if (stored > 0xFFu || classId >= classLimit || dims.size() > kMemoDimensions) {
        return false;
    }
    std::uint64_t shape = 0;
    for (std::size_t d = 0; d < dims.size(); ++d) {
        shape |= dimensionCategory(dims[d]) << (2 * d);
    }
    code = present | stored | static_cast<std::uint64_t>(array->flags & marks) << marksShift |
           static_cast<std::uint64_t>(dims.size()) << countShift | shape << dimensionShift |
           static_cast<std::uint64_t>(classId) << classShift;
    if (isStringOfStringClass(static_cast<kaClassID>(stored), static_cast<kaClassID>(classId))) {
        if (const auto text = types::detail::stringSupport()->getStringFlag(array)) {
            code |= flagText;
            flag = {text->data(), text->size()};
        }
    }
    return true;
}

// The code of the commonest argument, a plain 2-D array (a number, say) in a process without a
// class provider, read straight from the record: what codeArgument gives it. False for any
// other argument.
inline bool codePlainArgument(const kaArray_tag* array, std::uint64_t& code) {
    using namespace callcode;
    const std::uint32_t flags = array->flags;
    const auto stored = static_cast<std::uint32_t>(array->storedClass);
    if (stored > kaFUNCTION_CLASS ||
        (flags & (matrix::flags::twoD | matrix::flags::opaqueDimensions)) != matrix::flags::twoD) {
        return false;
    }
    const std::uint64_t shape =
        dimensionCategory(array->dims.shape[0]) | dimensionCategory(array->dims.shape[1]) << 2;
    code = present | stored | static_cast<std::uint64_t>(flags & marks) << marksShift |
           std::uint64_t{2} << countShift | shape << dimensionShift |
           static_cast<std::uint64_t>(stored) << classShift;
    return true;
}

// The key of a call on list `list` (0 to 2). False if the call has none; it is then searched
// every time, as if there were no memo. `Count` is std::size_t, or a std::integral_constant for
// the road of a hit compiled for one number of arguments, whose loops then unroll.
template <class Count>
[[gnu::always_inline]] inline bool readCallKey(CallKey& key, std::uint64_t list, std::size_t nlhs,
                                               Count nrhs, kaArray_tag* const* prhs) noexcept {
    if (std::size_t{nrhs} > kMemoArguments || nlhs > 0xFFFFFFFFu) {
        return false;
    }
    key.header = callcode::present | list << 40 | std::uint64_t{nrhs} << 32 | nlhs;
    std::uint64_t hash = mixHash(0, key.header);
    try {
        const IZOBJRegWrapper* const provider = types::detail::classProvider();
        for (std::size_t i = 0; i < nrhs; ++i) {
            std::uint64_t& code = key.codes[i];
            kaArray_tag* const array = prhs[i];
            if (array == nullptr) {
                code = 0;
            } else if (provider != nullptr || !codePlainArgument(array, code)) [[unlikely]] {
                if (!codeArgument(array, provider, code, key.flags[i])) {
                    return false;
                }
                if ((code & callcode::flagText) != 0) {
                    for (std::size_t u = 0; u < key.flags[i].size; ++u) {
                        hash = mixHash(hash, key.flags[i].data[u]);
                    }
                }
            }
            hash = mixHash(hash, code);
        }
    } catch (...) {
        // Whatever refused to answer, classification will meet it again, or never reach it.
        return false;
    }
    key.hash = hash;
    return true;
}

}  // namespace Norvane::builtin::detail
