// The default implementation of a builtin with functions of several outputs: the road of a call
// that asks for two outputs or more.
//
//   1. Take the first variant, in the order of the variants, of a function of several outputs
//      that accepts the arguments as a call of one output would be taken.
//   2. Convert the arguments as invoke does (flag inputs drop out) and call its entry, inside a
//      reporting scope if it was declared to warn.
//   3. Deliver its warnings, and let its error through.
// Any other call goes to the builtin's own fallback, or fails as a call that nothing takes.
#include <builtin/declare/Outputs.hpp>

#include <algorithm>
#include <exception>
#include <string>
#include <vector>

#include <builtin/calling/ReportingScope.hpp>
#include <builtin/types/NativeArgTypes.hpp>
#include <builtin/variants/VariantAcceptance.hpp>
#include <builtin/variants/VariantSignature.hpp>
#include <ka/ka.hpp>

#include "DeclaredBehaviour.hpp"

namespace Norvane::builtin::declare {

namespace {

// What a function of several outputs reports, kept until it returns.
class CollectedReports final : public IOrroBuiltinEnvironment, private IOrroBuiltinAccessors {
public:
    IOrroBuiltinAccessors* GetOrroBuiltinAccessors() override { return this; }
    void deliver() const {
        for (const std::u16string& warning : warnings_) matrix::handleWarning(warning);
        if (error_) std::rethrow_exception(error_);
    }

private:
    void AddWarningMessage(const std::u16string& message) override { warnings_.push_back(message); }
    void SetInternalPendingException() override { error_ = std::current_exception(); }

    std::vector<std::u16string> warnings_;
    std::exception_ptr error_;
};

// The native entry of the default variant; its developer function is the MultiOutputs.
void serveOutputs(int nlhs, kaArray_tag** plhs, int nrhs, kaArray_tag** prhs,
                  OrroFunctionDescriptor* descriptor) {
    static_cast<const MultiOutputs*>(enclosingVariant(descriptor).developerFunction)
        ->call(nlhs, plhs, nrhs, prhs);
}

}  // namespace

void MultiOutputs::add(const std::vector<BuiltinVariant>& variants, MultiEntry entry) {
    for (const BuiltinVariant& variant : variants) {
        if (!variant.originalVariant) {  // boxing variants serve the engine alone
            candidates_.push_back({variant, entry});
        }
    }
    std::stable_sort(candidates_.begin(), candidates_.end(),
                     [](const Candidate& a, const Candidate& b) { return a.variant < b.variant; });
}

BuiltinVariant MultiOutputs::defaultVariant(BuiltinVariant fallback, const std::string& name) {
    fallback_ = std::move(fallback);
    VariantDeclaration declared = detail::declarationOf(name, Options{}, true);
    declared.functionDescriptor = {nullptr, reinterpret_cast<NativeEntry>(&serveOutputs),
                                   JIT_CALLING_CONVENTION::CanThrow};
    declared.developerFunction = this;
    declared.outputArgTypes = {types::plainArrayArgType(0)};
    return BuiltinVariant(std::move(declared));
}

void MultiOutputs::call(int nlhs, kaArray_tag** plhs, int nrhs, kaArray_tag** prhs) const {
    if (nlhs >= 2 && callSeveral(nlhs, plhs, nrhs, prhs)) {
        return;
    }
    const NativeEntry entry = fallback_.functionDescriptor.nativeEntry;
    if (entry == nullptr) {
        throw NoVariantTakesCall();
    }
    auto* const descriptor = const_cast<OrroFunctionDescriptor*>(&fallback_.functionDescriptor);
    reinterpret_cast<BuiltinFcn::ArrayFunction>(entry)(nlhs, plhs, nrhs, prhs, descriptor);
}

bool MultiOutputs::callSeveral(int nlhs, kaArray_tag** plhs, int nrhs, kaArray_tag** prhs) const {
    ClassificationCache cache;
    const VariantSignature signature(1, static_cast<std::size_t>(nrhs), prhs, &cache);
    for (const Candidate& candidate : candidates_) {
        if (!(candidate.variant == signature)) {
            continue;
        }
        ParameterList arguments;
        signature.collectParameters(candidate.variant, arguments);
        auto* const descriptor =
            const_cast<OrroFunctionDescriptor*>(&candidate.variant.functionDescriptor);
        CollectedReports reports;
        if (candidate.variant.mayRaiseWarnings == BuiltinVariant::HasWarnings::YES) {
            const builtinreg::detail::ReportingScope scope(&reports);
            candidate.entry(descriptor, arguments, nlhs, plhs);
        } else {
            candidate.entry(descriptor, arguments, nlhs, plhs);
        }
        reports.deliver();
        return true;
    }
    return false;
}

}  // namespace Norvane::builtin::declare
