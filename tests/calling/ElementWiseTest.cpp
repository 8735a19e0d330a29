// Element-wise lifting by road: selection, reuse, broadcasting against a plain reference loop,
// empty outputs, conventions, parallel loops, and what reaches the caller from failing or warning
// kernels through the ParallelEnvironment that collects the workers' reports.
#include <builtin/calling/ElementWise.hpp>
#include <builtin/calling/ParallelEnvironment.hpp>
#include <builtin/variants/BuiltinVariant.hpp>

#include <gtest/gtest.h>
#include <oneapi/tbb/global_control.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <boost/variant/get.hpp>

#include <ArrayValues.hpp>
#include <LiveArrays.hpp>
#include <ka/ka.hpp>

namespace elementwisetest {
namespace {

using namespace Norvane::builtin;
using builtinreg::detail::elementWiseEntry;
using builtinreg::detail::elementWiseInlineC;
using builtinreg::detail::ParallelEnvironment;
using enum JIT_CALLING_CONVENTION;
using testsupport::dimsOf;
using testsupport::elementsOf;
using Shapes = std::pair<ka::Dims, ka::Dims>;
using V = BuiltinVariant;

// Notes "warning <text>" and "exception <what>" in order of arrival; can refuse to give
// accessors, and can throw from the warning with index failAtWarning.
class RecordingEnvironment final : public IOrroBuiltinEnvironment, private IOrroBuiltinAccessors {
public:
    std::vector<std::string> events;
    bool withAccessors = true;
    int failAtWarning = -1;
    IOrroBuiltinAccessors* GetOrroBuiltinAccessors() override {
        return withAccessors ? this : nullptr;
    }

private:
    void AddWarningMessage(const std::u16string& message) override {
        if (warnings_++ == failAtWarning) throw std::runtime_error("parent refuses");
        events.push_back("warning " + std::string(message.begin(), message.end()));
    }
    void SetInternalPendingException() override {
        try {
            throw;
        } catch (const std::exception& error) {
            events.push_back(std::string("exception ") + error.what());
        }
    }
    int warnings_ = 0;
};

struct Flags {
    bool warns = false, throws = false, sideEffects = false, callsBack = false;
};

// A variant whose typed entry is the lifted entry of T with Inputs inputs over `kernel`.
template <class T, std::size_t Inputs, class Kernel>
BuiltinVariant liftedVariant(Kernel kernel, JIT_CALLING_CONVENTION convention, Flags flags = {}) {
    return BuiltinVariant(nullptr,
                          OrroFunctionDescriptor{&elementWiseEntry<T, Inputs>,
                                                 reinterpret_cast<NativeEntry>(kernel), convention},
                          {}, {},
                          flags.callsBack ? V::CallsIntoKeldor::YES : V::CallsIntoKeldor::NO,
                          flags.warns ? V::HasWarnings::YES : V::HasWarnings::NO,
                          flags.throws ? V::HasExceptions::YES : V::HasExceptions::NO,
                          flags.sideEffects ? V::HasSideEffects::YES : V::HasSideEffects::NO,
                          "kernel", "kernel", "double", V::IsElementWise::YES);
}

Parameter call(BuiltinVariant& variant, IOrroBuiltinEnvironment* environment, bool& pending,
               const ParameterList& arguments) {
    return variant.functionDescriptor.typedEntry(&variant.functionDescriptor, environment, pending,
                                                 arguments);
}

Parameter give(ka::ArrayPtr array) {
    return Parameter(array.release());
}
Parameter share(const ka::ArrayPtr& array) {  // the test keeps its own reference
    matrix::takeReference(array.get());
    return Parameter(array.get());
}

// Kernels count their calls, and those made off the thread that the test named as calling.
std::atomic<std::thread::id> caller;
std::atomic<long> calls{0}, offCaller{0};
void resetCounts() {
    caller = std::this_thread::get_id();
    calls = 0;
    offCaller = 0;
}
void note() {
    ++calls;
    if (std::this_thread::get_id() != caller.load()) ++offCaller;
}

double negate(double x) {
    note();
    return -x;
}
double combine(double a,
               double b) {  // exact for the small whole numbers used, and tells the inputs apart
    note();
    return a * 1000 + b;
}

// 0, 1, 2, ... in column-major order.
ka::ArrayPtr ramp(const ka::Dims& dims) {
    std::vector<double> values(
        std::accumulate(dims.begin(), dims.end(), std::size_t{1}, std::multiplies<>()));
    std::iota(values.begin(), values.end(), 0.0);
    return ka::createFrom<double>(dims, values);
}

class ElementWise : public testsupport::LiveArrayTest {
protected:
    void SetUp() override {
        LiveArrayTest::SetUp();
        resetCounts();
    }
    Parameter call(BuiltinVariant& variant, const ParameterList& arguments) {
        return elementwisetest::call(variant, &parent, pending, arguments);
    }
    ka::ArrayPtr callForArray(BuiltinVariant& variant, const ParameterList& arguments) {
        return ka::ArrayPtr(boost::get<kaArray_tag*>(call(variant, arguments)));
    }
    RecordingEnvironment parent;
    bool pending = false;
};

// Only diagonal positions hold lifted entries, and declarations take the entry the selector calls.
// Given no kernel and arguments of alternative 0, the entry of k = 0 hands them to its scalar
// wrapper, which clears the flag; any other lifted entry refuses them.
TEST_F(ElementWise, OnlyDiagonalPositionsHoldKernels) {
    struct Case {
        std::size_t out, in0, in1;  // in1 past 15: the one-input selector
        bool lifted;
    };
    const Case cases[] = {{0, 0, 99, true},   {0, 1, 99, false},   {1, 1, 99, true},
                          {12, 12, 99, true}, {13, 13, 99, false}, {1, 1, 1, true},
                          {12, 12, 12, true}, {1, 1, 2, false},    {13, 13, 13, false}};
    auto variant = liftedVariant<double, 1>(NativeEntry{}, Direct);
    OrroFunctionDescriptor* const d = &variant.functionDescriptor;
    const ParameterList arguments{Parameter(std::uint64_t{0}), Parameter(std::uint64_t{0})};
    using builtinreg::detail::getElementWiseEntry;
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.out << " " << c.in0 << " " << c.in1);
        bool flag = true;
        const bool one = c.in1 > 15;
        const auto run = [&] {
            return one ? elementWiseInlineC(d, &parent, flag, arguments, nullptr, c.out, c.in0)
                       : elementWiseInlineC(d, &parent, flag, arguments, nullptr, c.out, c.in0,
                                            c.in1);
        };
        EXPECT_EQ((one ? getElementWiseEntry(nullptr, c.out, c.in0)
                       : getElementWiseEntry(nullptr, c.out, c.in0, c.in1)) != nullptr,
                  c.lifted);
        if (c.lifted && c.out != 0) {
            EXPECT_THROW(run(), std::logic_error);
        } else {
            EXPECT_EQ(run(), Parameter());
            EXPECT_EQ(flag, !c.lifted) << "only a lifted entry touches the flag";
        }
    }
}

