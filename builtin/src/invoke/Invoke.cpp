// The road of an interpreted call, from arrays to a typed native function and back.
//
//   1. Choose the list: no Orro, after Orro, or after Orro with a complex scalar argument.
//   2. Read the call's key (CallKey.hpp) and ask the builtin's memo. A hit names the variant
//      that took the last call of the same types on the same list, or says that none did, and
//      holds the converters of the arguments: nothing is classified and nothing searched. A
//      variant that was lifted over arrays must find their shapes agreeing again.
//   3. Otherwise find the first variant of the call's arity by binary search (the list is
//      sorted by input count, then output count), walk the variants of that arity, and take
//      the first that accepts the arguments; the memo remembers what it can prove.
//   4. Convert the arguments to Parameters (flag inputs drop out) and call the typed entry with
//      an Environment that gathers warnings and the error.
//   5. If the entry says so, deliver the warnings, then rethrow the error.
//   6. Box the result into plhs[0].
// A call that no variant takes goes to the default implementation.
//
// All state of a call lives in this frame: up to 15 classified arguments and 8 Parameters need
// no allocation, and the Environment is touched only when the native function reports. The
// memo's table is made at the first call that it remembers; a hit reads it without a lock.
#include <builtin/invoke/BuiltinFcn.hpp>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <exception>
#include <memory>
#include <stdexcept>
#include <type_traits>
#include <vector>

#include <boost/variant/get.hpp>

#include <builtin/variants/VariantAcceptance.hpp>
#include <builtin/variants/VariantSignature.hpp>
#include <ka/ka.hpp>

#include <builtin/calling/ParameterConversion.hpp>

#include "../calling/ParameterToKaArray.hpp"
#include "CallKey.hpp"
#include "VariantMemoTable.hpp"

namespace Norvane::builtin {

namespace {

// The interpreter's reporting environment for one call, holding what was reported. The last
// exception recorded wins.
struct Environment final : public IOrroBuiltinEnvironment, private IOrroBuiltinAccessors {
    std::vector<std::u16string> warnings;
    std::exception_ptr pendingException;

