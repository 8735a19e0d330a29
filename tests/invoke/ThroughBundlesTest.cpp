// With the reference bundles: a 1-by-1 string matches a flag by its text and drops out (other
// strings and char rows stand for no flag); Counter objects cross a call both ways; undeclared
// classes are refused.
#include <builtin/objects/objects.hpp>
#include <builtin/services/services.hpp>
#include <builtin/types/ClassifyKaArray.hpp>

#include <classbundle/ClassSystem.hpp>
#include <foundation/cppmicroservices/framework.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "InvokeSupport.hpp"
#include "LiveArrays.hpp"

namespace invoketest {
namespace {

using classbundle::Counter;
using Norvane::orro::OrroObject;

class ThroughBundles : public testsupport::LiveArrayTest {
protected:
    static void SetUpTestSuite() {
        unsetenv("KELDOR_INSTALL_ROOT");
        foundation::cppmicroservices::createFramework();
        builtinreg::registerOrroObjectHelper(classbundle::kCounterClassName, 0);
    }
    void TearDown() override {
        LiveArrayTest::TearDown();
        EXPECT_EQ(Counter::liveCounters(), 0);
    }
    static ka::ArrayPtr strings(std::vector<std::u16string> texts) {
        const std::size_t dims[] = {1, texts.size()};
        return getHeldService<StringSupport>()->createString(dims, std::move(texts));
    }
};

TEST_F(ThroughBundles, FlagsMatchByTextAndDropOut) {
    ASSERT_NE(getHeldService<StringSupport>(), nullptr);
    // Wrappers of one input: a flag left among the arguments would make them fail.
    Lists lists{.noOrro = {doubleVariant("fast, x", {flag("fast"), scalar()}),
                           doubleVariant("slow, x", {flag("slow"), scalar()}),
                           doubleVariant("x, fast", {scalar(), flag("fast")})}};
    std::sort(lists.noOrro.begin(), lists.noOrro.end());
    const TestFcn fcn(lists, defaultVariant());
    const ka::ArrayPtr fast = strings({u"fast"}), slow = strings({u"slow"}),
                       pair = strings({u"fast", u"slow"});
    const ka::ArrayPtr chars = ka::charArray(std::u16string_view(u"fast")), x = ka::scalar(2.0);
    const struct {
        kaArray_tag *first, *second;
        const char* expected;
    } cases[] = {{fast.get(), x.get(), "fast, x"},
                 {slow.get(), x.get(), "slow, x"},
                 {x.get(), fast.get(), "x, fast"},
                 {pair.get(), x.get(), "default"},
                 {chars.get(), x.get(), "default"}};
    for (const auto& c : cases) {
        seen.ran.clear();
        EXPECT_EQ(callForOne(fcn, {c.first, c.second}),
                  std::string(c.expected) == "default" ? -1.0 : 3.0);
        EXPECT_EQ(seen.ran, std::vector<std::string>{c.expected});
    }
    EXPECT_EQ(fast->refCount, 1u);
    const Lists recorded{.noOrro = {makeVariant({.in = {flag("a"), scalar(), flag("b"), anyArray()},
                                                 .out = {scalar()},
                                                 .typedEntry = &recordingEntry})}};
    const ka::ArrayPtr a = strings({u"a"}), b = strings({u"b"});
    EXPECT_EQ(callForOne(TestFcn(recorded, defaultVariant()), {a.get(), x.get(), b.get(), x.get()}),
              2.0);
    EXPECT_EQ(seen.argumentAlternatives, (std::vector<int>{1, 13}));
}

OrroObject* nextCounter(OrroObject* counter, OrroFunctionDescriptor*) {
    return new Counter(dynamic_cast<Counter&>(*counter).value() + 1);
}
OrroObject* sameCounter(OrroObject* counter, OrroFunctionDescriptor*) {
    return counter;
}

TEST_F(ThroughBundles, ObjectsCrossAnInterpretedCallBothWays) {
    const kaClassID counterClass = classbundle::kFirstClassId;
    const ArgType counterType = types::OrroObjectTypes(counterClass, 0, false);
    EXPECT_EQ(builtinreg::getClassIdByName("Counter"), counterClass);
    EXPECT_TRUE(builtinreg::isAKnownOrroObject(counterClass));
    EXPECT_TRUE(getHeldService<IOrroObjectRegister>()->isOrroObjectRegistered(counterClass, 0));
    const auto counter =
        orroobject::toKaArray(boost::intrusive_ptr<const OrroObject>(new Counter(41)), "Counter");
    EXPECT_EQ(getArgTypeOfKaArray(counter.get()), counterType);
    for (const auto& [native, expected] :
         {std::pair{&nextCounter, 42L}, std::pair{&sameCounter, 41L}}) {
        const Lists lists{.noOrro = {nativeVariant<OrroObject*, OrroObject*>(
                              "counter", {counterType}, {counterType}, native)}};
        kaArray_tag* plhs[1] = {nullptr};
        kaArray_tag* prhs[1] = {counter.get()};
        TestFcn(lists, defaultVariant()).invoke(1, plhs, 1, prhs, Consider::InvokeNoOrro);
        const ka::ArrayPtr result(plhs[0]);
        ASSERT_NE(result, nullptr);
        EXPECT_EQ(getArgTypeOfKaArray(result.get()), counterType);
        EXPECT_EQ(dynamic_cast<const Counter&>(orroobject::fromKaArray(result.get())).value(),
                  expected);
        EXPECT_EQ(counter->refCount, 1u);
        EXPECT_EQ(orroobject::fromKaArray(counter.get()).useCount(),
                  expected == 41 ? 2u : 1u);  // shared by sameCounter
    }
    struct Undeclared final : OrroObject {};
    EXPECT_THROW(orroobject::toKaArray(boost::intrusive_ptr<const OrroObject>(new Undeclared), ""),
                 types::GetOrroObjectRuntimeInfoError);
}

}  // namespace
}  // namespace invoketest
