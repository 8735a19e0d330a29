#include "Describe.hpp"

#include <sstream>

#include <builtin/declare/Lint.hpp>
#include <builtin/types/ArgType.hpp>
#include <builtin/variants/VariantAcceptance.hpp>
#include <builtin/variants/VariantSignature.hpp>

namespace kcall {

namespace {

using Norvane::builtin::AcceptanceVerdict;
using Norvane::builtin::BuiltinFcn;
using Norvane::builtin::BuiltinVariant;
using Norvane::builtin::ClassificationCache;
using Norvane::builtin::judgeCall;
using Norvane::builtin::VariantSignature;
using Norvane::builtin::declare::signatureText;
using Norvane::builtin::types::ArgType;
using Norvane::builtin::types::OrroSupportLevel;

const char* levelName(OrroSupportLevel level) {
    switch (level) {
        case OrroSupportLevel::EQUIVALENT_SUPPORT: return "engine and invoke";
        case OrroSupportLevel::ORRO_ONLY: return "engine only";
        case OrroSupportLevel::NO_SUPPORT_SCALAR_COMPLEX: return "engine, not with complex scalars";
        case OrroSupportLevel::NO_SUPPORT: return "invoke only";
    }
    return "?";
}

std::string lineOf(const BuiltinVariant& v) {
    std::string line = "  " + signatureText(v) + "   [" + levelName(v.orroSupportLevel);
    if (v.isElementWise == BuiltinVariant::IsElementWise::YES) line += ", element-wise";
    if (v.originalVariant) line += ", boxing";
    if (v.mayCallIntoKeldor == BuiltinVariant::CallsIntoKeldor::YES) line += ", may call back";
    if (v.mayRaiseWarnings == BuiltinVariant::HasWarnings::YES) line += ", may warn";
    if (v.mayThrowErrors == BuiltinVariant::HasExceptions::YES) line += ", may fail";
    if (v.mayHaveSideEffects == BuiltinVariant::HasSideEffects::YES) line += ", side effects";
    return line + "]\n";
}

void writeList(std::ostream& os, const char* title, const std::vector<BuiltinVariant>& list) {
    os << title << " (" << list.size() << "):\n";
    for (const BuiltinVariant& v : list) os << lineOf(v);
}

// Why the variant refused the call, from the library's verdict, with the arguments at fault.
std::string refusal(const BuiltinVariant& v, const AcceptanceVerdict& verdict,
                    std::span<kaArray_tag* const> arguments) {
    if (verdict.outcome == AcceptanceVerdict::Outcome::SHAPES_DO_NOT_BROADCAST) {
        return "element by element, the arrays' sizes do not agree";
    }
    const std::size_t at =
        verdict.arrayInput != AcceptanceVerdict::kNone ? verdict.arrayInput : verdict.input;
    const std::string input =
        "input " + std::to_string(at + 1) + " is " + describeValue(arguments[at]);
    if (verdict.arrayInput != AcceptanceVerdict::kNone) {
        return input + ", neither " + v.inputTypes[at] + " nor an array of it";
    }
    return input + ", which " + v.inputTypes[at] + " does not take";
}

}  // namespace

std::string describeValue(const kaArray_tag* value) {
    if (value == nullptr) return "nothing";
    std::string text = matrix::isSparse(value) ? "sparse " : "";
    if (matrix::isComplex(value)) text += "complex ";
    const std::string& object = ka::objectClassName(value);
    text += object.empty() ? std::string(ka::className(matrix::classId(value))) : object;
    const char* separator = " ";
    for (std::size_t d : matrix::dimensions(value))
        text += std::exchange(separator, "x") + std::to_string(d);
    return text;
}

std::string describeBuiltin(std::string_view name, std::string_view module,
                            const Norvane::builtin::builtinreg::BuiltinVariantLists& lists) {
    std::ostringstream os;
    os << name << " (module " << module << ")\n";
    writeList(os, "invoke, without the engine", lists.searchedByInvokeNoOrro);
    writeList(os, "invoke, after the engine", lists.searchedByInvokeAfterOrro);
    writeList(os, "invoke, after the engine, with a complex scalar",
              lists.searchedByInvokeAfterOrroComplexScalarRhs);
    writeList(os, "the engine", lists.searchedByOrro);
    const auto findings = Norvane::builtin::declare::lintVariantLists(std::string(name), lists);
    os << "lint: " << (findings.empty() ? "nothing to report\n" : "\n");
    for (const auto& finding : findings) os << "  " << finding.message << '\n';
    return os.str();
}

std::string explainCall(std::string_view name, const Norvane::builtin::BuiltinFcn& fcn,
                        std::span<kaArray_tag* const> arguments, std::size_t nlhs) {
    std::ostringstream os;
    os << name << "(";
    const char* separator = "";
    for (kaArray_tag* argument : arguments)
        os << std::exchange(separator, ", ") << describeValue(argument);
    os << "), " << nlhs << (nlhs == 1 ? " output" : " outputs")
       << " asked; invoke searches its list without the engine:\n";
    ClassificationCache cache;
    const VariantSignature signature(nlhs, arguments.size(), arguments.data(), &cache);
    const int nrhs = static_cast<int>(arguments.size());
    const auto [list, count] =
        fcn.searchedByInvoke(BuiltinFcn::VariantsToConsider::InvokeNoOrro, nrhs, arguments.data());
    std::size_t tried = 0;
    for (const BuiltinVariant& v : std::span(list, count)) {
        const AcceptanceVerdict verdict = judgeCall(v, signature);
        if (verdict.outcome == AcceptanceVerdict::Outcome::REFUSED_BY_COUNT) continue;
        os << "  " << ++tried << ". " << signatureText(v) << ": ";
        if (verdict.takes()) {
            os << "takes the call"
               << (verdict.outcome == AcceptanceVerdict::Outcome::TAKES_ELEMENT_WISE
                       ? ", element by element\n"
                       : "\n");
            return os.str();
        }
        os << "refused: " << refusal(v, verdict, arguments) << '\n';
    }
    if (tried == 0)
        os << "  no variant has " << arguments.size() << " inputs and " << nlhs << " outputs\n";
    os << "  no variant takes the call: the default implementation runs, if there is one\n";
    return os.str();
}

}  // namespace kcall
