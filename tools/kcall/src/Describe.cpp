#include "Describe.hpp"

#include <sstream>

#include <builtin/declare/Lint.hpp>
#include <builtin/types/ArgType.hpp>
#include <builtin/variants/VariantSignature.hpp>

namespace kcall {

namespace {

using Norvane::builtin::BuiltinVariant;
using Norvane::builtin::ClassificationCache;
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

bool fitsArity(const BuiltinVariant& v, std::size_t nrhs, std::size_t nlhs) {
    const std::size_t outputs = v.outputArgTypes.size();
    return v.inputArgTypes.size() == nrhs && (outputs == nlhs || (nlhs == 0 && outputs == 1));
}

struct Verdict {
    bool takes = false;
    bool asArrays = false;  // taken element by element
    std::string why;        // of a refusal
};

// Whether the variant takes the call, and why not. The first look is at the declared types; an
// element-wise variant looks again at them as arrays, then at the shapes.
Verdict verdictOf(const BuiltinVariant& v, const VariantSignature& signature,
                  std::span<kaArray_tag* const> arguments) {
    const auto refusedAt = [&](auto typeAt) -> std::size_t {
        for (std::size_t i = 0; i < v.inputArgTypes.size(); ++i) {
            if (!Norvane::builtin::types::isAcceptable(typeAt(i), signature.getArgType(i)))
                return i;
        }
        return v.inputArgTypes.size();
    };
    const std::size_t first = refusedAt([&](std::size_t i) { return v.inputArgTypes[i]; });
    if (first == v.inputArgTypes.size()) return {true, false, {}};
    const std::string input =
        "input " + std::to_string(first + 1) + " is " + describeValue(arguments[first]);
    if (v.isElementWise != BuiltinVariant::IsElementWise::YES) {
        return {false, false, input + ", which " + v.inputTypes[first] + " does not take"};
    }
    const std::size_t asArrays = refusedAt([&](std::size_t i) {
        return Norvane::builtin::types::asElementWiseArrayType(v.inputArgTypes[i]);
    });
    if (asArrays != v.inputArgTypes.size()) {
        return {false, false,
                "input " + std::to_string(asArrays + 1) + " is " +
                    describeValue(arguments[asArrays]) + ", neither " + v.inputTypes[asArrays] +
                    " nor an array of it"};
    }
    if (v == signature) return {true, true, {}};
    return {false, false, "element by element, the arrays' sizes do not agree"};
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

std::string explainCall(std::string_view name,
                        const Norvane::builtin::builtinreg::BuiltinVariantLists& lists,
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
    std::size_t tried = 0;
    for (const BuiltinVariant& v : lists.searchedByInvokeNoOrro) {
        if (!fitsArity(v, arguments.size(), nlhs)) continue;
        ++tried;
        const Verdict verdict = verdictOf(v, signature, arguments);
        os << "  " << tried << ". " << signatureText(v) << ": ";
        if (verdict.takes) {
            os << "takes the call" << (verdict.asArrays ? ", element by element\n" : "\n");
            return os.str();
        }
        os << "refused: " << verdict.why << '\n';
    }
    if (tried == 0)
        os << "  no variant has " << arguments.size() << " inputs and " << nlhs << " outputs\n";
    os << "  no variant takes the call: the default implementation runs, if there is one\n";
    return os.str();
}

}  // namespace kcall