// Unboxed scalars come back unboxed, arrays as arrays. A refused argument gives back the
// references of both and runs no kernel (the texts of refusals are the bad-input tables').
TEST_F(ElementWise, ScalarsStayUnboxedAndRefusalsRelease) {
    auto one = liftedVariant<double, 1>(&negate, Direct);
    auto two = liftedVariant<double, 2>(&combine, Direct);
    EXPECT_EQ(call(one, {Parameter(2.0)}), Parameter(-2.0));
    EXPECT_EQ(call(two, {Parameter(2.0), Parameter(3.0)}), Parameter(2003.0));
    const ka::ArrayPtr result = callForArray(one, {give(ka::scalar(2.0))});
    EXPECT_EQ(dimsOf(result.get()), (std::vector<std::size_t>{1, 1}));
    EXPECT_EQ(elementsOf<double>(result.get()), std::vector<double>{-2.0});
    resetCounts();
    EXPECT_THROW(call(two, {give(ramp({1, 2})), give(ka::row<float>({1, 2}))}), std::bad_cast);
    EXPECT_THROW(call(two, {give(ka::row<float>({1, 2})), Parameter(1.0)}), std::bad_cast);
    // A char array is no uint16 array, although a 1-by-1 char reaches this kernel unboxed.
    auto ofUint16 = liftedVariant<unsigned short, 1>(&negate, Direct);
    EXPECT_THROW(call(ofUint16, {give(ka::charArray(u"ab"))}), std::bad_cast);
    EXPECT_EQ(alive(), 1);
    EXPECT_EQ(calls, 0);
}

