// The road of an interpreted call, from arrays to a typed native function and back.
//
//   1. Choose the list: no Orro, after Orro, or after Orro with a complex scalar argument.
//   2. Find the first variant of the call's arity by binary search (the list is sorted by
//      input count, then output count), walk the variants of that arity, and take the first
//      that accepts the arguments.
//   3. Convert the arguments to Parameters (flag inputs drop out) and call the typed entry with
//      an Environment that gathers warnings and the error.
//   4. If the entry says so, deliver the warnings, then rethrow the error.
//   5. Box the result into plhs[0].
// A call that no variant takes goes to the default implementation.
//
// All state of a call lives in this frame: up to 15 classified arguments and 8 Parameters need
// no allocation, and the Environment is touched only when the native function reports.
#include <builtin/invoke/BuiltinFcn.hpp>

#include <algorithm>
#include <exception>
#include <memory>
#include <stdexcept>
#include <vector>

#include <boost/variant/get.hpp>

#include <builtin/variants/VariantAcceptance.hpp>
#include <builtin/variants/VariantSignature.hpp>
#include <ka/ka.hpp>

#include "../calling/ParameterToKaArray.hpp"

namespace Norvane::builtin {

namespace {

// The interpreter's reporting environment for one call. The last exception recorded wins.
struct Environment final : public IOrroBuiltinEnvironment, private IOrroBuiltinAccessors {
    std::vector<std::u16string>* warnings;
    std::exception_ptr* pendingException;

    Environment(std::vector<std::u16string>* warningList, std::exception_ptr* exception)
        : warnings(warningList), pendingException(exception) {}

