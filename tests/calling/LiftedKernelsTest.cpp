// Kernels lifted through their declarations: callables called inline, one to four inputs of
// mixed types, block kernels, and kernels known only at run time, against a plain reference walk
// under several thread limits; then what their exceptions and warnings become.
#include <builtin/declare/declare.hpp>

#include <gtest/gtest.h>
#include <oneapi/tbb/global_control.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <boost/variant/get.hpp>

#include <ArrayValues.hpp>
#include <LiveArrays.hpp>
#include <ka/ka.hpp>

namespace liftedkernelstest {
namespace {

using namespace Norvane::builtin;
using testsupport::dimsOf;
using testsupport::elementsOf;

// Each input's element weighs 10000^(n-1-j), so that a result names every input's linear index
// exactly (inputs here stay below 10000 elements).
double weigh(double a) {
    return a;
}
double weigh(double a, double b) {
    return a * 1e4 + b;
}
double weigh(double a, std::int32_t b, double c) {
    return (a * 1e4 + b) * 1e4 + c;
}
double weigh(double a, double b, double c, double d) {
    return ((a * 1e4 + b) * 1e4 + c) * 1e4 + d;
}

// The lifted entry of a declaration, and the variant it runs in; the lists stay alive.
struct Lifted {
    std::shared_ptr<declare::DeclaredBuiltin> builtin;
    const BuiltinVariant* variant = nullptr;

    explicit Lifted(declare::Builtin&& declared)
        : builtin(std::make_shared<declare::DeclaredBuiltin>(std::move(declared))) {
        for (const BuiltinVariant& v : builtin->lists().all) {
            const bool arrays = std::any_of(
                v.inputArgTypes.begin(), v.inputArgTypes.end(),
                [](const auto& t) { return std::holds_alternative<types::KaArrayTypes>(t); });
            if (v.isElementWise == BuiltinVariant::IsElementWise::YES || arrays) {
                variant = &v;
                return;
            }
        }
    }

