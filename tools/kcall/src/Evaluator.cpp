#include "Evaluator.hpp"

#include <algorithm>
#include <utility>
#include <vector>

#include <builtin/invoke/DefaultImplementationChecks.hpp>
#include <builtin/services/BuiltinServices.hpp>
#include <fl/i18n.hpp>
#include <ka/runtime.hpp>

#include "Describe.hpp"
#include "Values.hpp"

namespace kcall {

namespace {

using Norvane::builtin::BuiltinFcn;
using Norvane::builtin::NoVariantTakesCall;

std::string countText(std::size_t n, const char* one, const char* many) {
    return std::to_string(n) + " " + (n == 1 ? one : many);
}

// A 1-by-n char array with n at least 1: what a user writes as 'descend'.
bool isCharRow(const kaArray_tag* array) {
    return matrix::classId(array) == kaCHAR_CLASS && matrix::numberOfDimensions(array) == 2 &&
           matrix::dimensions(array)[0] == 1 && matrix::dimensions(array)[1] >= 1;
}

std::string textOfCharRow(const kaArray_tag* array) {
    return fl::i18n::ustring_to_utf8(std::u16string_view(
        static_cast<const char16_t*>(matrix::data(array)), matrix::numberOfElements(array)));
}

// The sets of inputs to try again as strings: each char row alone, the last first (option words
// come last), then all of them together.
std::vector<std::vector<std::size_t>> optionWordTries(std::span<kaArray_tag* const> arguments) {
    std::vector<std::size_t> rows;
    for (std::size_t i = arguments.size(); i-- > 0;)
        if (arguments[i] != nullptr && isCharRow(arguments[i])) rows.push_back(i);
    std::vector<std::vector<std::size_t>> tries;
    for (const std::size_t row : rows) tries.push_back({row});
    if (rows.size() > 1) tries.push_back(rows);
    return tries;
}

std::string triedAgainNote(const std::vector<std::size_t>& inputs) {
    std::string which;
    for (std::size_t k = inputs.size(); k-- > 0;) {
        which += std::to_string(inputs[k] + 1);
        if (k > 1) which += ", ";
        if (k == 1) which += " and ";
    }
    const bool one = inputs.size() == 1;
    return std::string("no variant takes ") + (one ? "the char row" : "the char rows") +
           " as input" + (one ? " " : "s ") + which + ": kcall tries again with " +
           (one ? "it as a string" : "them as strings") +
           ", as the language reads option words in either quote\n";
}

std::string argumentsText(std::span<kaArray_tag* const> arguments) {
    std::string text = "(";
    const char* separator = "";
    for (const kaArray_tag* argument : arguments)
        text += std::exchange(separator, ", ") + describeArgument(argument);
    return text + ")";
}

// Why no variant took the call, said plainly: too many outputs asked for, or what it was given.
std::string refusal(const std::string& name, const BuiltinFcn& fcn,
                    std::span<kaArray_tag* const> arguments, int nlhs) {
    std::size_t most = 0;
    const auto [all, count] = fcn.getAllVariants();
    for (const auto& v : std::span(all, count)) most = std::max(most, v.outputArgTypes.size());
    if (count != 0 && static_cast<std::size_t>(nlhs) > most) {
        return "too many names: " + name + " gives at most " +
               countText(most, "output", "outputs") + ", and " +
               countText(static_cast<std::size_t>(nlhs), "was", "were") + " asked for";
    }
    return "no variant of " + name + " takes " + argumentsText(arguments) + "; kcall --describe " +
           name + " lists its variants";
}

}  // namespace

std::vector<Outcome> Evaluator::run(const Statement& statement) {
    if (!statement.value) return {};
    const Expr& value = *statement.value;
    const std::size_t names = statement.targets.size();
    std::vector<ka::ArrayPtr> values;
    if (names > 1) {
        if (value.kind != Expr::Kind::Call) {
            throw EvaluationError(value.column, countText(names, "name", "names") +
                                                    " need a call, which can give as many outputs");
        }
        values = call(value, static_cast<int>(names));
    } else if (value.kind == Expr::Kind::Call && names == 0) {
        // A statement that is a call asks for no output, as a call on a line of its own does; a
        // builtin without outputs then gives nothing to show.
        values = call(value, 0);
    } else {
        values.push_back(evaluate(value));
    }
    // Every value is made before any is assigned, so a failed statement assigns nothing.
    std::vector<Outcome> outcomes;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::string name = names == 0 ? "ans" : statement.targets[i];
        if (!values[i] || name == kDropped) continue;
        ka::ArrayPtr& slot = variables_[name];
        slot = std::move(values[i]);
        outcomes.push_back({name, slot.get()});
    }
    return outcomes;
}

const kaArray_tag* Evaluator::variable(std::string_view name) const {
    const auto found = variables_.find(name);
    return found == variables_.end() ? nullptr : found->second.get();
}

