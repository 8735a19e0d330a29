#include "Evaluator.hpp"

#include <utility>
#include <vector>

#include "Describe.hpp"
#include "Values.hpp"

namespace kcall {

std::optional<Outcome> Evaluator::run(const Statement& statement) {
    if (!statement.value) return std::nullopt;
    // A statement that is a call asks for no output, as a call on a line of its own does; a
    // builtin without outputs then gives nothing to show.
    ka::ArrayPtr value = statement.value->kind == Expr::Kind::Call && statement.target.empty()
                             ? call(*statement.value, 0)
                             : evaluate(*statement.value);
    if (!value) return std::nullopt;
    const std::string name = statement.target.empty() ? "ans" : statement.target;
    ka::ArrayPtr& slot = variables_[name];
    slot = std::move(value);
    return Outcome{name, slot.get()};
}

const kaArray_tag* Evaluator::variable(std::string_view name) const {
    const auto found = variables_.find(name);
    return found == variables_.end() ? nullptr : found->second.get();
}

ka::ArrayPtr Evaluator::evaluate(const Expr& expr) {
    try {
        switch (expr.kind) {
            case Expr::Kind::Number: return numberValue(expr.number, expr.imaginary);
            case Expr::Kind::CharRow: return charRowValue(expr.text);
            case Expr::Kind::String: return stringValue(expr.text);
            case Expr::Kind::Name: {
                const kaArray_tag* value = variable(expr.text);
                if (value == nullptr && (expr.text == "true" || expr.text == "false")) {
                    return convertTo(kaLOGICAL_CLASS,
                                     numberValue(expr.text == "true" ? 1 : 0, false).get());
                }
                if (value == nullptr) {
                    throw EvaluationError(expr.column, "'" + expr.text + "' is not defined");
                }
                matrix::takeReference(const_cast<kaArray_tag*>(value));
                return ka::ArrayPtr(const_cast<kaArray_tag*>(value));
            }
            case Expr::Kind::Call: {
                ka::ArrayPtr value = call(expr, 1);
                if (!value) throw EvaluationError(expr.column, expr.text + " gave no value");
                return value;
            }
            case Expr::Kind::Matrix: {
                std::vector<std::vector<ka::ArrayPtr>> held;
                std::vector<std::vector<const kaArray_tag*>> rows;
                for (const auto& row : expr.rows) {
                    held.emplace_back();
                    rows.emplace_back();
                    for (const ExprPtr& element : row) {
                        held.back().push_back(evaluate(*element));
                        rows.back().push_back(held.back().back().get());
                    }
                }
                return concatenate(rows);
            }
        }
    } catch (const std::invalid_argument& e) {
        throw EvaluationError(expr.column, e.what());
    }
    throw std::logic_error("unknown kind of expression");
}

ka::ArrayPtr Evaluator::call(const Expr& expr, int nlhs) {
    std::vector<ka::ArrayPtr> held;
    held.reserve(expr.arguments.size());
    for (const ExprPtr& argument : expr.arguments) held.push_back(evaluate(*argument));

    if (const auto target = conversionClass(expr.text)) {
        if (held.size() != 1) {
            throw EvaluationError(expr.column, expr.text + " takes one argument");
        }
        return convertTo(*target, held[0].get());
    }
    const Norvane::builtin::BuiltinFcn* fcn = builtins_.find(expr.text);
    if (fcn == nullptr) throw EvaluationError(expr.column, "unknown function '" + expr.text + "'");

    std::vector<kaArray_tag*> arguments;
    arguments.reserve(held.size());
    for (const ka::ArrayPtr& argument : held) arguments.push_back(argument.get());
    if (observer_) observer_(expr.text, arguments, nlhs);
    kaArray_tag* result[1] = {nullptr};
    try {
        fcn->call(nlhs, result, static_cast<int>(arguments.size()), arguments.data());
    } catch (const Norvane::builtin::NoVariantTakesCall&) {
        // Said plainly, with what the call was given.
        std::string message = "no variant of " + expr.text + " takes (";
        const char* separator = "";
        for (kaArray_tag* argument : arguments)
            message += std::exchange(separator, ", ") + describeValue(argument);
        throw EvaluationError(expr.column,
                              message + "); kcall --describe " + expr.text + " lists its variants");
    }
    return ka::ArrayPtr(result[0]);
}

}  // namespace kcall
