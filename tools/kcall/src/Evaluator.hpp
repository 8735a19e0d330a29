// Evaluation of kcall statements: literals and matrices become arrays, conversions such as
// int32(...) are done here, and every other call goes to a builtin by name, as the interpreter
// calls it (BuiltinFcn::call). Variables live for the evaluator's life; the value of a
// statement without a target becomes ans. true and false are the logical scalars, unless a
// variable has taken the name.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include <builtin/invoke/BuiltinFcn.hpp>
#include <builtin/variants/BuiltinVariantLists.hpp>
#include <ka/ka.hpp>

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
};

// Told of each call of a builtin just before it is made: name, arguments, outputs asked for.
using CallObserver = std::function<void(const std::string&, std::span<kaArray_tag* const>, int)>;

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

    // Runs the statement. No outcome for an empty statement, or a call that gave no value.
    // Throws EvaluationError, and lets through what a builtin throws.
    std::optional<Outcome> run(const Statement& statement);

    // The variable's value, or null.
    const kaArray_tag* variable(std::string_view name) const;

    void observeCalls(CallObserver observer) { observer_ = std::move(observer); }

private:
    ka::ArrayPtr evaluate(const Expr& expr);
    // A call with the outputs asked for (0 or 1); null if the builtin gave nothing.
    ka::ArrayPtr call(const Expr& expr, int nlhs);

    const BuiltinDirectory& builtins_;
    CallObserver observer_;
    std::map<std::string, ka::ArrayPtr, std::less<>> variables_;
};

}  // namespace kcall