TEST_F(ElementWise, EveryNumericTypeKeepsItsClass) {
    [this]<std::size_t... K>(std::index_sequence<K...>) {
        (
            [this] {
                using T = ParameterAlternative<K>;
                auto variant = liftedVariant<T, 1>(
                    +[](T x) { return x; }, Direct);
                const T values[] = {T(1), T(0)};
                const ka::ArrayPtr input = ka::createFrom<T>({1, 2}, values);
                const ka::ArrayPtr result = callForArray(variant, {share(input)});
                EXPECT_EQ(matrix::classId(result.get()), matrix::classId(input.get())) << K;
                EXPECT_EQ(matrix::isComplex(result.get()), matrix::isComplex(input.get())) << K;
                EXPECT_EQ(elementsOf<T>(result.get()), elementsOf<T>(input.get())) << K;
            }(),
            ...);
    }
    (std::make_index_sequence<13>());
}

// The first input that nobody else holds, whose data is its own and whose dimensions are the
// output's, is overwritten and returned.
TEST_F(ElementWise, ReusesTheFirstInputThatQualifies) {
    enum Hold { FREE, HELD, SHARED_DATA };
    struct Case {
        ka::Dims dims0, dims1;  // dims1 empty: one input
        Hold hold0, hold1;
        int reused;  // 0, 1, or -1 for a new array
    };
    const Case cases[] = {{{40, 50}, {}, FREE, FREE, 0},         {{40, 50}, {}, HELD, FREE, -1},
                          {{40, 50}, {}, SHARED_DATA, FREE, -1}, {{2, 3}, {2, 3}, FREE, FREE, 0},
                          {{2, 3}, {2, 3}, HELD, FREE, 1},       {{2, 1}, {2, 3}, FREE, FREE, 1},
                          {{2, 3}, {2, 3, 4}, FREE, FREE, 1},    {{2, 3}, {2, 3}, HELD, HELD, -1}};
    auto one = liftedVariant<double, 1>(&negate, Direct);
    auto two = liftedVariant<double, 2>(&combine, Direct);
    for (const Case& c : cases) {
        ParameterList arguments;
        std::vector<ka::ArrayPtr> kept;  // what else holds an input
        std::vector<kaArray_tag*> addresses;
        for (const auto& [dims, hold] :
             {std::pair(c.dims0, c.hold0), std::pair(c.dims1, c.hold1)}) {
            if (dims.empty()) break;
            ka::ArrayPtr input = ramp(dims);
            addresses.push_back(input.get());
            if (hold == SHARED_DATA) kept.push_back(ka::sharedDataCopy(input.get()));
            if (hold == HELD)
                arguments.push_back(share(kept.emplace_back(std::move(input))));
            else
                arguments.push_back(give(std::move(input)));
        }
        const ka::ArrayPtr result = callForArray(arguments.size() == 1 ? one : two, arguments);
        for (int i = 0; i < static_cast<int>(addresses.size()); ++i) {
            EXPECT_EQ(result.get() == addresses[static_cast<std::size_t>(i)], c.reused == i)
                << (&c - cases) << " " << i;
        }
        for (const ka::ArrayPtr& other : kept) {
            EXPECT_EQ(elementsOf<double>(other.get()),
                      elementsOf<double>(ramp(dimsOf(other.get())).get()))
                << "an input held elsewhere is left as it was";
        }
    }
}

