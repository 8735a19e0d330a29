// The tables of bad input: each row feeds one bad input and names the exact refusal, the type of
// the exception and its text, or none where the input is to be taken as it is. Every row must
// also leave the live-array count where it was; rows that hand arrays to the library check their
// own reference counts. The rows tried are counted by area and the total is printed at the end.
//
// All areas run in one process, which starts the framework, the builtin service bundles and the
// sample module once (see BadInput.cpp).
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <typeinfo>
#include <vector>

#include <boost/exception/exception.hpp>

#include <builtin/declare/ModuleDirectory.hpp>
#include <builtin/invoke/BuiltinFcn.hpp>
#include <ka/ka.hpp>

namespace badinput {

using namespace Norvane::builtin;

struct Refusal {
    const std::type_info* type;
    bool (*isA)(const std::exception&);  // exactly that type, or Boost's wrapper of it
    std::string message;
};

template <class E>
Refusal refusal(std::string message) {
    // boost::throw_exception throws its wrapexcept<E>, which adds nothing but Boost's own base.
    const auto isA = [](const std::exception& e) {
        return typeid(e) == typeid(E) || (dynamic_cast<const E*>(&e) != nullptr &&
                                          dynamic_cast<const boost::exception*>(&e) != nullptr);
    };
    return {&typeid(E), isA, std::move(message)};
}

// No refusal: the input is taken, and the row checks what became of it.
using Outcome = std::optional<Refusal>;
inline const Outcome taken = std::nullopt;

struct Row {
    std::string input;           // what is fed, for the trace
    std::function<void()> feed;  // feeds it; throws what the library throws
    Outcome expected;
};

// Runs the rows of one area and counts them.
void runTable(const std::string& area, const std::vector<Row>& rows);

// The modules of the sample bundle, started once for the process.
const declare::ModuleDirectory& directory();
const BuiltinFcn& builtin(const char* name);

// Calls the builtin through invoke as the interpreter does, with the arguments made by `make`,
// which stay the caller's. Whether the call succeeds or throws, checks that the arguments kept
// their counts and marks and that plhs[0] is filled only on success; then lets the exception
// through. `check` looks at a result.
void call(const char* name, std::vector<ka::ArrayPtr> arguments, int nlhs = 1,
          std::function<void(const kaArray_tag*)> check = {});

// An argument of a typed entry: an unboxed value, or an array, to which the call gets a reference
// of its own.
struct Argument {
    Argument(Parameter v) : value(std::move(v)) {}     // NOLINT: rows list values and arrays alike
    Argument(ka::ArrayPtr a) : array(std::move(a)) {}  // NOLINT
    Parameter value;
    ka::ArrayPtr array;
};

template <class... A>
std::vector<Argument> arguments(A&&... a) {
    std::vector<Argument> list;
    (list.emplace_back(std::forward<A>(a)), ...);
    return list;
}
template <class... A>
std::vector<ka::ArrayPtr> arrays(A&&... a) {
    std::vector<ka::ArrayPtr> list;
    (list.emplace_back(std::forward<A>(a)), ...);
    return list;
}

// Calls the typed entry of the builtin's variant whose input types print as `inputTypes` (a type
// ending in * stands for those that start with the rest), as the
// engine does: it fills the Parameters, and after the call rethrows an error that the entry
// reported. Each array argument carries a reference of its own into the call, which the entry
// owns; whether the call succeeds or not, checks that the entry gave every such reference back.
void engineCall(const char* name, const std::vector<std::string>& inputTypes,
                std::vector<Argument> arguments);

// A 1-by-1 string of the language's string class.
ka::ArrayPtr string(std::u16string text);

}  // namespace badinput
