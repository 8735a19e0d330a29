// The interpreted call without services: list choice, arity search, conversion of arguments,
// reports of CanThrow functions, results, the default implementation, and the record of the lists.
#include <gtest/gtest.h>

#include <algorithm>
#include <complex>
#include <memory>
#include <sstream>

#include <builtin/services/BuiltinServices.hpp>
#include <foundation/log/test/memory_sink.hpp>

#include "InvokeSupport.hpp"
#include "LiveArrays.hpp"
#include "WarningCapture.hpp"

namespace invoketest {
namespace {

using ka::ArrayPtr;
using Names = std::vector<std::string>;

class Invoke : public testsupport::LiveArrayTest {
protected:
    void SetUp() override {
        LiveArrayTest::SetUp();
        seen = Seen();
        ASSERT_EQ(getHeldService<StringSupport>(), nullptr);
    }
};

TEST_F(Invoke, ChoosesTheListByOrroAndComplexScalars) {
    const auto v = [](const char* name) {
        return makeVariant({.in = {anyArray(), anyArray()},
                            .out = {scalar()},
                            .typedEntry = &recordingEntry,
                            .name = name});
    };
    const Lists longer{.noOrro = {v("noOrro")},
                       .afterOrro = {v("after")},
                       .complexScalar = {v("complex"), v("after")}};
    const Lists sameSize{.afterOrro = {v("after")}, .complexScalar = {v("complex")}};
    const TestFcn withExtra(longer, defaultVariant()), withoutExtra(sameSize, defaultVariant());
    const ArrayPtr real = ka::scalar(1.0), complexOne = ka::scalar(std::complex<double>(1, 2));
    const ArrayPtr complexRow = ka::row({std::complex<double>(1, 2), std::complex<double>(3, 4)});
    const struct {
        const TestFcn& fcn;
        Consider consider;
        kaArray_tag *first, *second;
        const char* expected;
    } cases[] = {
        {withExtra, Consider::InvokeNoOrro, complexOne.get(), real.get(), "noOrro"},
        {withExtra, Consider::InvokeAfterOrro, complexRow.get(), real.get(), "after"},
        {withExtra, Consider::InvokeAfterOrro, complexOne.get(), real.get(), "complex"},
        {withExtra, static_cast<Consider>(7), real.get(), complexOne.get(), "complex"},
        {withoutExtra, Consider::InvokeAfterOrro, complexOne.get(), real.get(), "after"},
    };
    for (const auto& c : cases) {
        seen.ran.clear();
        callForOne(c.fcn, {c.first, c.second}, c.consider);
        EXPECT_EQ(seen.ran, Names{c.expected});
    }
}

TEST_F(Invoke, AritySearchAndPrecedence) {
    const Lists lists{
        .noOrro = {
            makeVariant({.typedEntry = &recordingEntry, .name = "in0out0"}),
            makeVariant({.in = {scalar()}, .typedEntry = &recordingEntry, .name = "in1out0"}),
            doubleVariant("in1out1 scalar"),
            nativeVariant<double, kaArray_tag*>("in1out1 array", {anyArray()}, {scalar()},
                                                &ofArray),
            doubleVariant("in2out1", {scalar(), scalar()}),
        }};
    const Lists noOutputs{.noOrro = {lists.noOrro[0], lists.noOrro[1]}};
    const TestFcn fcn(lists, defaultVariant()), onlyNoOutputs(noOutputs, defaultVariant());
    const ArrayPtr x = ka::scalar(2.0), row = ka::row({1.0, 2.0});
    const struct {
        const TestFcn& fcn;
        int nlhs;
        std::vector<kaArray_tag*> args;
        const char* expected;
    } cases[] = {
        {fcn, 0, {}, "in0out0"},
        {fcn, 0, {x.get()}, "in1out0"},
        {fcn, 1, {x.get()}, "in1out1 scalar"},
        {fcn, 1, {row.get()}, "in1out1 array"},
        {fcn, 1, {x.get(), x.get()}, "in2out1"},
        {fcn, 2, {x.get()}, "default"},
        {fcn, 1, {x.get(), x.get(), x.get()}, "default"},
        {onlyNoOutputs, 1, {x.get()}, "default"},
    };
    for (const auto& c : cases) {
        seen.ran.clear();
        kaArray_tag* plhs[2] = {nullptr, nullptr};
        std::vector<kaArray_tag*> args = c.args;
        c.fcn.invoke(c.nlhs, plhs, static_cast<int>(args.size()), args.data(),
                     Consider::InvokeNoOrro);
        EXPECT_EQ(seen.ran, Names{c.expected});
        matrix::releaseReference(plhs[0]);
    }
}

TEST_F(Invoke, ArgumentsArriveByTheDeclaredTypeAndReferencesComeBack) {
    Lists lists{
        .noOrro = {
            makeVariant(
                {.in = {scalar(), anyArray()}, .out = {scalar()}, .typedEntry = &recordingEntry}),
            nativeVariant<double, kaArray_tag*>("array", {anyArray()}, {scalar()}, &ofArray)}};
    std::sort(lists.noOrro.begin(), lists.noOrro.end());
    const TestFcn fcn(lists, defaultVariant());
    const ArrayPtr x = ka::scalar(2.5);
    EXPECT_EQ(callForOne(fcn, {x.get(), x.get()}), 2.0);
    EXPECT_EQ(seen.argumentAlternatives, (std::vector<int>{1, 13}));
    callForOne(fcn, {x.get()});
    EXPECT_EQ(seen.refCountInside, 2u);  // an array argument comes with a reference of its own
    // Beyond the inline room of the argument list (8) and of the cache (15).
    const Lists longLists{.noOrro = {makeVariant({.in = std::vector<ArgType>(20, scalar()),
                                                  .out = {scalar()},
                                                  .typedEntry = &recordingEntry})}};
    EXPECT_EQ(
        callForOne(TestFcn(longLists, defaultVariant()), std::vector<kaArray_tag*>(20, x.get())),
        20.0);
    // A wrapper that refuses its argument gives back the reference that the argument carried.
    seen.ran.clear();
    const Lists misdeclared{.noOrro = {nativeVariant<double, double>("misdeclared", {anyArray()},
                                                                     {scalar()}, &ofDouble)}};
    EXPECT_THROW(callForOne(TestFcn(misdeclared, defaultVariant()), {x.get()}), boost::bad_get);
    EXPECT_TRUE(seen.ran.empty());
    EXPECT_EQ(x->refCount, 1u);
}

kaArray_tag* pairOf(double x, OrroFunctionDescriptor*) {
    return ka::row({x, x}).release();
}

TEST_F(Invoke, ResultOfACallThatAsksForNoOutput) {
    const ArrayPtr x = ka::scalar(3.0);
    kaArray_tag* args[] = {x.get()};
    const BuiltinVariant pair =
        nativeVariant<kaArray_tag*, double>("pair", {scalar()}, {anyArray()}, &pairOf);
    for (const BuiltinVariant& variant : {pair, doubleVariant("double")}) {
        const Lists lists{.noOrro = {variant}};
        const TestFcn fcn(lists, defaultVariant());
        fcn.invoke(0, nullptr, 1, args, Consider::InvokeNoOrro);  // released; the fixture checks
        kaArray_tag* plhs[1] = {nullptr};
        fcn.invoke(0, plhs, 1, args, Consider::InvokeNoOrro);
        const ArrayPtr result(plhs[0]);
        EXPECT_EQ(matrix::numberOfElements(result.get()),
                  variant.cppFunctionName == "pair" ? 2u : 1u);
    }
}

// Warns twice if its name says "warn", records the errors its name lists, is pending unless
// "quiet".
bool reporting(double x, kaArray_tag** out, IOrroBuiltinEnvironment* env,
               OrroFunctionDescriptor* d) {
    const std::string& name = nameOf(d);
    IOrroBuiltinAccessors* accessors = env->GetOrroBuiltinAccessors();
    if (name.find("warn") != std::string::npos) {
        accessors->AddWarningMessage(u"w1");
        accessors->AddWarningMessage(u"w2");
    }
    for (const char* text : {"earlier", "later"}) {
        if (name.find(text) == std::string::npos) continue;
        try {
            throw std::domain_error(text);
        } catch (...) {
            accessors->SetInternalPendingException();
        }
    }
    *out = ka::scalar(x).release();
    return name.find("quiet") == std::string::npos;
}

TEST_F(Invoke, ReportsOfCanThrowFunctions) {
    const struct {
        const char* name;
        std::size_t warnings;
        const char* error;
    } cases[] = {{"warn", 2, nullptr},
                 {"warn earlier", 2, "earlier"},
                 {"earlier later", 0, "later"},
                 {"warn quiet", 0, nullptr}};
    const ArrayPtr x = ka::scalar(1.5);
    kaArray_tag* args[] = {x.get()};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Lists lists{
            .noOrro = {makeVariant({.in = {scalar()},
                                    .out = {anyArray()},
                                    .typedEntry = wrapperFor<kaArray_tag*, double>(),
                                    .nativeEntry = reinterpret_cast<NativeEntry>(&reporting),
                                    .convention = JIT_CALLING_CONVENTION::CanThrow,
                                    .warns = V::HasWarnings::YES,
                                    .throws = V::HasExceptions::YES,
                                    .name = c.name})}};
        const testsupport::WarningCapture capture;
        kaArray_tag* plhs[1] = {x.get()};  // left alone when the call fails
        try {
            TestFcn(lists, defaultVariant()).invoke(1, plhs, 1, args, Consider::InvokeNoOrro);
            EXPECT_EQ(c.error, nullptr);
            matrix::releaseReference(plhs[0]);
        } catch (const std::domain_error& error) {
            EXPECT_STREQ(error.what(), c.error);
            EXPECT_EQ(plhs[0], x.get());
        }
        EXPECT_EQ(capture.warnings().size(), c.warnings);
    }
}

TEST_F(Invoke, DefaultImplementationAndCopies) {
    const Lists lists{.noOrro = {doubleVariant("double")}};
    const ArrayPtr row = ka::row({1.0, 2.0});
    EXPECT_EQ(callForOne(TestFcn(lists, defaultVariant()), {row.get()}), -1.0);
    EXPECT_EQ(callForOne(TestFcn(Lists{}, defaultVariant()), {row.get()}), -1.0);
    EXPECT_THROW(callForOne(TestFcn(lists, makeVariant({.typedEntry = nullptr})), {row.get()}),
                 std::logic_error);
    EXPECT_THROW(TestFcn().invoke(0, nullptr, 0, nullptr, Consider::InvokeAfterOrro),
                 std::logic_error);
    const std::unique_ptr<BuiltinFcn> copy(
        TestFcn(lists, defaultVariant()).clone());  // shares the lists
    EXPECT_EQ(callForOne(*copy, {row.get()}), -1.0);
}

TEST_F(Invoke, ConstructionLogsTheFiveListsInOneRecord) {
    const Lists lists{.noOrro = {doubleVariant("a")},
                      .all = {doubleVariant("a"), doubleVariant("b", {scalar(kaSINGLE_CLASS)})}};
    std::ostringstream a, all;
    a << lists.all[0];
    all << lists.all[0] << ", " << lists.all[1];
    namespace logtest = foundation::log::test;
    {
        const logtest::scoped_channel_mask mask("builtin2::BuiltinFcn", 2);
        const logtest::memory_sink sink("builtin2::BuiltinFcn");
        const TestFcn fcn(lists, defaultVariant());
        ASSERT_EQ(sink.size(), 1u);
        EXPECT_EQ(sink.records()[0].severity, 2u);
        EXPECT_EQ(sink.texts()[0],
                  " asString(allVariants_)=2 variants:\n" + all.str() +
                      "\n asString(VariantArray(variants, numVariants))=0 variants:\n\n"
                      " asString(searchedByInvokeNoOrro_)=1 variants:\n" +
                      a.str() +
                      "\n asString(searchedByInvokeAfterOrro_)=0 variants:\n\n"
                      " asString(searchedByInvokeAfterOrroComplexScalar_)=0 variants:\n\n");
    }
    const logtest::scoped_channel_mask mask("builtin2::BuiltinFcn", 32 | 64);
    const logtest::memory_sink sink("builtin2::BuiltinFcn");
    const TestFcn fcn(lists, defaultVariant());
    ASSERT_EQ(sink.size(), 2u);  // the trace's entry and exit
    EXPECT_EQ(sink.records()[0].sourcePath, "builtin2/interface/builtin/BuiltinFcn");
}

}  // namespace
}  // namespace invoketest