// combine() of the inputs' ramps by a plain walk over the output, whose dimensions go to `out`.
std::vector<double> referenceCombine(ka::Dims dims0, ka::Dims dims1, ka::Dims& out) {
    const std::size_t rank = std::max(dims0.size(), dims1.size());
    dims0.resize(rank, 1);
    dims1.resize(rank, 1);
    out.resize(rank);
    for (std::size_t d = 0; d < rank; ++d) out[d] = dims0[d] == 1 ? dims1[d] : dims0[d];
    std::vector<double> expected(
        std::accumulate(out.begin(), out.end(), std::size_t{1}, std::multiplies<>()));
    std::vector<std::size_t> at(rank, 0);  // subscripts of output element i
    for (std::size_t i = 0; i < expected.size(); ++i) {
        std::size_t index0 = 0, index1 = 0, stride0 = 1, stride1 = 1;
        for (std::size_t d = 0; d < rank; ++d) {
            index0 += (dims0[d] == 1 ? 0 : at[d]) * stride0;
            index1 += (dims1[d] == 1 ? 0 : at[d]) * stride1;
            stride0 *= dims0[d];
            stride1 *= dims1[d];
        }
        expected[i] = static_cast<double>(index0) * 1000 + static_cast<double>(index1);
        for (std::size_t d = 0; d < rank && ++at[d] == out[d]; ++d) at[d] = 0;
    }
    while (out.size() > 2 && out.back() == 1) out.pop_back();
    return expected;
}

// Random conforming pairs of up to four dimensions, some above the parallel threshold, serial
// (side effects) and parallel under several thread limits. A size of 0 against 1 or a missing
// dimension gives 0 (sizes that do not broadcast are the bad-input tables').
TEST_F(ElementWise, BroadcastMatchesAPlainReferenceLoop) {
    std::mt19937 random(20240611);
    std::vector<Shapes> shapes = {{{2, 1}, {1, 3}},    {{2, 3}, {2, 3, 4}}, {{1000, 1}, {1, 7}},
                                  {{3, 1, 5}, {1, 4}}, {{2, 3}, {1, 1}},    {{1, 1}, {2, 3}},
                                  {{2, 3}, {2, 3, 0}}, {{2, 3, 0}, {2, 1}}, {{0, 3}, {1, 3}},
                                  {{2, 0}, {1, 1}},    {{0, 1}, {1, 4}}};
    for (ka::Dims dims0, dims1; shapes.size() < 60;) {
        dims0.assign(2 + random() % 3, 1);
        dims1 = dims0;
        std::size_t count = 1;
        for (std::size_t d = 0; d < dims0.size(); ++d) {
            const std::size_t size = std::array<std::size_t, 5>{1, 2, 3, 5, 33}[random() % 5];
            dims0[d] = random() % 3 == 0 ? 1 : size;
            dims1[d] = random() % 3 == 0 ? 1 : size;
            count *= size;
        }
        if (count <= 40000) shapes.emplace_back(dims0, dims1);
    }
    auto serial = liftedVariant<double, 2>(&combine, Direct, {.sideEffects = true});
    auto parallel = liftedVariant<double, 2>(&combine, Direct);
    for (std::size_t limit : {1ul, 2ul, 4ul}) {
        tbb::global_control control(tbb::global_control::max_allowed_parallelism, limit);
        for (const auto& [dims0, dims1] : shapes) {
            for (BuiltinVariant* variant : {&serial, &parallel}) {
                const ka::ArrayPtr result =
                    callForArray(*variant, {give(ramp(dims0)), give(ramp(dims1))});
                ka::Dims out;
                ASSERT_EQ(elementsOf<double>(result.get()), referenceCombine(dims0, dims1, out))
                    << limit << " threads " << (variant == &serial)
                    << ::testing::PrintToString(dims0) << " with "
                    << ::testing::PrintToString(dims1);
                ASSERT_EQ(dimsOf(result.get()), out)
                    << ::testing::PrintToString(dims0) << ::testing::PrintToString(dims1);
            }
        }
    }
    // An unboxed scalar on either side takes the same paths as a 1-by-1 array.
    EXPECT_EQ(
        elementsOf<double>(callForArray(parallel, {give(ramp({2, 3})), Parameter(7.0)}).get()),
        (std::vector<double>{7, 1007, 2007, 3007, 4007, 5007}));
    EXPECT_EQ(
        elementsOf<double>(callForArray(parallel, {Parameter(7.0), give(ramp({2, 3}))}).get()),
        (std::vector<double>{7000, 7001, 7002, 7003, 7004, 7005}));
    auto one = liftedVariant<double, 1>(&negate, Direct);
    EXPECT_EQ(dimsOf(callForArray(one, {give(ka::createNumeric(kaDOUBLE_CLASS, {0, 3}))}).get()),
              (ka::Dims{0, 3}));
    resetCounts();
    EXPECT_THROW(call(parallel, {give(ramp({2, 3})), give(ramp({3, 2}))}), std::invalid_argument);
    EXPECT_EQ(calls, 0);
}

