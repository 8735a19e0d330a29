// Through the reference class-system bundle: "Counter" is registered from its manifest, its objects
// cross an interpreted call both ways (a result may share the input's object), and an object of a
// native class without runtime information is refused. The sample module's object road is tests/stress's.
#include <builtin/objects/objects.hpp>
#include <builtin/services/services.hpp>
#include <builtin/types/classifyKaArray.hpp>

#include <classbundle/ClassSystem.hpp>
#include <foundation/cppmicroservices/framework.hpp>

#include <gtest/gtest.h>

#include <cstdlib>

#include "../invoke/InvokeSupport.hpp"
#include "live_arrays.hpp"

namespace {

using namespace invoketest;
using classbundle::Counter;
using Norvane::orro::OrroObject;

class ObjectsThroughBundles : public testsupport::LiveArrayTest {
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
};

OrroObject* nextCounter(OrroObject* counter, OrroFunctionDescriptor*) {
    return new Counter(dynamic_cast<Counter&>(*counter).value() + 1);
}
OrroObject* sameCounter(OrroObject* counter, OrroFunctionDescriptor*) { return counter; }

TEST_F(ObjectsThroughBundles, ObjectsCrossAnInterpretedCallBothWays) {
    const kaClassID counterClass = classbundle::kFirstClassId;
    const ArgType counterType = types::OrroObjectTypes(counterClass, 0, false);
    EXPECT_EQ(builtinreg::getClassIdByName("Counter"), counterClass);
    EXPECT_TRUE(builtinreg::isAKnownOrroObject(counterClass));
    EXPECT_TRUE(getHeldService<IOrroObjectRegister>()->isOrroObjectRegistered(counterClass, 0));
    const auto counter = orroobject::toKaArray(boost::intrusive_ptr<const OrroObject>(new Counter(41)), "Counter");
    EXPECT_EQ(getArgTypeOfKaArray(counter.get()), counterType);
    for (const auto& [native, expected] : {std::pair{&nextCounter, 42L}, std::pair{&sameCounter, 41L}}) {
        const Lists lists{.noOrro = {nativeVariant<OrroObject*, OrroObject*>("counter", {counterType}, {counterType}, native)}};
        kaArray_tag* plhs[1] = {nullptr};
        kaArray_tag* prhs[1] = {counter.get()};
        TestFcn(lists, defaultVariant()).invoke(1, plhs, 1, prhs, Consider::InvokeNoOrro);
        const ka::ArrayPtr result(plhs[0]);
        ASSERT_NE(result, nullptr);
        EXPECT_EQ(getArgTypeOfKaArray(result.get()), counterType);
        EXPECT_EQ(dynamic_cast<const Counter&>(orroobject::fromKaArray(result.get())).value(), expected);
        EXPECT_EQ(counter->refCount, 1u);
        EXPECT_EQ(orroobject::fromKaArray(counter.get()).useCount(), expected == 41 ? 2u : 1u);
    }
    struct Undeclared final : OrroObject {};
    EXPECT_THROW(orroobject::toKaArray(boost::intrusive_ptr<const OrroObject>(new Undeclared), ""),
                 types::GetOrroObjectRuntimeInfoError);
}

}  // namespace
