#include "Describe.hpp"

#include <sstream>

#include <builtin/declare/Lint.hpp>
#include <builtin/declare/ReadableTypes.hpp>
#include <builtin/services/BuiltinServices.hpp>
#include <builtin/types/ArgType.hpp>
#include <builtin/variants/VariantAcceptance.hpp>
#include <builtin/variants/VariantSignature.hpp>
#include <fl/i18n.hpp>

namespace kcall {

namespace {

using Norvane::builtin::AcceptanceVerdict;
using Norvane::builtin::BuiltinFcn;
using Norvane::builtin::BuiltinVariant;
using Norvane::builtin::ClassificationCache;
using Norvane::builtin::judgeCall;
using Norvane::builtin::VariantSignature;
using Norvane::builtin::declare::readableType;
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

// The longest char row whose text an argument's description shows.
constexpr std::size_t kShownText = 40;

std::string lineOf(const BuiltinVariant& v, TypeWording wording) {
    std::string line = "  " + signatureText(v, wording) + "   [" + levelName(v.orroSupportLevel);
    if (v.isElementWise == BuiltinVariant::IsElementWise::YES) line += ", element-wise";
    if (v.originalVariant) line += ", boxing";
    if (v.mayCallIntoKeldor == BuiltinVariant::CallsIntoKeldor::YES) line += ", may call back";
    if (v.mayRaiseWarnings == BuiltinVariant::HasWarnings::YES) line += ", may warn";
    if (v.mayThrowErrors == BuiltinVariant::HasExceptions::YES) line += ", may fail";
    if (v.mayHaveSideEffects == BuiltinVariant::HasSideEffects::YES) line += ", side effects";
    return line + "]\n";
}

void writeList(std::ostream& os, const char* title, const std::vector<BuiltinVariant>& list,
               TypeWording wording) {
    os << title << " (" << list.size() << "):\n";
    for (const BuiltinVariant& v : list) os << lineOf(v, wording);
}

// Why the variant refused the call, from the library's verdict, with the arguments at fault.
std::string refusal(const BuiltinVariant& v, const AcceptanceVerdict& verdict,
                    std::span<kaArray_tag* const> arguments, TypeWording wording) {
    if (verdict.outcome == AcceptanceVerdict::Outcome::SHAPES_DO_NOT_BROADCAST) {
        return "element by element, the arrays' sizes do not agree";
    }
    const std::size_t at =
        verdict.arrayInput != AcceptanceVerdict::kNone ? verdict.arrayInput : verdict.input;
    const std::string input =
        "input " + std::to_string(at + 1) + " is " + describeArgument(arguments[at]);
    const std::string declared =
        wording == TypeWording::READABLE ? readableType(v.inputArgTypes[at]) : v.inputTypes[at];
    // An option word has no array of it: element by element, it refused as it stands.
    if (verdict.arrayInput != AcceptanceVerdict::kNone &&
        !std::holds_alternative<Norvane::builtin::types::FlagInputType>(v.inputArgTypes[at])) {
        return input + ", neither " + declared + " nor an array of it";
    }
    return input + ", which " + declared + " does not take";
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

std::string describeArgument(const kaArray_tag* value) {
    if (value == nullptr) return describeValue(value);
    const std::size_t n = matrix::numberOfElements(value);
    if (matrix::classId(value) == kaCHAR_CLASS && matrix::numberOfDimensions(value) == 2 &&
        matrix::dimensions(value)[0] == 1 && n >= 1 && n <= kShownText) {
        const std::u16string_view text(static_cast<const char16_t*>(matrix::data(value)), n);
        return "'" + fl::i18n::ustring_to_utf8(text) + "' (" + describeValue(value) + ")";
    }
    const auto& strings = Norvane::builtin::getHeldService<Norvane::builtin::StringSupport>();
    if (strings && strings->isString(value) && n == 1) {
        const std::string text = strings->getStringUtf8(value, 0);
        if (text.size() <= kShownText) return "\"" + text + "\" (string)";
    }
    return describeValue(value);
}

std::string describeBuiltin(std::string_view name, std::string_view module,
                            const Norvane::builtin::builtinreg::BuiltinVariantLists& lists,
                            TypeWording wording) {
    std::ostringstream os;
    os << name << " (module " << module << ")\n";
    writeList(os, "invoke, without the engine", lists.searchedByInvokeNoOrro, wording);
    writeList(os, "invoke, after the engine", lists.searchedByInvokeAfterOrro, wording);
    writeList(os, "invoke, after the engine, with a complex scalar",
              lists.searchedByInvokeAfterOrroComplexScalarRhs, wording);
    writeList(os, "the engine", lists.searchedByOrro, wording);
    const auto findings =
        Norvane::builtin::declare::lintVariantLists(std::string(name), lists, wording);
    os << "lint: " << (findings.empty() ? "nothing to report\n" : "\n");
    for (const auto& finding : findings) os << "  " << finding.message << '\n';
    return os.str();
}

std::string explainCall(std::string_view name, const Norvane::builtin::BuiltinFcn& fcn,
                        std::span<kaArray_tag* const> arguments, std::size_t nlhs,
                        TypeWording wording) {
    std::ostringstream os;
    os << name << "(";
    const char* separator = "";
    for (kaArray_tag* argument : arguments)
        os << std::exchange(separator, ", ") << describeArgument(argument);
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
        os << "  " << ++tried << ". " << signatureText(v, wording) << ": ";
        if (verdict.takes()) {
            os << "takes the call"
               << (verdict.outcome == AcceptanceVerdict::Outcome::TAKES_ELEMENT_WISE
                       ? ", element by element\n"
                       : "\n");
            return os.str();
        }
        os << "refused: " << refusal(v, verdict, arguments, wording) << '\n';
    }
    if (tried == 0)
        os << "  no variant has " << arguments.size() << " inputs and " << nlhs << " outputs\n";
    os << "  no variant takes the call: the default implementation runs, if there is one\n";
    return os.str();
}

}  // namespace kcall
