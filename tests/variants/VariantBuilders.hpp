// Builders for the tests of variants and of the interpreted call: common ArgTypes, and a
// variant made from a declaration whose unnamed parts default to a quiet Direct function, where
// the library's own record (VariantDeclaration) defaults to a function that may do anything.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <builtin/variants/BuiltinVariant.hpp>

namespace varianttest {

using namespace Norvane::builtin;
using namespace Norvane::builtin::types;
using V = BuiltinVariant;
using Shape = KaArrayTypes::Shape;

inline ArgType scalar(kaClassID element = kaDOUBLE_CLASS, bool complex = false) {
    return NumericScalarTypes(element, complex ? NumericScalarTypes::Complexity::COMPLEX
                                               : NumericScalarTypes::Complexity::REAL);
}
// Any full array of the element, real or complex, declared RELAXED.
inline ArgType anyArray(kaClassID element = kaDOUBLE_CLASS) {
    KaArrayTypes type(element, Shape::UNKNOWN, KaArrayTypes::Density::FULL,
                      KaArrayTypes::Complexity::UNKNOWN, SIZE_MAX);
    type.setSignatureTolerance(SignatureTolerance::RELAXED);
    return type;
}
inline ArgType flag(const char* text) {
    return FlagInputType(std::string(text));
}

// Never called: tests of matching only need a typed entry to be there.
inline Parameter unusedEntry(OrroFunctionDescriptor*, IOrroBuiltinEnvironment*, bool& pending,
                             const ParameterList&) {
    pending = false;
    return Parameter();
}

struct Declaration {
    std::vector<ArgType> in = {};
    std::vector<ArgType> out = {};
    TypedEntry typedEntry = &unusedEntry;
    NativeEntry nativeEntry = nullptr;
    JIT_CALLING_CONVENTION convention = JIT_CALLING_CONVENTION::Direct;
    V::CallsIntoKeldor callsBack = V::CallsIntoKeldor::NO;
    V::HasWarnings warns = V::HasWarnings::NO;
    V::HasExceptions throws = V::HasExceptions::NO;
    V::HasSideEffects sideEffects = V::HasSideEffects::NO;
    V::IsElementWise elementWise = V::IsElementWise::NO;
    std::string name = "native";
    void* developerFunction = nullptr;
};

// The library's record with the defaults above, which the tests of matching and lists share.
inline BuiltinVariant makeVariant(Declaration d) {
    return BuiltinVariant({.functionDescriptor = {d.typedEntry, d.nativeEntry, d.convention},
                           .developerFunction = d.developerFunction,
                           .inputArgTypes = std::move(d.in),
                           .outputArgTypes = std::move(d.out),
                           .mayCallIntoKeldor = d.callsBack,
                           .mayRaiseWarnings = d.warns,
                           .mayThrowErrors = d.throws,
                           .mayHaveSideEffects = d.sideEffects,
                           .cppFunctionName = std::move(d.name),
                           .keldorFunctionName = "fn",
                           .dominantClass = "double",
                           .isElementWise = d.elementWise});
}

// A boxing variant of `source` with the boxed signature of `boxed`.
inline BuiltinVariant boxingOf(const BuiltinVariant& source, BuiltinVariant boxed) {
    boxed.originalVariant = std::make_shared<const BuiltinVariant>(source);
    return boxed;
}

}  // namespace varianttest