    Parameter call(IOrroBuiltinEnvironment* environment, bool& pending,
                   const ParameterList& arguments) const {
        auto* d = const_cast<OrroFunctionDescriptor*>(&variant->functionDescriptor);
        return d->typedEntry(d, environment, pending, arguments);
    }
};

template <class Fn, class... Option>
Lifted lift(Fn fn, const Option&... options) {
    declare::Builtin builtin("k");
    builtin.def(fn, options...);
    return Lifted(std::move(builtin));
}

template <class T>
ka::ArrayPtr ramp(const ka::Dims& dims) {
    std::vector<T> values(
        std::accumulate(dims.begin(), dims.end(), std::size_t{1}, std::multiplies<>()));
    std::iota(values.begin(), values.end(), T(0));
    return ka::createFrom<T>(dims, values);
}

// weigh() of the inputs' ramps by a plain walk over the broadcast output.
std::vector<double> reference(std::vector<ka::Dims> dims, ka::Dims& out) {
    std::size_t rank = 2;
    for (const ka::Dims& d : dims) rank = std::max(rank, d.size());
    for (ka::Dims& d : dims) d.resize(rank, 1);
    out.assign(rank, 1);
    for (const ka::Dims& d : dims)
        for (std::size_t k = 0; k < rank; ++k)
            if (d[k] != 1) out[k] = d[k];
    std::vector<double> expected(
        std::accumulate(out.begin(), out.end(), std::size_t{1}, std::multiplies<>()));
    std::vector<std::size_t> at(rank, 0);
    for (double& value : expected) {
        value = 0;
        for (const ka::Dims& d : dims) {
            std::size_t index = 0, stride = 1;
            for (std::size_t k = 0; k < rank; ++k) {
                index += (d[k] == 1 ? 0 : at[k]) * stride;
                stride *= d[k];
            }
            value = value * 1e4 + static_cast<double>(index);
        }
        for (std::size_t k = 0; k < rank && ++at[k] == out[k]; ++k) at[k] = 0;
    }
    while (out.size() > 2 && out.back() == 1) out.pop_back();
    return expected;
}

// Random shapes of n inputs that broadcast, up to four dimensions and 5000 elements, with the
// corner cases first: scalars, equal shapes, empty outputs.
std::vector<std::vector<ka::Dims>> shapesOf(std::size_t n, std::mt19937& random) {
    std::vector<std::vector<ka::Dims>> shapes = {std::vector<ka::Dims>(n, ka::Dims{1, 1}),
                                                 std::vector<ka::Dims>(n, ka::Dims{40, 50})};
    shapes.push_back(std::vector<ka::Dims>(n, ka::Dims{2, 1}));
    shapes.back().back() = {2, 0};
    while (shapes.size() < 40) {
        const std::size_t rank = 2 + random() % 3;
        std::vector<ka::Dims> inputs(n, ka::Dims(rank, 1));
        std::size_t count = 1;
        for (std::size_t k = 0; k < rank; ++k) {
            const std::size_t size = std::array<std::size_t, 4>{2, 3, 7, 33}[random() % 4];
            for (ka::Dims& d : inputs)
                if (random() % 3 != 0) d[k] = size;
            count *= size;
        }
        if (count <= 5000) shapes.push_back(inputs);
    }
    return shapes;
}

class LiftedKernels : public testsupport::LiveArrayTest {};

// Every form of kernel gives the reference's values and dimensions, serial and shared out.
TEST_F(LiftedKernels, EveryFormOfKernelMatchesTheReference) {
    struct Form {
        const char* name;
        std::size_t inputs;
        Lifted lifted;
    };
    using declare::block;
    using declare::elementwise;
    using declare::pure;
    const auto sum2 = [](const double* a, const double* b, double* out, std::size_t n) {
        for (std::size_t i = 0; i < n; ++i) out[i] = weigh(a[i], b[i]);
    };
    const Form forms[] = {
        {"inline one", 1, lift([](double a) { return weigh(a); }, pure, elementwise)},
        {"inline two", 2,
         lift(declare::Function<static_cast<double (*)(double, double)>(&weigh)>(), pure,
              elementwise)},
        {"pointer two", 2,
         lift(static_cast<double (*)(double, double)>(&weigh), pure, elementwise)},
        {"serial two", 2, lift([](double a, double b) { return weigh(a, b); }, elementwise)},
        {"block two", 2,
         lift([](double a, double b) { return weigh(a, b); }, pure, elementwise, block(sum2))},
        {"mixed three", 3,
         lift([](double a, std::int32_t b, double c) { return weigh(a, b, c); }, pure,
              elementwise)},
        {"pointer three", 3,
         lift(static_cast<double (*)(double, std::int32_t, double)>(&weigh), pure, elementwise)},
        {"inline four", 4,
         lift([](double a, double b, double c, double d) { return weigh(a, b, c, d); }, pure,
              elementwise)},
    };
    std::mt19937 random(7);
    for (const Form& form : forms) {
        ASSERT_NE(form.lifted.variant, nullptr) << form.name;
        const auto shapes = shapesOf(form.inputs, random);
        for (std::size_t limit : {1ul, 2ul, 4ul}) {
            tbb::global_control control(tbb::global_control::max_allowed_parallelism, limit);
            for (const std::vector<ka::Dims>& dims : shapes) {
                ParameterList arguments;
                for (std::size_t j = 0; j < dims.size(); ++j) {
                    arguments.push_back(Parameter(form.inputs == 3 && j == 1
                                                      ? ramp<std::int32_t>(dims[j]).release()
                                                      : ramp<double>(dims[j]).release()));
                }
                bool pending = true;
                const ka::ArrayPtr result(
                    boost::get<kaArray_tag*>(form.lifted.call(nullptr, pending, arguments)));
                ka::Dims out;
                const std::vector<double> expected = reference(dims, out);
                ASSERT_EQ(elementsOf<double>(result.get()), expected)
                    << form.name << ", " << limit << " threads, " << ::testing::PrintToString(dims);
                ASSERT_EQ(dimsOf(result.get()), out) << form.name;
                EXPECT_FALSE(pending);
            }
        }
    }
    EXPECT_EQ(alive(), 0);
}

// All arguments unboxed: one call of the kernel and an unboxed result; mixed with an array, the
// scalar is read in place. A temporary input of the output's type becomes the output; one of
// another type cannot.
TEST_F(LiftedKernels, ScalarsAndReuseAcrossTypes) {
    const Lifted mixed = lift([](double a, std::int32_t b) { return a * 2 + b; }, declare::pure,
                              declare::elementwise);
    bool pending = true;
    EXPECT_EQ(mixed.call(nullptr, pending, {Parameter(1.5), Parameter(std::int32_t{4})}),
              Parameter(7.0));
    ka::ArrayPtr doubles = ramp<double>({2, 3});
    kaArray_tag* const address = doubles.get();
    ka::ArrayPtr result(boost::get<kaArray_tag*>(
        mixed.call(nullptr, pending, {Parameter(doubles.release()), Parameter(std::int32_t{1})})));
    EXPECT_EQ(result.get(), address);
    EXPECT_EQ(elementsOf<double>(result.get()), (std::vector<double>{1, 3, 5, 7, 9, 11}));
    ka::ArrayPtr ints = ramp<std::int32_t>({1, 3});
    const kaArray_tag* const intAddress = ints.get();
    result.reset(boost::get<kaArray_tag*>(
        mixed.call(nullptr, pending, {Parameter(2.0), Parameter(ints.release())})));
    EXPECT_NE(result.get(), intAddress);
    EXPECT_EQ(matrix::classId(result.get()), kaDOUBLE_CLASS);
    EXPECT_EQ(elementsOf<double>(result.get()), (std::vector<double>{4, 5, 6}));
    result.reset();
    EXPECT_EQ(alive(), 0);
}

// Notes warnings and errors as "warning <text>" and "error <what>".
class Recording final : public IOrroBuiltinEnvironment, private IOrroBuiltinAccessors {
public:
    std::vector<std::string> events;
    IOrroBuiltinAccessors* GetOrroBuiltinAccessors() override { return this; }

private:
    void AddWarningMessage(const std::u16string& message) override {
        events.push_back("warning " + std::string(message.begin(), message.end()));
    }
    void SetInternalPendingException() override {
        try {
            throw;
        } catch (const std::exception& error) {
            events.push_back(std::string("error ") + error.what());
        }
    }
};

double throwingFrom3000(double x) {
    if (x >= 3000) throw std::domain_error("too large: " + std::to_string(static_cast<int>(x)));
    return x;
}

// A kernel that throws, on any thread, in any form, gives the call one error and no result; a
// kernel declared to warn warns with one call, each text once per call; warn() from a kernel not
// declared to warn is the call's error.
TEST_F(LiftedKernels, ExceptionsAndWarningsReachTheCallerOnce) {
    using namespace declare;
    struct Case {
        const char* name;
        Lifted lifted;
        std::vector<std::string> events;
        bool result;
    };
    const Case cases[] = {
        {"inline throws",
         lift(Function<&throwingFrom3000>(), pure, elementwise),
         {"error too large: "},
         false},
        {"pointer throws",
         lift(&throwingFrom3000, pure, elementwise),
         {"error too large: "},
         false},
        {"warns",
         lift(
             [](double x) {
                 if (x >= 4000) warn("large");
                 if (x >= 5000) warn(u"very large");
                 return x;
             },
             pure, elementwise, warns),
         {"warning large", "warning very large"},
         true},
        {"warns undeclared",
         lift(
             [](double x) {
                 if (x >= 100) warn("large");
                 return x;
             },
             pure, elementwise),
         {"error warn: the calling function is not declared to warn (declare it with `warns`)"},
         false},
    };
    for (const Case& c : cases) {
        for (std::size_t limit : {1ul, 2ul, 4ul}) {
            SCOPED_TRACE(::testing::Message() << c.name << ", " << limit << " threads");
            tbb::global_control control(tbb::global_control::max_allowed_parallelism, limit);
            Recording parent;
            bool pending = false;
            const Parameter result =
                c.lifted.call(&parent, pending, {Parameter(ramp<double>({1, 6000}).release())});
            ka::ArrayPtr array(boost::get<kaArray_tag*>(result));
            EXPECT_EQ(array != nullptr, c.result);
            EXPECT_TRUE(pending);
            ASSERT_EQ(parent.events.size(), c.events.size());
            for (std::size_t i = 0; i < c.events.size(); ++i)
                EXPECT_EQ(parent.events[i].substr(0, c.events[i].size()), c.events[i]);
        }
    }
    // The scalar road of a kernel that warns: the warning and the value.
    Recording parent;
    bool pending = false;
    EXPECT_EQ(cases[2].lifted.call(&parent, pending, {Parameter(4500.0)}), Parameter(4500.0));
    EXPECT_TRUE(pending);
    EXPECT_EQ(parent.events, std::vector<std::string>{"warning large"});
    EXPECT_EQ(alive(), 0);
}

}  // namespace
}  // namespace liftedkernelstest