OrroFunctionDescriptor* seenDescriptor = nullptr;
std::atomic<IOrroBuiltinEnvironment*> seenEnvironment{nullptr};  // the kernels below run on workers
double negateDescribed(double x, OrroFunctionDescriptor* descriptor) {
    seenDescriptor = descriptor;
    return -x;
}
// Fails, with a distinct exception, for every element from `failFrom`; warns "w<x>" if `warning`.
std::atomic<double> failFrom{1e9};
std::atomic<bool> warning{false};
bool reporting(double x, double* out, IOrroBuiltinEnvironment* environment,
               OrroFunctionDescriptor*) {
    note();
    seenEnvironment = environment;
    *out = -x;
    if (warning) {
        const std::string text = "w" + std::to_string(static_cast<long>(x));
        environment->GetOrroBuiltinAccessors()->AddWarningMessage(
            std::u16string(text.begin(), text.end()));
    }
    if (x < failFrom) return warning;
    try {
        throw std::runtime_error("element " + std::to_string(x));
    } catch (...) {
        environment->GetOrroBuiltinAccessors()->SetInternalPendingException();
    }
    return true;
}

TEST_F(ElementWise, EachConventionIsCalledAsItSays) {
    struct Case {
        NativeEntry kernel;
        std::uint32_t convention;
        double expected;
    };
    const Case cases[] = {
        {reinterpret_cast<NativeEntry>(&negate), 0, -2},
        {reinterpret_cast<NativeEntry>(&negateDescribed), 1, -2},
        {reinterpret_cast<NativeEntry>(&reporting), 2, -2},
        {reinterpret_cast<NativeEntry>(&negate), 3, 0},
        {reinterpret_cast<NativeEntry>(&negate), 7, 0},
        {nullptr, 0, 0},
    };  // 3 is the engine's own, 7 unknown: nothing is called
    for (const Case& c : cases) {
        auto variant = liftedVariant<double, 1>(c.kernel, Direct);
        variant.functionDescriptor.callingConvention =
            static_cast<JIT_CALLING_CONVENTION>(c.convention);
        seenDescriptor = nullptr;
        seenEnvironment = nullptr;
        const ka::ArrayPtr result = callForArray(variant, {give(ka::row({2.0, 2.0}))});
        EXPECT_EQ(elementsOf<double>(result.get()), std::vector<double>(2, c.expected))
            << c.convention;
        EXPECT_EQ(seenDescriptor, c.convention == 1 ? &variant.functionDescriptor : nullptr)
            << c.convention;
        EXPECT_EQ(seenEnvironment.load() != nullptr, c.convention == 2) << c.convention;
        EXPECT_NE(seenEnvironment.load(), &parent)
            << "kernels report to the collecting environment";
    }
}

