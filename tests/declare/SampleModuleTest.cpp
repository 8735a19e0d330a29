// The sample module end to end, as a host finds it and the interpreter calls it, grouped by the
// road a call takes: scalar, array, broadcast, flag, string, object, default implementation.
// Every test leaves the live-array count where it found it. The stress test checks sum of a
// matrix, a temporary that becomes the result, sqrt's warning and inv's error by the same call;
// tests/badinput the calls that no variant takes.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <stdexcept>

#include <builtin/declare/Lint.hpp>
#include <builtin/declare/ModuleDirectory.hpp>
#include <builtin/services/BuiltinServices.hpp>
#include <classbundle/ClassSystem.hpp>
#include <foundation/cppmicroservices/framework.hpp>

#include "array_values.hpp"
#include "live_arrays.hpp"

namespace {

using namespace Norvane::builtin;
using Complex = std::complex<double>;

class SampleModule : public testsupport::LiveArrayTest {
protected:
    static void SetUpTestSuite() {
        unsetenv("KELDOR_INSTALL_ROOT");
        foundation::cppmicroservices::createFramework();
        directory_ = new declare::ModuleDirectory(declare::ModuleDirectory::start({declare::builtinServicesFolder()}));
    }
    static void TearDownTestSuite() { delete directory_; }

    // Calls the builtin with the arguments, which stay the caller's; one output.
    static ka::ArrayPtr call(const char* name, std::initializer_list<const kaArray_tag*> arguments) {
        const BuiltinFcn* fcn = directory_->find(name);
        if (fcn == nullptr) throw std::logic_error(std::string("no builtin ") + name);
        std::vector<kaArray_tag*> prhs;
        for (const kaArray_tag* a : arguments) prhs.push_back(const_cast<kaArray_tag*>(a));
        kaArray_tag* plhs[1] = {nullptr};
        fcn->call(1, plhs, static_cast<int>(prhs.size()), prhs.data());
        return ka::ArrayPtr(plhs[0]);
    }

    static ka::ArrayPtr strings(std::u16string text) {
        const std::size_t dims[] = {1, 1};
        return getHeldService<StringSupport>()->createString(dims, {std::move(text)});
    }

