// The wrapper family: the stored numbers of Parameter's alternatives, what the selector gives at
// each position, and each wrapper called under each convention against a recording native
// function of its signature (each input in its place, the result in its type), what a wrapper
// does around the native call, and the fatal end of convention 3.
#include <builtin/calling/InlineCWrappers.hpp>
#include <builtin/calling/OrroBuiltinEnvironment.hpp>

#include <gtest/gtest.h>
#include <boost/core/demangle.hpp>
#include <boost/mp11/algorithm.hpp>
#include <boost/mp11/list.hpp>
#include <boost/variant/detail/variant_io.hpp>  // lets failures print a Parameter
#include <boost/variant/get.hpp>

#include <algorithm>
#include <array>
#include <complex>
#include <cstdint>
#include <limits>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <vector>

namespace Norvane::builtin::testing {
namespace {

// Distinct values of each alternative, none 0 and the first with its top bits set, so that a mixed
// up, narrowed or dropped value shows. Slots 0 and 1 feed inputs, slot 2 is the native result.
char fakeObjects[9];  // never dereferenced

template <class T>
T sample(std::size_t slot) {
    using Limits = std::numeric_limits<T>;
    if constexpr (std::is_pointer_v<T>) {
        return reinterpret_cast<T>(&fakeObjects[3 * (parameterIndexOf<T> - 13) + slot]);
    } else if constexpr (std::is_same_v<T, bool>) {
        return slot != 1;
    } else if constexpr (std::is_arithmetic_v<T>) {
        const T values[] = {
            Limits::max(), static_cast<T>(Limits::max() / 3),
            static_cast<T>(Limits::is_signed ? Limits::lowest() / 2 : Limits::max() / 5 * 2)};
        return values[slot];
    } else {  // std::complex
        using Part = typename T::value_type;
        return T(sample<Part>(slot), sample<Part>((slot + 1) % 3));
    }
}

// Only the address of the environment is looked at.
char environmentPlace;
orro::IOrroBuiltinEnvironment* const standIn =
    reinterpret_cast<orro::IOrroBuiltinEnvironment*>(&environmentPlace);

struct NativeCall {
    int count = 0;
    std::optional<JIT_CALLING_CONVENTION> form;  // which native signature was called
    std::vector<Parameter> inputs;
    bool outWasNull = false;
    orro::IOrroBuiltinEnvironment* environment = nullptr;
    orro::OrroFunctionDescriptor* descriptor = nullptr;
};
NativeCall lastNativeCall;
bool canThrowAnswer = false;

// Native functions of R f(A...) under each convention that note their call and return sample 2.
template <class R, class... A>
struct RecordingNative {
    using Out = std::conditional_t<std::is_void_v<R>, void*, R*>;
    static R direct(A... a) {
        note(JIT_CALLING_CONVENTION::Direct, nullptr, a...);
        return result();
    }
    static R withDescriptor(A... a, orro::OrroFunctionDescriptor* descriptor) {
        note(JIT_CALLING_CONVENTION::DirectWithDescriptor, descriptor, a...);
        return result();
    }
    static bool canThrow(A... a, Out out, orro::IOrroBuiltinEnvironment* environment,
                         orro::OrroFunctionDescriptor* descriptor) {
        note(JIT_CALLING_CONVENTION::CanThrow, descriptor, a...);
        lastNativeCall.outWasNull = out == nullptr;
        lastNativeCall.environment = environment;
        if constexpr (!std::is_void_v<R>) {
            if (out != nullptr) *out = result();
        }
        return canThrowAnswer;
    }
    // The entries by convention 0, 1, 2, checked against the public native signatures.
    static std::array<NativeEntry, 3> entries() {
        using enum JIT_CALLING_CONVENTION;
        const orro::NativeFunction<Direct, R, A...> plain = &direct;
        const orro::NativeFunction<DirectWithDescriptor, R, A...> described = &withDescriptor;
        const orro::NativeFunction<CanThrow, R, A...> reporting = &canThrow;
        return {reinterpret_cast<NativeEntry>(plain), reinterpret_cast<NativeEntry>(described),
                reinterpret_cast<NativeEntry>(reporting)};
    }

private:
    static void note(JIT_CALLING_CONVENTION form, orro::OrroFunctionDescriptor* descriptor,
                     A... a) {
        ++lastNativeCall.count;
        lastNativeCall.form = form;
        lastNativeCall.inputs = {Parameter(a)...};
        lastNativeCall.descriptor = descriptor;
    }
    static R result() {
        if constexpr (!std::is_void_v<R>) return sample<R>(2);
    }
};

template <class R, class... A>
builtinreg::detail::Wrapper selectWrapper() {
    return builtinreg::detail::getExportedInlineCWrapperFcn(nullptr, parameterIndexOf<R>,
                                                            parameterIndexOf<A>...);
}

// Every convention, with a CanThrow function that reports and one that does not; only the
// template below is instantiated per signature.

void checkWrapper(const std::string& name, builtinreg::detail::Wrapper wrapper,
                  const std::array<NativeEntry, 3>& natives, const ParameterList& arguments,
                  const std::optional<Parameter>& result) {
    using enum JIT_CALLING_CONVENTION;
    for (const auto& [convention, answer] :
         {std::pair(Direct, true), std::pair(DirectWithDescriptor, true), std::pair(CanThrow, true),
          std::pair(CanThrow, false)}) {
        SCOPED_TRACE(name + " convention " + std::to_string(static_cast<unsigned>(convention)) +
                     " answer " + std::to_string(answer));
        ASSERT_NE(wrapper, nullptr);
        OrroFunctionDescriptor descriptor{wrapper, natives.at(static_cast<std::size_t>(convention)),
                                          convention};
        lastNativeCall = NativeCall{};
        canThrowAnswer = answer;
        bool pending = !answer;  // the wrapper must overwrite whatever the flag held
        const Parameter returned = wrapper(&descriptor, standIn, pending, arguments);
        EXPECT_EQ(lastNativeCall.count, 1);
        EXPECT_EQ(lastNativeCall.form, convention);
        EXPECT_EQ(lastNativeCall.inputs,
                  std::vector<Parameter>(arguments.begin(), arguments.end()));
        EXPECT_EQ(returned, result.value_or(Parameter()));
        EXPECT_EQ(returned.which(), result.value_or(Parameter()).which());
        EXPECT_EQ(pending, convention == CanThrow && answer);
        EXPECT_EQ(lastNativeCall.descriptor, convention == Direct ? nullptr : &descriptor);
        if (convention == CanThrow) {
            EXPECT_EQ(lastNativeCall.outWasNull, !result.has_value());
            EXPECT_EQ(lastNativeCall.environment, standIn);
        }
    }
}

template <class R, class... A>
void checkWrapperUnderAllConventions() {
    std::string name = boost::core::demangle(typeid(R).name()) + "(";
    ((name += boost::core::demangle(typeid(A).name()) + ","), ...);
    std::size_t slot = 0;
    const ParameterList arguments = {Parameter(sample<A>(slot++))...};
    std::optional<Parameter> result;
    if constexpr (!std::is_void_v<R>) result = Parameter(sample<R>(2));
    checkWrapper(name + ")", selectWrapper<R, A...>(), RecordingNative<R, A...>::entries(),
                 arguments, result);
}

// The output type of output index Out: void for "no output".
template <std::size_t Out>
using OutputOf =
    typename std::conditional_t<Out == noOutputIndex, std::type_identity<void>,
                                boost::mpl::at_c<ParameterTypes, static_cast<long>(Out)>>::type;

using boost::mp11::mp_for_each;
using boost::mp11::mp_iota_c;
using boost::mp11::mp_list;
using builtinreg::detail::getExportedInlineCWrapperFcn;
using builtinreg::detail::Wrapper;

// The plain C++ types in their stored order; a wrong number means a value lands in a neighbour.
using StoredOrder =
    mp_list<std::uint64_t, double, float, bool, signed char, short, int, std::int64_t,
            unsigned char, unsigned short, unsigned int, std::complex<double>, std::complex<float>,
            kaArray_tag*, Norvane::String::String*, Norvane::orro::OrroObject*>;

TEST(Parameter, EachTypeLandsInItsStoredAlternative) {
    std::size_t expected = 0;
    mp_for_each<StoredOrder>([&](auto value) {
        using T = decltype(value);
        EXPECT_EQ(static_cast<std::size_t>(Parameter(sample<T>(0)).which()), expected) << expected;
        EXPECT_EQ(parameterIndexOf<T>, expected++);
    });
    EXPECT_EQ(parameterIndexOf<void>, 16u);
    EXPECT_EQ(boost::get<std::uint64_t>(Parameter()), 0u);
}

template <std::size_t In0, std::size_t In1>
using Pair = mp_list<ParameterAlternative<In0>, ParameterAlternative<In1>>;
// Equal types (a swap unseen by type alone), numbers against pointers, both ends of the range;
// with every output, (0, 0) and (15, 15) reach the positions where the table is cut into parts.
using InputPairs =
    mp_list<Pair<0, 0>, Pair<15, 15>, Pair<1, 1>, Pair<0, 15>, Pair<15, 0>, Pair<2, 1>,
            Pair<11, 12>, Pair<13, 9>, Pair<4, 7>, Pair<14, 10>, Pair<5, 8>, Pair<6, 13>>;

template <class R, class A0, class A1>
void checkPair(mp_list<A0, A1>) {
    checkWrapperUnderAllConventions<R, A0, A1>();
}

TEST(WrapperFamily, EachPositionHoldsTheWrapperOfItsSignature) {
    mp_for_each<mp_iota_c<noOutputIndex + 1>>([](auto out) {
        using R = OutputOf<decltype(out)::value>;
        checkWrapperUnderAllConventions<R>();
        mp_for_each<mp_iota_c<parameterTypeCount>>([](auto in0) {
            checkWrapperUnderAllConventions<R, ParameterAlternative<decltype(in0)::value>>();
        });
        mp_for_each<InputPairs>([](auto pair) { checkPair<R>(pair); });
    });
}

TEST(WrapperSelector, AllPositionsHoldDistinctWrappersAndPastTheEndNull) {
    std::set<Wrapper> seen;
    for (std::size_t out = 0; out <= noOutputIndex; ++out) {
        seen.insert(getExportedInlineCWrapperFcn(nullptr, out));
        for (std::size_t in0 = 0; in0 < parameterTypeCount; ++in0) {
            seen.insert(getExportedInlineCWrapperFcn(nullptr, out, in0));
            for (std::size_t in1 = 0; in1 < parameterTypeCount; ++in1) {
                seen.insert(getExportedInlineCWrapperFcn(nullptr, out, in0, in1));
            }
        }
    }
    EXPECT_EQ(seen.size(), 4641u);
    EXPECT_EQ(seen.count(nullptr), 0u);
    for (const Wrapper pastTheEnd :
         {getExportedInlineCWrapperFcn(nullptr, 17), getExportedInlineCWrapperFcn(nullptr, 17, 0),
          getExportedInlineCWrapperFcn(nullptr, 16, 16),
          getExportedInlineCWrapperFcn(nullptr, 17, 0, 0),
          getExportedInlineCWrapperFcn(nullptr, 16, 15, 16),
          getExportedInlineCWrapperFcn(nullptr, 1000, 3, 3)}) {
        EXPECT_EQ(pastTheEnd, nullptr);
    }
}

constexpr JIT_CALLING_CONVENTION convention(std::uint32_t value) {
    return static_cast<JIT_CALLING_CONVENTION>(value);
}

template <class R, class... A>
OrroFunctionDescriptor descriptorFor(JIT_CALLING_CONVENTION c) {
    return {selectWrapper<R, A...>(),
            RecordingNative<R, A...>::entries()[std::min(static_cast<std::uint32_t>(c), 2u)], c};
}

Parameter call(OrroFunctionDescriptor& descriptor, bool& pending, const ParameterList& arguments) {
    lastNativeCall = NativeCall{};
    return descriptor.typedEntry(&descriptor, standIn, pending, arguments);
}

double throwingNative(double) {
    throw std::runtime_error("from the native function");
}
double throwingNativeWithDescriptor(double, OrroFunctionDescriptor*) {
    throw std::runtime_error("from the native");
}

// An unknown convention or a missing native entry calls nothing and fetches nothing; a fetch
// takes only the exact alternative (the text of its bad_get is the bad-input tables'); exceptions
// of Direct functions reach the caller. Every way the flag is cleared.
TEST(InlineCWrapper, TheFlagIsClearedWhenNothingIsCalledOrAnExceptionLeaves) {
    using enum JIT_CALLING_CONVENTION;
    enum Outcome { NOTHING, BAD_GET, THROWN };
    struct Case {
        OrroFunctionDescriptor descriptor;
        ParameterList arguments;
        Outcome outcome;
    };
    const ParameterList floats{Parameter(1.5f), Parameter(1.5f)};
    Case cases[] = {
        {descriptorFor<double, double, int>(convention(4)), floats, NOTHING},
        {descriptorFor<double, double, int>(convention(0xFFFF'FFFFu)), floats, NOTHING},
        {{selectWrapper<double, double, int>(), nullptr, Direct}, floats, NOTHING},
        {{selectWrapper<double, double, int>(), nullptr, CanThrow}, floats, NOTHING},
        {descriptorFor<void, std::int64_t>(Direct), {Parameter(3)}, BAD_GET},
        {descriptorFor<double, double, double>(CanThrow),
         {Parameter(2.5), Parameter(2.5f)},
         BAD_GET},
        {{selectWrapper<double, double>(), reinterpret_cast<NativeEntry>(&throwingNative), Direct},
         {Parameter(1.0)},
         THROWN},
        {{selectWrapper<double, double>(),
          reinterpret_cast<NativeEntry>(&throwingNativeWithDescriptor), DirectWithDescriptor},
         {Parameter(1.0)},
         THROWN},
    };
    for (Case& c : cases) {
        bool pending = true;
        if (c.outcome == NOTHING) {
            EXPECT_EQ(call(c.descriptor, pending, c.arguments), Parameter());
        } else if (c.outcome == BAD_GET) {
            EXPECT_THROW(call(c.descriptor, pending, c.arguments), boost::bad_get);
        } else {
            EXPECT_THROW(call(c.descriptor, pending, c.arguments), std::runtime_error);
        }
        EXPECT_EQ(lastNativeCall.count, 0);
        EXPECT_FALSE(pending) << (&c - cases);
    }
}

using CallingConventionDeathTest = ::testing::Test;

TEST_F(CallingConventionDeathTest, UnexpectedConventionsAreFatal) {
    using builtinreg::detail::terminateUnexpectedCallingConvention;
    EXPECT_DEATH(terminateUnexpectedCallingConvention(convention(7)),
                 "unexpected JIT_CALLING_CONVENTION encountered by builtin2 code: 7\n"
                 "  at builtin2/interface/builtin/getFunctionDescriptor");
    EXPECT_DEATH(terminateUnexpectedCallingConvention(JIT_CALLING_CONVENTION::CanThrowOrroInternal),
                 "CanThrowOrroInternal should not be encountered by builtin2 code\n"
                 "  at builtin2/interface/builtin/getFunctionDescriptor");
    // A wrapper reached with the engine's convention stops before it looks at the native entry.
    OrroFunctionDescriptor descriptor{selectWrapper<double, double>(), nullptr,
                                      JIT_CALLING_CONVENTION::CanThrowOrroInternal};
    bool pending = true;
    EXPECT_DEATH(call(descriptor, pending, {Parameter(1.0)}),
                 "CanThrowOrroInternal should not be encountered by builtin2 code");
}

}  // namespace
}  // namespace Norvane::builtin::testing
