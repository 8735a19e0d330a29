// A process with the build tree's reference bundles: the class-system bundle stores the runtime
// information of its manifest, defines the class "Counter" for its native class, and provides
// the class provider and the object register. Once "Counter" is registered, its objects cross
// an interpreted call both ways, and nothing is left alive afterwards.
#include <builtin/objects/objects.hpp>
#include <builtin/services/services.hpp>
#include <builtin/types/classifyKaArray.hpp>

#include <classbundle/ClassSystem.hpp>
#include <fl/diag.hpp>
#include <foundation/cppmicroservices/framework.hpp>

#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>

#include "../invoke/InvokeSupport.hpp"
#include "live_arrays.hpp"

namespace {

using namespace invoketest;
using classbundle::Counter;
using Norvane::orro::OrroObject;

const std::string& counterNativeName() {
    static const std::string name =
        foundation::core::diag::detail::demangle_typeid_name(typeid(Counter).name(), false);
    return name;
}

// What a module's code does with the variant id it carries for its class: hold it against the
// manifest's.
std::size_t counterVariantFromManifest() {
    return types::getOrroObjectRuntimeInfo(counterNativeName()).variantId;
}

class ObjectsThroughBundles : public testsupport::LiveArrayTest {
protected:
    static void SetUpTestSuite() {
        unsetenv("KELDOR_INSTALL_ROOT");
        foundation::cppmicroservices::createFramework();
        builtinreg::registerOrroObjectHelper(classbundle::kCounterClassName, 0);
    }
    void TearDown() override {
        LiveArrayTest::TearDown();
        EXPECT_EQ(Counter::liveCounters(), 0) << "the test left engine objects alive";
    }

    static ka::ArrayPtr counterArray(long value) {
        return orroobject::toKaArray(boost::intrusive_ptr<const OrroObject>(new Counter(value)), "Counter");
    }
    static long valueIn(const kaArray_tag* array) {
        return dynamic_cast<const Counter&>(orroobject::fromKaArray(array)).value();
    }

    const kaClassID counterClass = classbundle::kFirstClassId;
    const ArgType counterType = types::OrroObjectTypes(counterClass, 0, false);
};

TEST_F(ObjectsThroughBundles, TheBundlesClassIsDeclaredDefinedAndRegistered) {
    EXPECT_EQ(types::getOrroObjectRuntimeInfo(counterNativeName()), (types::OrroObjectRuntimeInfo{"Counter", 0}));
    builtinreg::detail::assertOrroVariantIdMatches(0, &counterVariantFromManifest, typeid(Counter));
    EXPECT_EQ(builtinreg::getClassIdByName("Counter"), counterClass);
    EXPECT_EQ(builtinreg::getClassIdByName("Unknown"), kaUNKNOWN_CLASS);
    EXPECT_TRUE(builtinreg::isAKnownOrroObject(counterClass));
    EXPECT_TRUE(getHeldService<IOrroObjectRegister>()->isOrroObjectRegistered(counterClass, 0));
}

OrroObject* nextCounter(OrroObject* counter, OrroFunctionDescriptor* d) {
    seen.ran.push_back(nameOf(d));
    return new Counter(dynamic_cast<Counter&>(*counter).value() + 1);
}
OrroObject* sameCounter(OrroObject* counter, OrroFunctionDescriptor* d) {
    seen.ran.push_back(nameOf(d));
    return counter;
}

TEST_F(ObjectsThroughBundles, ObjectsCrossAnInterpretedCallBothWays) {
    const auto counter = counterArray(41);
    EXPECT_EQ(getArgTypeOfKaArray(counter.get()), counterType);
    EXPECT_EQ(valueIn(counter.get()), 41);

    for (const auto& [native, expected] : {std::pair{&nextCounter, 42L}, std::pair{&sameCounter, 41L}}) {
        SCOPED_TRACE(expected);
        const Lists lists{.noOrro = {nativeVariant<OrroObject*, OrroObject*>("counter", {counterType},
                                                                             {counterType}, native)}};
        const TestFcn fcn(lists, defaultVariant());
        seen.ran.clear();
        kaArray_tag* plhs[1] = {nullptr};
        kaArray_tag* prhs[1] = {counter.get()};
        fcn.invoke(1, plhs, 1, prhs, Consider::InvokeNoOrro);
        const ka::ArrayPtr result(plhs[0]);

        EXPECT_EQ(seen.ran, std::vector<std::string>{"counter"});
        ASSERT_NE(result, nullptr);
        EXPECT_EQ(getArgTypeOfKaArray(result.get()), counterType);
        EXPECT_EQ(valueIn(result.get()), expected);
        EXPECT_EQ(counter->refCount, 1u);
        // The object of the input is shared by the result of sameCounter.
        EXPECT_EQ(orroobject::fromKaArray(counter.get()).useCount(), expected == 41 ? 2u : 1u);
    }
}

TEST_F(ObjectsThroughBundles, TheProviderRefusesWhatHoldsNoObject) {
    // A number and a null object are refused in tests/badinput/ArgumentsTest.cpp. A native class without runtime information has no class to go to; the object goes with
    // the refused call.
    struct Undeclared final : OrroObject {};
    EXPECT_THROW(orroobject::toKaArray(boost::intrusive_ptr<const OrroObject>(new Undeclared), ""),
                 types::GetOrroObjectRuntimeInfoError);
}

TEST_F(ObjectsThroughBundles, TheClassSystemTakesPackageFunctionsFindersAndMethods) {
    const auto& classSystem = getHeldService<classbundle::ClassSystem>();
    ASSERT_NE(classSystem, nullptr);
    int stand = 0;  // addresses that stand for a function object, a class and an access level
    auto* function = reinterpret_cast<Zfh_KELDOR_fn*>(&stand);
    auto* cls = reinterpret_cast<zobj::ZobjClass*>(&stand);
    const auto& access = *reinterpret_cast<const zobj::MemberAccess*>(&stand);

    builtinreg::registerPackageFunctionHelper({"geo", "util"}, "area", function);
    EXPECT_EQ(classSystem->packageFunction("geo.util.area"), function);

    orroobject::setZfhFinder("geo", [function](const std::string&, std::string) { return function; });
    ASSERT_TRUE(classSystem->zfhFinder("geo"));
    EXPECT_EQ(classSystem->zfhFinder("geo")("a", "b"), function);

    orroobject::addMethod(cls, "Counter", "increment", access, true, false, false);
    EXPECT_EQ(classSystem->methods(cls), std::vector<std::string>{"Counter.increment"});
}

}  // namespace
