// The options of one declaration, written after the function:
//
//   plus.def(&addDoubles, pure, elementwise);
//   round.def(&roundEven, pure, flag(1, "even"), cppName("roundEven"));
//
// What the author declares about the function (behaviour) has safe defaults: a function may
// call back into the interpreter and may have side effects unless declared otherwise (pure,
// noCallbacks, noSideEffects), which keeps it from the engine. A function of the CanThrow form
// may warn and may fail unless declared otherwise (noWarnings, noErrors); the other forms can do
// neither. A false "no" is caught at run time by the guards of a default implementation, and
// by the engine's trust otherwise, so declare only what holds.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>

#include <builtin/declare/Callables.hpp>
#include <builtin/types/TypeVocabulary.hpp>
#include <builtin/variants/MakeVariant.hpp>

namespace Norvane::builtin::declare {

struct Options {
    std::optional<bool> callsBack;
    std::optional<bool> sideEffects;
    std::optional<bool> warns;
    std::optional<bool> errors;
    types::SignatureTolerance tolerance = types::SignatureTolerance::STRICT;
    builtinreg::detail::FlagList flags;
    std::string cppName;
    std::string dominantClass;
};

namespace option {

// Each option is a value whose applyTo writes its part of the Options.
struct Pure {
    void applyTo(Options& o) const {
        o.callsBack = false;
        o.sideEffects = false;
    }
};
struct NoCallbacks {
    void applyTo(Options& o) const { o.callsBack = false; }
};
struct NoSideEffects {
    void applyTo(Options& o) const { o.sideEffects = false; }
};
struct NoWarnings {
    void applyTo(Options& o) const { o.warns = false; }
};
struct NoErrors {
    void applyTo(Options& o) const { o.errors = false; }
};
struct Relaxed {
    void applyTo(Options& o) const { o.tolerance = types::SignatureTolerance::RELAXED; }
};
// A function that warns through warn() (ReportingScope.hpp), or that throws to fail: it is
// called inside a scope that takes its warnings and reports what it throws as the call's error,
// so that the engine too knows that it reports. Without warns, warn() throws std::logic_error;
// without throws, an exception still becomes the call's error, but the engine is told that the
// function never fails.
struct Warns {
    void applyTo(Options& o) const { o.warns = true; }
};
struct Throws {
    void applyTo(Options& o) const { o.errors = true; }
};
// The kernel of a scalar function that answers for arrays element by element: a function of
// one to four numbers that returns a number. Its typed entry is the lifted one.
struct ElementWise {
    void applyTo(Options&) const {}
};
// Beside an element-wise kernel known at compile time, a kernel over whole runs:
// void B{}(const A0* a0, ..., R* out, std::size_t n) computes out[i] = f(a0[i], ...) for i below
// n. `out` may be one of the inputs exactly. The lifted loops call it for every run; the scalar
// kernel stays what scalars and the engine call.
template <class B>
struct Block {
    void applyTo(Options&) const {}
};
// Engine-only boxing variants: the engine may call the function with unboxed values of types
// B... (one per input), which the entry boxes into what the function takes. Handled by def.
template <class... B>
struct Boxed {
    void applyTo(Options&) const {}
};
struct Flag {
    std::size_t position;
    std::string text;
    void applyTo(Options& o) const { o.flags.emplace_back(position, text); }
};
struct CppName {
    std::string name;
    void applyTo(Options& o) const { o.cppName = name; }
};
struct DominantClass {
    std::string name;
    void applyTo(Options& o) const { o.dominantClass = name; }
};

}  // namespace option

inline constexpr option::Pure pure;
inline constexpr option::NoCallbacks noCallbacks;
inline constexpr option::NoSideEffects noSideEffects;
inline constexpr option::NoWarnings noWarnings;
inline constexpr option::NoErrors noErrors;
inline constexpr option::Relaxed relaxed;
inline constexpr option::ElementWise elementwise;
inline constexpr option::Warns warns;
inline constexpr option::Throws throws;

// The block kernel of an element-wise declaration: block<&expRun>() for a function, or
// block([](const double* x, double* out, std::size_t n) { ... }) for a lambda or functor.
template <auto Fn>
constexpr option::Block<Function<Fn>> block() {
    return {};
}
template <class B>
constexpr option::Block<B> block(B) {
    return {};
}

// A boxing declaration: boxed<double>() lets the engine call a function of one array with a
// double, which arrives as a 1-by-1 array.
template <class... B>
constexpr option::Boxed<B...> boxed() {
    return {};
}
// A literal flag ('even', 'rows') at a position of the final input list, counting the flags.
inline option::Flag flag(std::size_t position, std::string text) {
    return {position, std::move(text)};
}
// The name of the native function in logs and diagnostics; the builtin's name by default.
inline option::CppName cppName(std::string name) {
    return {std::move(name)};
}
// The class on whose behalf the function runs ("double"); empty by default.
inline option::DominantClass dominantClass(std::string name) {
    return {std::move(name)};
}

}  // namespace Norvane::builtin::declare
