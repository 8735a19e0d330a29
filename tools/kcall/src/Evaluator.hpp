// Evaluation of kcall statements: literals and matrices become arrays, conversions such as
// int32(...) are done here, and every other call goes to a builtin by name, as the interpreter
// calls it (BuiltinFcn::call). Variables live for the evaluator's life; the value of a
// statement without a target becomes ans. true and false are the logical scalars, unless a
// variable has taken the name.
//
// [a, b] = f(x) asks f for as many outputs as there are names; ~ keeps an output nowhere. A
// call that no variant takes is tried again with option words in the other quote: the
// language reads 'descend' and "descend" alike there, so when a char row is refused, each char
// row in turn (the last first), then all of them, go in as strings. A builtin that declares a
// char row takes it on the first try.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <builtin/invoke/BuiltinFcn.hpp>
#include <builtin/variants/BuiltinVariantLists.hpp>
#include <ka/ka.hpp>

#include "CallTimer.hpp"
#include "Syntax.hpp"

namespace kcall {

// Where the evaluator finds builtins.
class BuiltinDirectory {
public:
    virtual ~BuiltinDirectory() = default;
    // The builtin of that name, or null.
    virtual const Norvane::builtin::BuiltinFcn* find(std::string_view name) const = 0;
    // Its search lists, or null if they cannot be shown.
    virtual const Norvane::builtin::builtinreg::BuiltinVariantLists* lists(std::string_view) const {
        return nullptr;
    }
    // Every builtin's name, for completion; none if the directory cannot list them.
    virtual std::vector<std::string> names() const { return {}; }
};

// Told of each attempt at a call of a builtin just before it is made: name, arguments, outputs
// asked for, and for a second attempt what changed since the first (empty on the first).
using CallObserver =
    std::function<void(const std::string&, std::span<kaArray_tag* const>, int, const std::string&)>;

// A mistake in a statement that parsing could not see: an unknown name, a conversion given
// something it cannot convert. The column is that of the expression at fault.
class EvaluationError : public LineError {
public:
    using LineError::LineError;
};

struct Outcome {
    std::string name;          // the variable the value went to
    const kaArray_tag* value;  // held by the evaluator, under that name
};

class Evaluator {
public:
    explicit Evaluator(const BuiltinDirectory& builtins) : builtins_(builtins) {}

    // Runs the statement: the values it assigned, in the order of its names, without those
    // that went to ~. Nothing for an empty statement, or a call that gave no value. A failed
    // statement assigns nothing. Throws EvaluationError, and lets through what a builtin throws.
    std::vector<Outcome> run(const Statement& statement);

    // The variable's value, or null.
    const kaArray_tag* variable(std::string_view name) const;

    // The names that a line could use here and that start with the prefix, sorted: builtins,
    // conversions, true and false, variables. For completion at a prompt.
    std::vector<std::string> namesStartingWith(std::string_view prefix) const;

    void observeCalls(CallObserver observer) { observer_ = std::move(observer); }

    // From now on each call of a builtin, once it has given its value, is timed for about the
    // budget (kcall --time); the timings of a statement are kept until taken.
    void timeCalls(std::chrono::nanoseconds budget) { timeBudget_ = budget; }
    std::vector<CallTiming> takeTimings() { return std::exchange(timings_, {}); }

private:
    ka::ArrayPtr evaluate(const Expr& expr);
    // A call with the outputs asked for: nlhs of them, of which none is null, or for nlhs 0 one
    // that may be null if the builtin gave nothing.
    std::vector<ka::ArrayPtr> call(const Expr& expr, int nlhs);
    std::vector<ka::ArrayPtr> callBuiltin(const Expr& expr, const Norvane::builtin::BuiltinFcn& fcn,
                                          std::vector<kaArray_tag*>& arguments, int nlhs);
    std::vector<ka::ArrayPtr> attempt(const std::string& name,
                                      const Norvane::builtin::BuiltinFcn& fcn,
                                      std::vector<kaArray_tag*>& arguments, int nlhs,
                                      const std::string& note);

    const BuiltinDirectory& builtins_;
    CallObserver observer_;
    std::optional<std::chrono::nanoseconds> timeBudget_;
    std::vector<CallTiming> timings_;
    std::map<std::string, ka::ArrayPtr, std::less<>> variables_;
};

}  // namespace kcall
