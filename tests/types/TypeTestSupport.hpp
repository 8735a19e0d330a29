// Short names and builders shared by the tests of the type language.
#pragma once

#include <cstddef>
#include <cstdint>

#include <gtest/gtest.h>

#include <builtin/types/ArgType.hpp>

namespace typestest {

using namespace Norvane::builtin::types;
using Shape = KaArrayTypes::Shape;
using Density = KaArrayTypes::Density;
using Complexity = KaArrayTypes::Complexity;
using StringShape = KeldorStringType::Shape;
using L = OrroSupportLevel;
constexpr auto IN = ArgTypeDirection::INPUT;
constexpr auto OUT = ArgTypeDirection::OUTPUT;
constexpr auto STRICT_ = SignatureTolerance::STRICT;
constexpr auto RELAXED_ = SignatureTolerance::RELAXED;
constexpr std::size_t ANY_DIM = SIZE_MAX;

inline kaClassID classId(std::int32_t number) {
    return static_cast<kaClassID>(number);
}
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
inline NumericScalarTypes realScalar(kaClassID e) {
    return {e, NumericScalarTypes::Complexity::REAL};
}
inline NumericScalarTypes complexScalar(kaClassID e) {
    return {e, NumericScalarTypes::Complexity::COMPLEX};
}

}  // namespace typestest