// Element 0 waits (up to two seconds) until another element has run on another thread: only a
// loop that has been shared out gets past the wait early.
double negateWaitingForCompany(double x) {
    note();
    const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(2);
    while (x == 0 && offCaller == 0 && std::chrono::steady_clock::now() < until)
        std::this_thread::yield();
    return -x;
}
double negateFirst(double a, double) {
    return negate(a);
}
double negateFirstWaitingForCompany(double a, double) {
    return negateWaitingForCompany(a);
}

// Up to 1024 output elements the loop stays on the calling thread; above, it is shared out
// unless a flag forbids it. mayThrowErrors does not.
TEST_F(ElementWise, LoopsGoParallelOnlyAboveTheThresholdAndWhenTheFlagsAllow) {
    struct Case {
        std::size_t inputs, count;
        Flags flags;
        bool parallel;
    };
    const Case cases[] = {{1, 1024, {}, false},
                          {1, 1025, {}, true},
                          {2, 1024, {}, false},
                          {2, 1025, {}, true},
                          {1, 5000, {.throws = true}, true},
                          {2, 5000, {.sideEffects = true}, false},
                          {1, 5000, {.callsBack = true}, false}};
    tbb::global_control control(tbb::global_control::max_allowed_parallelism, 4);
    for (const Case& c : cases) {
        resetCounts();
        const auto declared =
            c.flags.throws ? CanThrow : Direct;  // as the record demands; the kernel never reports
        auto variant =
            c.inputs == 1
                ? liftedVariant<double, 1>(c.parallel ? &negateWaitingForCompany : &negate,
                                           declared, c.flags)
                : liftedVariant<double, 2>(
                      c.parallel ? &negateFirstWaitingForCompany : &negateFirst, declared, c.flags);
        variant.functionDescriptor.callingConvention = Direct;
        ParameterList arguments{give(ramp({1, c.count}))};
        if (c.inputs == 2) arguments.push_back(Parameter(0.0));
        const ka::ArrayPtr result = callForArray(variant, arguments);
        EXPECT_EQ(calls, static_cast<long>(c.count));
        EXPECT_EQ(offCaller > 0, c.parallel) << c.count << " elements, case " << (&c - cases);
    }
}

// Many workers fail at once: the loop visits every element, one exception reaches the caller,
// the result is dropped (an input overwritten in place included) and pending is set. Without an
// environment the reports are lost, and the failure alone sets the flag.
TEST_F(ElementWise, OneExceptionWinsAndTheResultIsDropped) {
    auto variant = liftedVariant<double, 1>(&reporting, CanThrow, {.throws = true});
    failFrom = 5;
    for (std::size_t limit : {1ul, 2ul, 4ul}) {
        tbb::global_control control(tbb::global_control::max_allowed_parallelism, limit);
        resetCounts();
        RecordingEnvironment receiver;
        EXPECT_EQ(elementwisetest::call(variant, &receiver, pending, {give(ramp({1, 20000}))}),
                  Parameter(static_cast<kaArray_tag*>(nullptr)));
        EXPECT_TRUE(pending);
        EXPECT_EQ(calls, 20000);
        ASSERT_EQ(receiver.events.size(), 1u) << limit << " threads";
        EXPECT_EQ(receiver.events[0].rfind("exception element ", 0), 0u);
        EXPECT_EQ(alive(), 0);
    }
    pending = false;
    EXPECT_EQ(elementwisetest::call(variant, nullptr, pending, {give(ramp({1, 10}))}),
              Parameter(static_cast<kaArray_tag*>(nullptr)));
    EXPECT_TRUE(pending);
    failFrom = 1e9;
}

