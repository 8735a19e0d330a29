// Short names and builders shared by the tests of the type language.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include <builtin/types/ArgType.hpp>

namespace typestest {

using namespace Norvane::builtin::types;

using Shape = KaArrayTypes::Shape;
using Density = KaArrayTypes::Density;
using Complexity = KaArrayTypes::Complexity;
using ScalarComplexity = NumericScalarTypes::Complexity;
using StringShape = KeldorStringType::Shape;

constexpr auto IN = ArgTypeDirection::INPUT;
constexpr auto OUT = ArgTypeDirection::OUTPUT;
constexpr auto STRICT_ = SignatureTolerance::STRICT;
constexpr auto RELAXED_ = SignatureTolerance::RELAXED;
constexpr std::size_t ANY_DIM = SIZE_MAX;

inline kaClassID classId(std::int32_t number) { return static_cast<kaClassID>(number); }

// An array type with every field given, tolerance included.
inline KaArrayTypes array(kaClassID element, Shape shape, std::size_t dim,
                          Density density = Density::FULL,
                          Complexity complexity = Complexity::NOT_COMPLEX,
                          SignatureTolerance tolerance = SignatureTolerance::STRICT) {
    KaArrayTypes type(element, shape, density, complexity, dim);
    type.setSignatureTolerance(tolerance);
    return type;
}

inline KaArrayTypes relaxed(KaArrayTypes type) {
    type.setSignatureTolerance(SignatureTolerance::RELAXED);
    return type;
}

inline NumericScalarTypes realScalar(kaClassID element) {
    return NumericScalarTypes(element, ScalarComplexity::REAL);
}
inline NumericScalarTypes complexScalar(kaClassID element) {
    return NumericScalarTypes(element, ScalarComplexity::COMPLEX);
}

// The mixing step of hash_combine written out for a 64-bit size_t, independently of Boost.
inline std::uint64_t mixStep(std::uint64_t seed, std::uint64_t value) {
    constexpr std::uint64_t m = 0xe9846af9b1a615dULL;
    std::uint64_t x = seed + 0x9e3779b9ULL + value;
    x ^= x >> 32;
    x *= m;
    x ^= x >> 32;
    x *= m;
    x ^= x >> 28;
    return x;
}

// A 32-bit field as the mixing step sees it: sign-extended to 64 bits.
inline std::uint64_t widened(std::int32_t value) {
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
}

}  // namespace typestest