std::vector<std::string> Evaluator::namesStartingWith(std::string_view prefix) const {
    std::vector<std::string> names = builtins_.names();
    for (std::string& name : conversionNames()) names.push_back(std::move(name));
    names.insert(names.end(), {"true", "false"});
    for (const auto& [name, value] : variables_) names.push_back(name);
    std::erase_if(names, [prefix](const std::string& name) { return !name.starts_with(prefix); });
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

ka::ArrayPtr Evaluator::evaluate(const Expr& expr) {
    try {
        switch (expr.kind) {
            case Expr::Kind::Number: return numberValue(expr.number, expr.imaginary);
            case Expr::Kind::Numbers:
                return ka::createFrom<double>({1, expr.values.size()}, expr.values);
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
                std::vector<ka::ArrayPtr> values = call(expr, 1);
                if (!values[0]) throw EvaluationError(expr.column, expr.text + " gave no value");
                return std::move(values[0]);
            }
            case Expr::Kind::Matrix: {
                // A row of plain numbers is the matrix already: no second copy of a large one.
                if (expr.rows.size() == 1 && expr.rows[0].size() == 1 &&
                    expr.rows[0][0]->kind == Expr::Kind::Numbers) {
                    return evaluate(*expr.rows[0][0]);
                }
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

std::vector<ka::ArrayPtr> Evaluator::call(const Expr& expr, int nlhs) {
    std::vector<ka::ArrayPtr> held;
    held.reserve(expr.arguments.size());
    for (const ExprPtr& argument : expr.arguments) held.push_back(evaluate(*argument));

    if (const auto target = conversionClass(expr.text)) {
        if (held.size() != 1) {
            throw EvaluationError(expr.column, expr.text + " takes one argument");
        }
        if (nlhs > 1) {
            throw EvaluationError(expr.column, "too many names: " + expr.text +
                                                   " gives one output, and " +
                                                   std::to_string(nlhs) + " were asked for");
        }
        std::vector<ka::ArrayPtr> values;
        values.push_back(convertTo(*target, held[0].get()));
        return values;
    }
    const BuiltinFcn* fcn = builtins_.find(expr.text);
    if (fcn == nullptr) throw EvaluationError(expr.column, "unknown function '" + expr.text + "'");

    std::vector<kaArray_tag*> arguments;
    arguments.reserve(held.size());
    for (const ka::ArrayPtr& argument : held) arguments.push_back(argument.get());
    return callBuiltin(expr, *fcn, arguments, nlhs);
}

std::vector<ka::ArrayPtr> Evaluator::callBuiltin(const Expr& expr, const BuiltinFcn& fcn,
                                                 std::vector<kaArray_tag*>& arguments, int nlhs) {
    try {
        try {
            return attempt(expr.text, fcn, arguments, nlhs, "");
        } catch (const NoVariantTakesCall&) {
            if (!Norvane::builtin::getHeldService<Norvane::builtin::StringSupport>()) throw;
            for (const std::vector<std::size_t>& inputs : optionWordTries(arguments)) {
                std::vector<ka::ArrayPtr> strings;
                std::vector<kaArray_tag*> retried = arguments;
                for (const std::size_t i : inputs) {
                    strings.push_back(stringValue(textOfCharRow(arguments[i])));
                    retried[i] = strings.back().get();
                }
                try {
                    return attempt(expr.text, fcn, retried, nlhs, triedAgainNote(inputs));
                } catch (const NoVariantTakesCall&) {
                }
            }
            throw;
        }
    } catch (const NoVariantTakesCall&) {
        // Said with what the call was given, as the user wrote it.
        throw EvaluationError(expr.column, refusal(expr.text, fcn, arguments, nlhs));
    } catch (const Norvane::builtin::UnassignedOutputsException&) {
        throw EvaluationError(expr.column, nlhs > 1 ? "too many names: " + expr.text +
                                                          " gives fewer than " +
                                                          std::to_string(nlhs) + " outputs here"
                                                    : expr.text + " gave no value");
    }
}

std::vector<ka::ArrayPtr> Evaluator::attempt(const std::string& name, const BuiltinFcn& fcn,
                                             std::vector<kaArray_tag*>& arguments, int nlhs,
                                             const std::string& note) {
    if (observer_) observer_(name, arguments, nlhs, note);
    const auto once = [&] {
        // An output that a call leaves null it has not given; one it asks for without an
        // output is still kept, in the first place, if the builtin gives one.
        const auto count = static_cast<std::size_t>(std::max(nlhs, 1));
        std::vector<ka::ArrayPtr> outputs(count);
        std::vector<kaArray_tag*> plhs(count, nullptr);
        fcn.call(nlhs, plhs.data(), static_cast<int>(arguments.size()), arguments.data());
        for (std::size_t k = 0; k < count; ++k) outputs[k].reset(plhs[k]);
        return outputs;
    };
    std::vector<ka::ArrayPtr> outputs = once();
    if (timeBudget_) {
        // The call's warnings have been said once; the timed runs drop theirs.
        const ka::ThreadWarningScope quiet([](const std::u16string&) {});
        timings_.push_back(timeCall(
            name + argumentsText(arguments), [&] { once(); }, *timeBudget_));
    }
    return outputs;
}

}  // namespace kcall