// Warnings keep the loop on the calling thread and arrive in element order; a kernel that answers
// true without reporting leaves the result and nothing pending.
TEST_F(ElementWise, WarningsArriveInElementOrderAndPendingFollowsWhatArrived) {
    auto variant = liftedVariant<double, 1>(&reporting, CanThrow, {.warns = true});
    tbb::global_control control(tbb::global_control::max_allowed_parallelism, 4);
    warning = true;
    const ka::ArrayPtr result = callForArray(variant, {give(ramp({1, 3000}))});
    warning = false;
    EXPECT_TRUE(pending);
    EXPECT_EQ(offCaller, 0);
    ASSERT_EQ(parent.events.size(), 3000u);
    for (std::size_t i = 0; i < parent.events.size(); ++i)
        ASSERT_EQ(parent.events[i], "warning w" + std::to_string(i));
    EXPECT_EQ(elementsOf<double>(result.get())[2999], -2999.0) << "warnings leave the result";

    auto quiet = liftedVariant<double, 1>(
        +[](double x, double* out, IOrroBuiltinEnvironment*, OrroFunctionDescriptor*) {
            *out = -x;
            return true;
        },
        CanThrow, {.throws = true});
    parent.events.clear();
    EXPECT_EQ(elementsOf<double>(callForArray(quiet, {give(ramp({1, 3}))}).get()),
              (std::vector<double>{0, -1, -2}));
    EXPECT_FALSE(pending);
    EXPECT_TRUE(parent.events.empty());
}

// The hand-over at destruction. Reports are written as text: 'w' and a letter warns, 'e' and a
// letter fails.
TEST(ParallelEnvironment, HandOverToTheParent) {
    enum class Parent { RECORDING, NONE, NO_ACCESSORS, REFUSES_SECOND_WARNING };
    struct Case {
        Parent parent;
        const char* reports;
        bool flagBefore, flagAfter;
        std::vector<std::string> events;
    };
    const Case cases[] = {
        {Parent::RECORDING, "", true, false, {}},  // nothing reported clears the flag
        {Parent::RECORDING, "waexwbey", false, true, {"warning a", "warning b", "exception x"}},
        {Parent::NONE, "waex", true, true, {}},
        {Parent::NO_ACCESSORS, "waex", true, true, {}},
        {Parent::REFUSES_SECOND_WARNING,
         "wawbwcex",
         false,
         true,
         {"warning a", "exception parent refuses"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.reports);
        RecordingEnvironment parent;
        parent.withAccessors = c.parent != Parent::NO_ACCESSORS;
        parent.failAtWarning = c.parent == Parent::REFUSES_SECOND_WARNING ? 1 : -1;
        bool pending = c.flagBefore;
        {
            ParallelEnvironment environment(c.parent == Parent::NONE ? nullptr : &parent, &pending);
            IOrroBuiltinAccessors* const accessors = environment.GetOrroBuiltinAccessors();
            ASSERT_EQ(accessors, &environment);
            for (const char* report = c.reports; *report != 0; report += 2) {
                if (report[0] == 'w')
                    accessors->AddWarningMessage(
                        std::u16string(1, static_cast<char16_t>(report[1])));
                try {
                    if (report[0] == 'e') throw std::runtime_error(std::string(1, report[1]));
                } catch (...) {
                    accessors->SetInternalPendingException();
                }
            }
            EXPECT_EQ(environment.containsException(),
                      std::string(c.reports).find('e') != std::string::npos);
            EXPECT_EQ(pending, c.flagBefore) << "the flag changes only at the hand-over";
        }
        EXPECT_EQ(pending, c.flagAfter);
        EXPECT_EQ(parent.events, c.events);
    }
    RecordingEnvironment parent;
    ParallelEnvironment(&parent, nullptr)
        .AddWarningMessage(u"a");  // no flag: handed over all the same
    EXPECT_EQ(parent.events, std::vector<std::string>{"warning a"});
}

}  // namespace
}  // namespace elementwisetest
