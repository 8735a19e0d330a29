// The small vocabulary that every alternative of ArgType and every variant built on them
// shares: the side of a signature, how far the engine can call something, how strictly a
// declared array holds to its shape, the numeric element classes, the fold step of support
// levels and the hash mixing step.
//
// The enums are 32 bits wide and signed, so that hash_combine sees them sign-extended, as it
// sees every other 32-bit field of the alternatives.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>

#include <boost/container_hash/hash.hpp>

#include <builtin/config.hpp>
#include <ka/ka.hpp>

namespace Norvane::builtin::types {

// The side of a signature on which a type stands.
enum class ArgTypeDirection : std::int32_t {
    INPUT = 0,
    OUTPUT = 1,
};

// How far the engine can call what has this type. The numbers grow with the restriction, so
// that the fold of a signature keeps the most restrictive one.
enum class OrroSupportLevel : std::int32_t {
    EQUIVALENT_SUPPORT = 0,
    ORRO_ONLY = 1,
    NO_SUPPORT_SCALAR_COMPLEX = 2,
    NO_SUPPORT = 3,
};

// Whether a declared array type takes only its own exact shape, or everything its shape covers.
enum class SignatureTolerance : std::int32_t {
    STRICT = 0,
    RELAXED = 1,
};

// True for the twelve classes from which an unboxed scalar exists: logical, char, double,
// single and the eight integer classes. kaVOID_CLASS lies among them and is not one.
constexpr bool isNumericElementClass(kaClassID element) noexcept {
    switch (element) {
        case kaLOGICAL_CLASS:
        case kaCHAR_CLASS:
        case kaDOUBLE_CLASS:
        case kaSINGLE_CLASS:
        case kaINT8_CLASS:
        case kaUINT8_CLASS:
        case kaINT16_CLASS:
        case kaUINT16_CLASS:
        case kaINT32_CLASS:
        case kaUINT32_CLASS:
        case kaINT64_CLASS:
        case kaUINT64_CLASS: return true;
        default: return false;
    }
}

// The fold step of support levels: the more restrictive of the two. Throws
// std::invalid_argument when level1 is none of the four levels.
BUILTIN_API OrroSupportLevel combine(OrroSupportLevel level1, OrroSupportLevel level2);

// Writes "OrroSupportLevel::<NAME>" and a newline; a value outside the enum writes nothing.
BUILTIN_API std::ostream& operator<<(std::ostream& os, OrroSupportLevel level);

// The mixing step of the hash() members. It is boost::hash_combine of Boost 1.81 for a 64-bit
// size_t, which outside callers reproduce, so it must not be swapped for another mixer.
template <class T>
void hash_combine(std::size_t& seed, const T& value) {
    boost::hash_combine(seed, value);
}

}  // namespace Norvane::builtin::types