    IOrroBuiltinAccessors* GetOrroBuiltinAccessors() override { return this; }
    void AddWarningMessage(const std::u16string& message) override { warnings.push_back(message); }
    void SetInternalPendingException() override { pendingException = std::current_exception(); }
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
// looking at each as it comes rather than by a second search. Notes for the memo whether an
// answer rested on live dimensions.
detail::SearchOutcome findVariant(const VariantArray& list, const VariantSignature& signature) {
    const BuiltinVariant* const end = list.first + list.second;
    const detail::CallArity arity(signature.nlhs, signature.nrhs);
    const BuiltinVariant* candidate = std::partition_point(
        list.first, end, [&arity](const BuiltinVariant& v) { return arity.sortsBefore(v); });
    detail::SearchOutcome outcome;
    for (; candidate != end && arity.accepts(*candidate); ++candidate) {
        bool comparedDimensions = false;
        if (detail::acceptsArguments(*candidate, signature, comparedDimensions)) {
            outcome.variant = candidate;
            outcome.takenByDimensions = comparedDimensions;
            return outcome;
        }
        outcome.refusedByDimensions = outcome.refusedByDimensions || comparedDimensions;
    }
    return outcome;
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

// The result as an array. A double, the commonest, goes straight to its conversion; every other
// alternative through parameterToKaArray, which does the same for a double.
[[gnu::always_inline]] inline kaArray_tag* boxResult(const Parameter& result,
                                                     const BuiltinVariant& variant) {
    if (const double* const value = boost::get<double>(&result)) {
        kaArray_tag* out = nullptr;
        builtinreg::detail::parameterConversionImpl(&out, *value);
        return out;
    }
    return parameterToKaArray(result, variant);
}

[[gnu::always_inline]] inline void deliverResult(const Parameter& result, ResultGuard& guard,
                                                 const BuiltinVariant& variant, std::size_t nlhs,
                                                 kaArray_tag** plhs) {
    if (nlhs == 1) {
        plhs[0] = boxResult(result, variant);
        guard.handedOn();
    } else if (nlhs == 0 && !variant.outputArgTypes.empty()) {
        kaArray_tag* const array = boxResult(result, variant);
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

// Steps 4 to 6 of the road.
[[gnu::always_inline]] inline void runVariant(const BuiltinVariant& variant,
                                              const ParameterList& arguments, std::size_t nlhs,
                                              kaArray_tag** plhs) {
    Environment environment;
    bool pending = false;
    const Parameter result = callTypedEntry(variant, environment, pending, arguments);
    ResultGuard guard(result);
    if (pending) [[unlikely]] {
        deliverReports(environment.warnings, environment.pendingException);
    }
    deliverResult(result, guard, variant, nlhs, plhs);
}

// Step 3 and on; false if no variant of the list takes the call. With a key, the memo is told
// the outcome before anything runs, so that a variant that throws is remembered too. Kept out
// of the road of a hit, whose frame stays small.
[[gnu::noinline]] bool invokeSearching(const VariantArray& list, std::size_t nlhs,
                                       kaArray_tag** plhs, std::size_t nrhs, kaArray_tag** prhs,
                                       const detail::CallKey* key,
                                       const detail::VariantMemo& memo) {
    ClassificationCache cache;
    const VariantSignature signature(nlhs, nrhs, prhs, &cache);
    const detail::SearchOutcome outcome = findVariant(list, signature);
    if (key != nullptr) {
        if (detail::VariantMemoTable* const table = memo.obtain()) {
            table->remember(*key, nrhs, cache, outcome);
        }
    }
    if (outcome.variant == nullptr) {
        return false;
    }
    const BuiltinVariant& variant = *outcome.variant;
    ParameterList arguments;
    signature.collectParameters(variant, arguments);
    runVariant(variant, arguments, nlhs, plhs);
    return true;
}

// Element 0 of a real number, appended as the alternative that its converter would give.
template <class Stored, class Alternative>
[[gnu::always_inline]] inline void appendUnboxed(ParameterList& arguments,
                                                 const kaArray_tag* array) {
    Stored value;
    std::memcpy(&value, matrix::data(array), sizeof value);
    arguments.emplace_back(static_cast<Alternative>(value));
}

// A real number as its scalar converter would hand it to a variant that declared a number,
// without the call of the converter and the copy of the Parameter it returns.
[[gnu::always_inline]] inline void appendUnboxed(ParameterList& arguments, const kaArray_tag* array,
                                                 unsigned element) {
    switch (element) {
        case kaLOGICAL_CLASS: appendUnboxed<std::uint8_t, bool>(arguments, array); break;
        case kaCHAR_CLASS: appendUnboxed<char16_t, unsigned short>(arguments, array); break;
        case kaDOUBLE_CLASS: appendUnboxed<double, double>(arguments, array); break;
        case kaSINGLE_CLASS: appendUnboxed<float, float>(arguments, array); break;
        case kaINT8_CLASS: appendUnboxed<signed char, signed char>(arguments, array); break;
        case kaUINT8_CLASS: appendUnboxed<unsigned char, unsigned char>(arguments, array); break;
        case kaINT16_CLASS: appendUnboxed<short, short>(arguments, array); break;
        case kaUINT16_CLASS: appendUnboxed<unsigned short, unsigned short>(arguments, array); break;
        case kaINT32_CLASS: appendUnboxed<int, int>(arguments, array); break;
        case kaUINT32_CLASS: appendUnboxed<unsigned int, unsigned int>(arguments, array); break;
        case kaINT64_CLASS: appendUnboxed<std::int64_t, std::int64_t>(arguments, array); break;
        default: appendUnboxed<std::uint64_t, std::uint64_t>(arguments, array); break;
    }
}

// What became of a call that the memo was asked about.
enum class Recall {
    RAN,      // the remembered variant took it
    DEFAULT,  // no variant takes it: the default implementation does
    MISSED,   // not remembered: search, and remember
    NO_KEY,   // the call has no key: search
};

// Steps 2, and 4 to 6 for a hit: real numbers unboxed as their converters would, the other
// arguments through the converters that the memo holds. `Count` as for readCallKey.
template <class Count>
[[gnu::always_inline]] inline Recall invokeIfRemembered(const detail::VariantMemo& memo,
                                                        std::uint64_t place, std::size_t nlhs,
                                                        kaArray_tag** plhs, Count nrhs,
                                                        kaArray_tag** prhs, detail::CallKey& key) {
    if (!detail::readCallKey(key, place, nlhs, nrhs, prhs)) {
        return Recall::NO_KEY;
    }
    const detail::VariantMemoTable* const table = memo.table();
    detail::MemoAnswer answer;
    if (table == nullptr || !table->find(key, nrhs, prhs, answer)) {
        return Recall::MISSED;
    }
    if (answer.variant == nullptr) {
        return Recall::DEFAULT;
    }
    const BuiltinVariant& variant = *answer.variant;
    if (answer.compareShapes && !detail::elementWiseShapesAgree(variant, nrhs, prhs)) {
        return Recall::MISSED;
    }
    ParameterList arguments;
    try {
        for (std::size_t i = 0; i < nrhs; ++i) {
            if ((answer.flagInputs >> i & 1u) != 0) {
                continue;
            }
            if (const unsigned element = answer.unboxed >> (4 * i) & 0xFu; element != 0) {
                appendUnboxed(arguments, prhs[i], element);
            } else {
                arguments.push_back(answer.converters[i](prhs[i], &variant.inputArgTypes[i]));
            }
        }
    } catch (...) {
        std::for_each(arguments.begin(), arguments.end(), releaseIfArray);
        throw;
    }
    runVariant(variant, arguments, nlhs, plhs);
    return Recall::RAN;
}

template <std::size_t N>
using ArgumentCount = std::integral_constant<std::size_t, N>;

// The road of a hit compiled for each count of arguments up to three, the commonest, so that
// its loops unroll; more arguments take the general one.
[[gnu::always_inline]] inline Recall invokeIfRemembered(const detail::VariantMemo& memo,
                                                        std::uint64_t place, std::size_t nlhs,
                                                        kaArray_tag** plhs, std::size_t nrhs,
                                                        kaArray_tag** prhs, detail::CallKey& key) {
    switch (nrhs) {
        case 0: return invokeIfRemembered(memo, place, nlhs, plhs, ArgumentCount<0>(), prhs, key);
        case 1: return invokeIfRemembered(memo, place, nlhs, plhs, ArgumentCount<1>(), prhs, key);
        case 2: return invokeIfRemembered(memo, place, nlhs, plhs, ArgumentCount<2>(), prhs, key);
        case 3: return invokeIfRemembered(memo, place, nlhs, plhs, ArgumentCount<3>(), prhs, key);
        default: return invokeIfRemembered<std::size_t>(memo, place, nlhs, plhs, nrhs, prhs, key);
    }
}

}  // namespace

NoVariantTakesCall::NoVariantTakesCall()
    : std::logic_error("builtin function implementation is nullptr") {}

VariantArray BuiltinFcn::chooseList(VariantsToConsider variantsToConsider, int nrhs,
                                    kaArray_tag* const* prhs, std::uint64_t& place) const {
    if (variantsToConsider == VariantsToConsider::InvokeNoOrro) {
        place = 0;
        return searchedByInvokeNoOrro_;
    }
    // The list after Orro with complex scalars is looked at only when it has something extra,
    // and only then are the arguments scanned.
    if (searchedByInvokeAfterOrroComplexScalar_.second > searchedByInvokeAfterOrro_.second &&
        hasComplexScalar(nrhs, prhs)) {
        place = 2;
        return searchedByInvokeAfterOrroComplexScalar_;
    }
    place = 1;
    return searchedByInvokeAfterOrro_;
}

VariantArray BuiltinFcn::searchedByInvoke(VariantsToConsider variantsToConsider, int nrhs,
                                          kaArray_tag* const* prhs) const {
    std::uint64_t place = 0;
    return chooseList(variantsToConsider, nrhs, prhs, place);
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
    const auto outputs = static_cast<std::size_t>(nlhs);
    const auto inputs = static_cast<std::size_t>(nrhs);
    std::uint64_t place = 0;
    const VariantArray list = chooseList(variantsToConsider, nrhs, prhs, place);
    if (list.second == 0) {
        invokeDefaultImplementation(nlhs, plhs, nrhs, prhs);
        return;
    }
    detail::CallKey key;
    Recall recall = Recall::NO_KEY;
    if (detail::variantMemoEnabled.load(std::memory_order_relaxed)) [[likely]] {
        recall = invokeIfRemembered(memo_, place, outputs, plhs, inputs, prhs, key);
    }
    if (recall == Recall::RAN) [[likely]] {
        return;
    }
    if (recall == Recall::DEFAULT ||
        !invokeSearching(list, outputs, plhs, inputs, prhs,
                         recall == Recall::MISSED ? &key : nullptr, memo_)) {
        invokeDefaultImplementation(nlhs, plhs, nrhs, prhs);
    }
}

}  // namespace Norvane::builtin
