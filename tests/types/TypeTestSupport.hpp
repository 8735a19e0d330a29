// Short names, builders and checks shared by the tests of the type language.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include <builtin/types/ArgType.hpp>

namespace typestest {

using namespace Norvane::builtin::types;

using Shape = KaArrayTypes::Shape;
using Density = KaArrayTypes::Density;
using Complexity = KaArrayTypes::Complexity;
using ScalarComplexity = NumericScalarTypes::Complexity;
using StringShape = KeldorStringType::Shape;
using L = OrroSupportLevel;

constexpr auto IN = ArgTypeDirection::INPUT;
constexpr auto OUT = ArgTypeDirection::OUTPUT;
constexpr auto STRICT_ = SignatureTolerance::STRICT;
constexpr auto RELAXED_ = SignatureTolerance::RELAXED;
constexpr std::size_t ANY_DIM = SIZE_MAX;

inline kaClassID classId(std::int32_t number) { return static_cast<kaClassID>(number); }

inline KaArrayTypes array(kaClassID element, Shape shape, std::size_t dim,
                          Density density = Density::FULL,
                          Complexity complexity = Complexity::NOT_COMPLEX,
                          SignatureTolerance tolerance = STRICT_) {
    KaArrayTypes type(element, shape, density, complexity, dim);
    type.setSignatureTolerance(tolerance);
    return type;
}
inline KaArrayTypes relaxed(KaArrayTypes type) {
    type.setSignatureTolerance(RELAXED_);
    return type;
}
// Open in every property; relaxed, it is the most permissive declared array.
inline KaArrayTypes openArray(kaClassID element = kaUNKNOWN_CLASS,
                              SignatureTolerance tolerance = STRICT_) {
    return array(element, Shape::UNKNOWN, ANY_DIM, Density::UNKNOWN, Complexity::UNKNOWN,
                 tolerance);
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

// operator< must be a strict weak order for std::sort: irreflexive, transitive, and with
// incomparability transitive. Cubic, so keep sets to a few hundred values.
template <class T>
void expectStrictWeakOrder(const std::vector<T>& values) {
    const std::size_t n = values.size();
    std::vector<char> lt(n * n);
    for (std::size_t i = 0; i < n * n; ++i) lt[i] = values[i / n] < values[i % n] ? 1 : 0;
    const auto less = [&](std::size_t i, std::size_t j) { return lt[i * n + j] != 0; };
    const auto incomparable = [&](std::size_t i, std::size_t j) {
        return !less(i, j) && !less(j, i);
    };
    for (std::size_t i = 0; i < n; ++i) {
        ASSERT_FALSE(less(i, i)) << "not irreflexive at " << i;
        for (std::size_t j = 0; j < n; ++j) {
            for (std::size_t k = 0; k < n; ++k) {
                if (less(i, j) && less(j, k)) {
                    ASSERT_TRUE(less(i, k)) << "not transitive at " << i << ", " << j << ", " << k;
                }
                if (incomparable(i, j) && incomparable(j, k)) {
                    ASSERT_TRUE(incomparable(i, k))
                        << "incomparability not transitive at " << i << ", " << j << ", " << k;
                }
            }
        }
    }
}

}  // namespace typestest