    IOrroBuiltinAccessors* GetOrroBuiltinAccessors() override { return this; }
    void AddWarningMessage(const std::u16string& message) override { warnings->push_back(message); }
    void SetInternalPendingException() override { *pendingException = std::current_exception(); }
};

bool holdsArray(const Parameter& parameter) {
    return parameter.which() == static_cast<int>(parameterIndexOf<kaArray_tag*>);
}

// Drops the reference an array Parameter carries; other alternatives own nothing.
void releaseIfArray(const Parameter& parameter) noexcept {
    if (holdsArray(parameter)) {
        matrix::releaseReference(boost::get<kaArray_tag*>(parameter));
    }
}

// Releases a result that has not been handed to anybody, when the call is left early.
class ResultGuard {
public:
    explicit ResultGuard(const Parameter& result) : result_(result) {}
    ResultGuard(const ResultGuard&) = delete;
    ResultGuard& operator=(const ResultGuard&) = delete;
    ~ResultGuard() {
        if (owned_) {
            releaseIfArray(result_);
        }
    }
    void handedOn() { owned_ = false; }

private:
    const Parameter& result_;
    bool owned_ = true;
};

bool hasComplexScalar(int nrhs, kaArray_tag* const* prhs) {
    for (int i = 0; i < nrhs; ++i) {
        const kaArray_tag* array = prhs[i];
        if (array != nullptr && matrix::isComplex(array) &&
            matrix::detail::noninlined::ka_array_api::kaIsScalar(array)) {
            return true;
        }
    }
    return false;
}

// The first variant of the list that accepts the call; precedence is the order of the list. The
// candidates start where a binary search puts the call's counts, and the walk stops at the first
// that accepts, which is usually among the first few, so the end of the candidates is found by
// looking at each as it comes rather than by a second search.
const BuiltinVariant* findVariant(const VariantArray& list, const VariantSignature& signature) {
    const BuiltinVariant* const end = list.first + list.second;
    const detail::CallArity arity(signature.nlhs, signature.nrhs);
    const BuiltinVariant* candidate = std::partition_point(
        list.first, end, [&arity](const BuiltinVariant& v) { return arity.sortsBefore(v); });
    for (; candidate != end && arity.accepts(*candidate); ++candidate) {
        if (detail::acceptsArguments(*candidate, signature)) {
            return candidate;
        }
    }
    return nullptr;
}

// The Parameters of the chosen variant. A flag input has done its work in matching and is not
// passed on. If a conversion throws, the references taken so far are given back.
void collectArguments(const BuiltinVariant& variant, const VariantSignature& signature,
                      ParameterList& arguments) {
    if (signature.nrhs > arguments.capacity()) {
        arguments.reserve(signature.nrhs);
    }
    try {
        for (std::size_t i = 0; i < signature.nrhs; ++i) {
            const ArgType& declared = variant.inputArgTypes[i];
            if (!types::skipDuringInvoke(declared)) {
                arguments.push_back(signature.toParameter(i, &declared));
            }
        }
    } catch (...) {
        std::for_each(arguments.begin(), arguments.end(), releaseIfArray);
        throw;
    }
}

// Calls the typed entry of the variant. A wrapper that finds an argument in another alternative
// than its native function takes throws boost::bad_get before it calls anything, so the
// references that the arguments carry were never handed on; they are given back here.
Parameter callTypedEntry(const BuiltinVariant& variant, Environment& environment, bool& pending,
                         const ParameterList& arguments) {
    // Typed entries take the descriptor as a mutable pointer; they only read it.
    auto* const descriptor = const_cast<OrroFunctionDescriptor*>(&variant.functionDescriptor);
    try {
        return descriptor->typedEntry(descriptor, &environment, pending, arguments);
    } catch (const boost::bad_get&) {
        std::for_each(arguments.begin(), arguments.end(), releaseIfArray);
        throw;
    }
}

void deliverReports(const std::vector<std::u16string>& warnings,
                    const std::exception_ptr& pendingException) {
    for (const std::u16string& warning : warnings) {
        matrix::handleWarning(warning);
    }
    if (pendingException) {
        std::rethrow_exception(pendingException);
    }
}

void deliverResult(const Parameter& result, ResultGuard& guard, const BuiltinVariant& variant,
                   std::size_t nlhs, kaArray_tag** plhs) {
    if (nlhs == 1) {
        plhs[0] = parameterToKaArray(result, variant);
        guard.handedOn();
    } else if (nlhs == 0 && !variant.outputArgTypes.empty()) {
        kaArray_tag* const array = parameterToKaArray(result, variant);
        guard.handedOn();
        if (plhs != nullptr) {
            plhs[0] = array;
        } else {
            // Released rather than destroyed outright: a native function may have returned an
            // array that somebody else also holds.
            matrix::releaseReference(array);
        }
    }
}

// Steps 2 to 5 of the road; false if no variant of the list takes the call.
bool invokeFirstAccepting(const VariantArray& list, std::size_t nlhs, kaArray_tag** plhs,
                          std::size_t nrhs, kaArray_tag** prhs) {
    ClassificationCache cache;
    const VariantSignature signature(nlhs, nrhs, prhs, &cache);
    const BuiltinVariant* const variant = findVariant(list, signature);
    if (variant == nullptr) {
        return false;
    }
    ParameterList arguments;
    collectArguments(*variant, signature, arguments);

    std::vector<std::u16string> warnings;
    std::exception_ptr pendingException;
    Environment environment(&warnings, &pendingException);
    bool pending = false;
    const Parameter result = callTypedEntry(*variant, environment, pending, arguments);
    ResultGuard guard(result);
    if (pending) {
        deliverReports(warnings, pendingException);
    }
    deliverResult(result, guard, *variant, nlhs, plhs);
    return true;
}

}  // namespace

NoVariantTakesCall::NoVariantTakesCall()
    : std::logic_error("builtin function implementation is nullptr") {}

VariantArray BuiltinFcn::searchedByInvoke(VariantsToConsider variantsToConsider, int nrhs,
                                          kaArray_tag* const* prhs) const {
    if (variantsToConsider == VariantsToConsider::InvokeNoOrro) {
        return searchedByInvokeNoOrro_;
    }
    // The list after Orro with complex scalars is looked at only when it has something extra,
    // and only then are the arguments scanned.
    if (searchedByInvokeAfterOrroComplexScalar_.second > searchedByInvokeAfterOrro_.second &&
        hasComplexScalar(nrhs, prhs)) {
        return searchedByInvokeAfterOrroComplexScalar_;
    }
    return searchedByInvokeAfterOrro_;
}

void BuiltinFcn::invokeDefaultImplementation(int nlhs, kaArray_tag** plhs, int nrhs,
                                             kaArray_tag** prhs) const {
    const NativeEntry entry = defaultVariant_.functionDescriptor.nativeEntry;
    if (entry == nullptr) {
        throw NoVariantTakesCall();
    }
    auto* const descriptor =
        const_cast<OrroFunctionDescriptor*>(&defaultVariant_.functionDescriptor);
    reinterpret_cast<ArrayFunction>(entry)(nlhs, plhs, nrhs, prhs, descriptor);
}

void BuiltinFcn::invoke(int nlhs, kaArray_tag** plhs, int nrhs, kaArray_tag** prhs,
                        VariantsToConsider variantsToConsider) const {
    if (nlhs < 0 || nrhs < 0) [[unlikely]] {
        throw std::invalid_argument("BuiltinFcn::invoke: negative count of outputs or arguments");
    }
    const VariantArray list = searchedByInvoke(variantsToConsider, nrhs, prhs);
    if (list.second != 0 && invokeFirstAccepting(list, static_cast<std::size_t>(nlhs), plhs,
                                                 static_cast<std::size_t>(nrhs), prhs)) {
        return;
    }
    invokeDefaultImplementation(nlhs, plhs, nrhs, prhs);
}

}  // namespace Norvane::builtin
