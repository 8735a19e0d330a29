// BuiltinVariant: one typed implementation of a builtin. It carries the signature as ArgTypes,
// the entries through which it is called, what the developer declared about the native
// function, and the OrroSupportLevel that says who may call it.
//
// Everything that picks an implementation rests on three operations of this record: equality
// (input types only), the total order (counts first, then input types, boxing variants behind
// their source) and acceptance of a live call (operator== against a VariantSignature).
//
// The record is a plain value, built at module load and read only afterwards. The descriptor is
// its first member: a typed entry gets the descriptor's address and reaches the rest from there.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <boost/operators.hpp>

#include <builtin/calling/OrroFunctionDescriptor.hpp>
#include <builtin/config.hpp>
#include <builtin/types/ArgType.hpp>

namespace Norvane::builtin {

using types::ArgType;
using types::OrroSupportLevel;

struct VariantSignature;
struct VariantDeclaration;

struct BUILTIN_API BuiltinVariant
    : boost::equality_comparable<BuiltinVariant, boost::less_than_comparable<BuiltinVariant>>,
      boost::equality_comparable<BuiltinVariant, VariantSignature,
                                 boost::less_than_comparable<BuiltinVariant, VariantSignature>> {
    // What the developer declared about the native function; one byte each, 0 or 1.
    enum class CallsIntoKeldor : std::uint8_t { NO = 0, YES = 1 };
    enum class HasWarnings : std::uint8_t { NO = 0, YES = 1 };
    enum class HasExceptions : std::uint8_t { NO = 0, YES = 1 };
    enum class HasSideEffects : std::uint8_t { NO = 0, YES = 1 };
    // YES: a scalar kernel that may be lifted over arrays.
    enum class IsElementWise : std::uint8_t { NO = 0, YES = 1 };

    OrroFunctionDescriptor functionDescriptor;  // must stay the first member
    void* developerFunction = nullptr;
    std::vector<ArgType> inputArgTypes;
    std::vector<ArgType> outputArgTypes;
    std::vector<std::string> inputTypes;   // type expressions of the inputs
    std::vector<std::string> outputTypes;  // type expressions of the outputs
    CallsIntoKeldor mayCallIntoKeldor = CallsIntoKeldor::YES;
    HasWarnings mayRaiseWarnings = HasWarnings::YES;
    HasExceptions mayThrowErrors = HasExceptions::YES;
    HasSideEffects mayHaveSideEffects = HasSideEffects::YES;
    std::string cppFunctionName;
    std::string keldorFunctionName;
    std::string dominantClass;
    OrroSupportLevel orroSupportLevel = OrroSupportLevel::NO_SUPPORT;
    // Set on a boxing variant: the declared variant it was derived from.
    std::shared_ptr<const BuiltinVariant> originalVariant;
    IsElementWise isElementWise = IsElementWise::NO;

    // No entries, all four behaviour flags set, NO_SUPPORT.
    BuiltinVariant();

    // Derives the type expressions and the support level. Stops the process if a variant with
    // a typed entry declares CanThrow without warnings or errors, or the other way round.
    explicit BuiltinVariant(VariantDeclaration declaration);

    // The same from its fields in order; modules built against the positional form call it.
    BuiltinVariant(void* const developerFunction, OrroFunctionDescriptor functionDescriptor,
                   std::vector<ArgType> inputArgTypes, std::vector<ArgType> outputArgTypes,
                   CallsIntoKeldor mayCallIntoKeldor, HasWarnings mayRaiseWarnings,
                   HasExceptions mayThrowErrors, HasSideEffects mayHaveSideEffects,
                   std::string cppFunctionName, std::string keldorFunctionName,
                   std::string dominantClass, IsElementWise isElementWise);

    BuiltinVariant(const BuiltinVariant&);
    BuiltinVariant(BuiltinVariant&&) noexcept;
    BuiltinVariant& operator=(const BuiltinVariant&);
    BuiltinVariant& operator=(BuiltinVariant&&) noexcept;
    ~BuiltinVariant();

    // Same counts of inputs and outputs and equal input types; nothing else is compared.
    bool operator==(const BuiltinVariant& rhs) const;
    // Fewer inputs first, then fewer outputs, then input types; a boxing variant sorts at the
    // place of its source, directly behind it.
    bool operator<(const BuiltinVariant& rhs) const;

    // Can this variant take the call? Classifies the call's arguments on demand, through the
    // signature's cache (which the signature only points to, so it stays usable as const).
    bool operator==(const VariantSignature& signature) const;
    // Where the call would stand in the order: counts first (no tolerance for nlhs 0), then
    // the input types of the source of a boxing variant against the live types.
    bool operator<(const VariantSignature& signature) const;
    // Neither accepted nor less.
    bool operator>(const VariantSignature& signature) const;
};

// A variant as declared, named field by field; what is not named has the default variant's
// value: no entries, CanThrow, and a function that may call back, warn, fail and have effects.
//
//   BuiltinVariant v({.functionDescriptor = {entry, native, JIT_CALLING_CONVENTION::Direct},
//                     .inputArgTypes = {...}, .mayCallIntoKeldor = V::CallsIntoKeldor::NO, ...});
struct VariantDeclaration {
    OrroFunctionDescriptor functionDescriptor = {};
    void* developerFunction = nullptr;
    std::vector<ArgType> inputArgTypes = {};
    std::vector<ArgType> outputArgTypes = {};
    BuiltinVariant::CallsIntoKeldor mayCallIntoKeldor = BuiltinVariant::CallsIntoKeldor::YES;
    BuiltinVariant::HasWarnings mayRaiseWarnings = BuiltinVariant::HasWarnings::YES;
    BuiltinVariant::HasExceptions mayThrowErrors = BuiltinVariant::HasExceptions::YES;
    BuiltinVariant::HasSideEffects mayHaveSideEffects = BuiltinVariant::HasSideEffects::YES;
    std::string cppFunctionName = {};
    std::string keldorFunctionName = {};
    std::string dominantClass = {};
    BuiltinVariant::IsElementWise isElementWise = BuiltinVariant::IsElementWise::NO;
};

// The level that a variant's own declarations give it: from its call-backs, its output and
// input types, and, for an element-wise kernel, its reports and effects. The constructor starts
// from it; the search lists may raise it later.
BUILTIN_API OrroSupportLevel declaredSupportLevel(const BuiltinVariant& variant);

// The variant whose functionDescriptor this is: how a typed entry or a native function that
// receives the descriptor reaches the rest of its variant. The descriptor must be a living
// variant's own, never a free-standing copy.
BUILTIN_API const BuiltinVariant& enclosingVariant(
    const OrroFunctionDescriptor* descriptor) noexcept;

// The multi-line diagnostic form, with the type expressions and the support level.
BUILTIN_API std::ostream& operator<<(std::ostream& os, const BuiltinVariant& variant);

// A view of variants that somebody else owns: the first and the count. Empty is null and 0.
using VariantArray = std::pair<const BuiltinVariant*, std::size_t>;

}  // namespace Norvane::builtin
