// The registration lint. A variant is judged against the variants ahead of it in invoke's list
// without the engine, which is the list an interpreted call searches.
#include <builtin/declare/Lint.hpp>

#include <sstream>
#include <utility>

#include <builtin/declare/ReadableTypes.hpp>

namespace Norvane::builtin::declare {

std::string signatureText(const BuiltinVariant& v, TypeWording wording) {
    std::vector<std::string> inputs = v.inputTypes;
    std::string output = v.outputTypes.empty() ? std::string() : v.outputTypes.front();
    if (wording == TypeWording::READABLE) {
        inputs.clear();
        for (const ArgType& input : v.inputArgTypes) inputs.push_back(readableType(input));
        if (!v.outputArgTypes.empty())
            output = readableType(v.outputArgTypes.front(), types::ArgTypeDirection::OUTPUT);
    }
    std::ostringstream text;
    text << v.cppFunctionName << "(";
    const char* separator = "";
    for (const std::string& input : inputs) text << std::exchange(separator, ", ") << input;
    text << ")";
    if (!output.empty()) text << " -> " << output;
    return text.str();
}

namespace {

using V = BuiltinVariant;

bool lifted(const BuiltinVariant& v) {
    return v.isElementWise == V::IsElementWise::YES;
}

std::size_t arrayInputs(const BuiltinVariant& v) {
    std::size_t count = 0;
    for (const ArgType& input : v.inputArgTypes)
        if (!types::skipDuringInvoke(input)) ++count;
    return count;
}

// Whether `earlier` takes an argument of type `taken`: as declared, or, lifted over one array,
// as an array of its element.
bool takes(const BuiltinVariant& earlier, const ArgType& declared, const ArgType& taken,
           bool oneArray) {
    return types::isAcceptable(declared, taken) ||
           (lifted(earlier) && oneArray &&
            types::isAcceptable(types::asElementWiseArrayType(declared), taken));
}

// Whether `earlier` takes every call that `later` takes. A lifted `later` takes arrays of its
// element too, which `earlier` must then take as well.
bool covers(const BuiltinVariant& earlier, const BuiltinVariant& later) {
    if (earlier.inputArgTypes.size() != later.inputArgTypes.size() ||
        earlier.outputArgTypes.size() != later.outputArgTypes.size()) {
        return false;
    }
    const bool oneArray = arrayInputs(later) == 1;
    for (std::size_t i = 0; i < later.inputArgTypes.size(); ++i) {
        const ArgType& declared = earlier.inputArgTypes[i];
        const ArgType& taken = later.inputArgTypes[i];
        if (!takes(earlier, declared, taken, oneArray)) return false;
        if (lifted(later) &&
            !takes(earlier, declared, types::asElementWiseArrayType(taken), oneArray))
            return false;
    }
    return true;
}

}  // namespace

std::vector<LintFinding> lintVariantLists(const std::string& name,
                                          const builtinreg::BuiltinVariantLists& lists,
                                          TypeWording wording) {
    const auto signatureOf = [wording](const BuiltinVariant& v) {
        return signatureText(v, wording);
    };
    std::vector<LintFinding> findings;
    const std::vector<BuiltinVariant>& list = lists.searchedByInvokeNoOrro;
    for (std::size_t j = 0; j < list.size(); ++j) {
        const BuiltinVariant& later = list[j];
        if (later.originalVariant) continue;
        for (std::size_t i = 0; i < j; ++i) {
            const BuiltinVariant& earlier = list[i];
            const bool same = earlier == later;
            if (same || covers(earlier, later)) {
                findings.push_back(
                    {LintFinding::Kind::UNREACHABLE,
                     name + ": " + signatureOf(later) + " is never called: " +
                         (same ? "it has the signature of " : "every call it takes goes to ") +
                         signatureOf(earlier) + ", which comes first"});
                break;
            }
        }
    }
    for (const BuiltinVariant& v : lists.all) {
        if (!v.originalVariant && v.orroSupportLevel == OrroSupportLevel::NO_SUPPORT &&
            declaredSupportLevel(v) != OrroSupportLevel::NO_SUPPORT) {
            findings.push_back(
                {LintFinding::Kind::LOWERED,
                 name + ": " + signatureOf(v) +
                     " is never offered to the engine: a variant "
                     "ahead of it that the engine cannot call takes calls it would take"});
        }
    }
    return findings;
}

}  // namespace Norvane::builtin::declare