    static inline declare::ModuleDirectory* directory_ = nullptr;
};

using testsupport::dimsOf;
using testsupport::elementsOf;

TEST_F(SampleModule, TheHostListsTheModule) {
    EXPECT_EQ(directory_->moduleOf("plus"), "sample");
    EXPECT_NE(directory_->lists("sort"), nullptr);
    EXPECT_EQ(directory_->find("nothing"), nullptr);
    for (const auto& [name, module] : directory_->list()) {
        for (const auto& finding : declare::lintVariantLists(name, *directory_->lists(name))) {
            ADD_FAILURE() << finding.message;
        }
    }
    EXPECT_EQ(directory_->list().size(), 15u);
}

TEST_F(SampleModule, ScalarsOfEveryClass) {
    const ka::ArrayPtr one = ka::scalar(1.0), two = ka::scalar(2.0), z = ka::scalar(Complex(1, 2));
    EXPECT_EQ(elementsOf<double>(call("plus", {one.get(), two.get()})), std::vector<double>{3});
    EXPECT_EQ(elementsOf<double>(call("times", {two.get(), two.get()})), std::vector<double>{4});
    EXPECT_EQ(elementsOf<float>(call("minus", {ka::scalar(5.0f).get(), ka::scalar(2.0f).get()})), std::vector<float>{3});
    const ka::ArrayPtr big = ka::scalar<std::int32_t>(std::numeric_limits<std::int32_t>::max());
    const ka::ArrayPtr saturated = call("plus", {big.get(), ka::scalar<std::int32_t>(1).get()});
    EXPECT_EQ(matrix::classId(saturated.get()), kaINT32_CLASS);
    EXPECT_EQ(elementsOf<std::int32_t>(saturated), std::vector<std::int32_t>{std::numeric_limits<std::int32_t>::max()});
    EXPECT_EQ(elementsOf<double>(call("plus", {z.get(), ka::scalar(3.0).get()})), (std::vector<double>{4, 2}));
    EXPECT_EQ(elementsOf<double>(call("times", {two.get(), z.get()})), (std::vector<double>{2, 4}));
    EXPECT_EQ(elementsOf<double>(call("hypot", {ka::scalar(3.0).get(), ka::scalar(4.0).get()})), std::vector<double>{5});
    EXPECT_EQ(elementsOf<double>(call("abs", {z.get()})), std::vector<double>{std::sqrt(5.0)});
}

TEST_F(SampleModule, ArraysAndBroadcast) {
    const ka::ArrayPtr row = ka::row({1.0, 2.0, 3.0}), column = ka::column({10.0, 20.0});
    const ka::ArrayPtr broadcast = call("plus", {column.get(), row.get()});
    EXPECT_EQ(dimsOf(broadcast), (ka::Dims{2, 3}));
    EXPECT_EQ(elementsOf<double>(broadcast), (std::vector<double>{11, 21, 12, 22, 13, 23}));
    EXPECT_EQ(elementsOf<double>(call("sum", {row.get()})), std::vector<double>{6});
    EXPECT_EQ(elementsOf<double>(call("sum", {ka::createNumeric(kaDOUBLE_CLASS, {0, 0}).get()})), std::vector<double>{0});
    const ka::ArrayPtr zs = ka::row({Complex(3, 4), Complex(0, -1)});
    EXPECT_EQ(elementsOf<double>(call("abs", {zs.get()})), (std::vector<double>{5, 1}));
}

TEST_F(SampleModule, Flags) {
    const ka::ArrayPtr half = ka::scalar(2.5), negative = ka::scalar(-2.5), halves = ka::row({0.5, 1.5, 2.5});
    const ka::ArrayPtr even = strings(u"even"), away = strings(u"away"), descend = strings(u"descend");
    EXPECT_EQ(elementsOf<double>(call("round", {half.get()})), std::vector<double>{3});
    EXPECT_EQ(elementsOf<double>(call("round", {half.get(), even.get()})), std::vector<double>{2});
    EXPECT_EQ(elementsOf<double>(call("round", {negative.get(), away.get()})), std::vector<double>{-3});
    EXPECT_EQ(elementsOf<double>(call("round", {halves.get(), even.get()})), (std::vector<double>{0, 2, 2}));
    const ka::ArrayPtr unsorted = ka::column({2.0, std::nan(""), 1.0, 3.0});
    EXPECT_EQ(elementsOf<double>(call("sort", {unsorted.get(), descend.get()}))[0], 3);
    const ka::ArrayPtr ascending = call("sort", {unsorted.get()});
    EXPECT_EQ(dimsOf(ascending), (ka::Dims{4, 1}));
    EXPECT_TRUE(std::isnan(elementsOf<double>(ascending)[3])) << "NaN last";
    EXPECT_THROW(call("round", {half.get(), strings(u"sideways").get()}), std::exception);
}

TEST_F(SampleModule, Strings) {
    const StringSupport& strings_ = *getHeldService<StringSupport>();
    const ka::ArrayPtr joined = call("plus", {strings(u"ab").get(), strings(u"cd").get()});
    EXPECT_EQ(strings_.getString(joined.get(), 0), u"abcd");
    const ka::ArrayPtr upper = call("upper", {strings(u"straße").get()});
    EXPECT_EQ(strings_.getString(upper.get(), 0), u"STRAßE");
    // A char row stays one: tests/badinput/TextTest.cpp, and kcall's upper('abc').
}

TEST_F(SampleModule, ObjectsOfTheClassSystem) {
    {
        const ka::ArrayPtr counter = call("counter", {ka::scalar(41.0).get()});
        EXPECT_EQ(ka::objectClassName(counter.get()), "Counter");
        EXPECT_EQ(elementsOf<double>(call("count", {counter.get()})), std::vector<double>{41});
        EXPECT_EQ(elementsOf<char16_t>(call("class", {counter.get()})).size(), 7u);
    }
    EXPECT_EQ(classbundle::Counter::liveCounters(), 0);
}

TEST_F(SampleModule, DefaultImplementations) {
    const ka::ArrayPtr cube = ka::createNumeric(kaSINGLE_CLASS, {2, 3, 4});
    EXPECT_EQ(elementsOf<double>(call("size", {cube.get()})), (std::vector<double>{2, 3, 4}));
    EXPECT_EQ(elementsOf<char16_t>(call("class", {cube.get()})), (std::vector<char16_t>{u's', u'i', u'n', u'g', u'l', u'e'}));
}

}  // namespace
