// The declaration layer: how a C++ signature is read, which entry a function gets, how arguments
// are held, the behaviour a declaration stands for, lint, and the guards of a default
// implementation.
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include <builtin/declare/declare.hpp>
#include <builtin/invoke/DefaultImplementationChecks.hpp>

#include "EngineEnvironment.hpp"
#include "LiveArrays.hpp"

namespace {

using namespace Norvane::builtin;
using namespace Norvane::builtin::declare;
using JCC = JIT_CALLING_CONVENTION;

using Reporting = bool (*)(double, float, double*, IOrroBuiltinEnvironment*,
                           OrroFunctionDescriptor*);
static_assert(Signature<double (*)(double, int)>::convention == JCC::Direct &&
              std::is_same_v<Signature<double (*)(double, int)>::Inputs, TypeList<double, int>>);
static_assert(Signature<double (*)(double, OrroFunctionDescriptor*)>::convention ==
                  JCC::DirectWithDescriptor &&
              std::is_same_v<Signature<double (*)(double, OrroFunctionDescriptor*)>::Inputs,
                             TypeList<double>>);
static_assert(Signature<Reporting>::convention == JCC::CanThrow &&
              std::is_same_v<Signature<Reporting>::Inputs, TypeList<double, float>> &&
              std::is_same_v<Signature<Reporting>::Output, double>);
static_assert(std::is_same_v<Signature<bool (*)(double, void*, IOrroBuiltinEnvironment*,
                                                OrroFunctionDescriptor*)>::Output,
                             void>);

double add(double a, int b) {
    return a + b;
}
double addThree(double a, double b, double c) {
    return a + b + c;
}
double length(std::u16string_view text) {
    return static_cast<double>(text.size());
}
double firstOf(Row<double> row) {
    return row[0];
}
std::uint32_t countBorrowed(const kaArray_tag* a) {
    return a->refCount;
}
std::uint32_t countOwned(kaArray_tag* a) {
    const std::uint32_t count = a->refCount;
    matrix::releaseReference(a);
    return count;
}
double repeatCount(const std::string& text, const double& times) noexcept {
    return static_cast<double>(text.size()) * times;
}
double fails(const kaArray_tag*, double) {
    throw std::runtime_error("failed");
}

class Declared : public testsupport::LiveArrayTest {
protected:
    static double callForDouble(const DeclaredBuiltin& builtin,
                                std::vector<kaArray_tag*> arguments) {
        kaArray_tag* result[1] = {nullptr};
        builtin.function().call(1, result, static_cast<int>(arguments.size()), arguments.data());
        const ka::ArrayPtr held(result[0]);
        const void* data = matrix::data(held.get());
        return matrix::classId(held.get()) == kaUINT32_CLASS
                   ? *static_cast<const std::uint32_t*>(data)
                   : *static_cast<const double*>(data);
    }
};

TEST_F(Declared, EntriesByTheTypesOfTheFunction) {
    const DeclaredBuiltin done(
        std::move(Builtin("f").def(&add, pure).def(&addThree, pure).def(&length, pure)));
    const auto& all = done.lists().all;
    const auto add2 = std::find_if(all.begin(), all.end(),
                                   [](const auto& v) { return v.inputArgTypes.size() == 2; });
    EXPECT_EQ(add2->functionDescriptor.typedEntry,
              builtinreg::detail::getExportedInlineCWrapperFcn(nullptr, 1, 1, 6));
    EXPECT_EQ(all.size(), 2u + 2u) << "without StringSupport, no scalar-string signature";

    const ka::ArrayPtr one = ka::scalar(1.0), two = ka::scalar<std::int32_t>(2);
    EXPECT_EQ(callForDouble(done, {one.get(), two.get()}), 3);
    EXPECT_EQ(callForDouble(done, {one.get(), one.get(), one.get()}), 3);
    EXPECT_EQ(callForDouble(done, {ka::charArray("four").get()}), 4);
}

// As authors write them: noexcept, and parameters by const reference, which no ready-made entry
// of the library can pass; through invoke and through the entry the engine calls.
TEST_F(Declared, NoexceptFunctionsAndConstReferences) {
    const DeclaredBuiltin done(std::move(Builtin("r").def(&repeatCount, pure)));
    const ka::ArrayPtr text = ka::charArray("abc"), three = ka::scalar(3.0);
    EXPECT_EQ(callForDouble(done, {text.get(), three.get()}), 9);

    const BuiltinVariant& variant = done.lists().all.front();
    EXPECT_NE(variant.functionDescriptor.typedEntry,
              builtinreg::detail::getExportedInlineCWrapperFcn(nullptr, 1, 13, 1));
    matrix::takeReference(text.get());  // the reference that the argument list hands over
    bool pending = true;
    const Parameter result = variant.functionDescriptor.typedEntry(
        const_cast<OrroFunctionDescriptor*>(&variant.functionDescriptor), nullptr, pending,
        ParameterList{Parameter(text.get()), Parameter(2.0)});
    EXPECT_FALSE(pending);
    EXPECT_EQ(boost::get<double>(result), 6);
    EXPECT_EQ(text->refCount, 1u);
}

TEST_F(Declared, ArraysAreHeldForTheCallAndOwnedReferencesHandedOver) {
    const ka::ArrayPtr row = ka::row({7.0, 8.0});
    EXPECT_EQ(callForDouble(DeclaredBuiltin(std::move(Builtin("b").def(&countBorrowed, pure))),
                            {row.get()}),
              2);
    EXPECT_EQ(
        callForDouble(DeclaredBuiltin(std::move(Builtin("o").def(&countOwned, pure))), {row.get()}),
        2);
    EXPECT_EQ(
        callForDouble(DeclaredBuiltin(std::move(Builtin("v").def(&firstOf, pure))), {row.get()}),
        7);
    EXPECT_THROW(callForDouble(DeclaredBuiltin(std::move(Builtin("f").def(&fails, pure))),
                               {row.get(), ka::scalar(1.0).get()}),
                 std::runtime_error);
    EXPECT_EQ(row->refCount, 1u);
}

struct Halve {
    double operator()(double x) const noexcept { return x / 2; }
};
double twice(double x) {
    return 2 * x;
}
std::pair<double, double> extremes(Array<double> x) {
    if (x.begin() == x.end()) throw std::invalid_argument("extremes of nothing");
    const auto [low, high] = std::minmax_element(x.begin(), x.end());
    return {*low, *high};
}
std::tuple<double, ka::ArrayPtr, std::u16string> three(double x) {
    return {x, ka::row({x, x}), u"three"};
}
void sizeOfAll(int nlhs, kaArray_tag** plhs, int, kaArray_tag**, OrroFunctionDescriptor*) {
    for (int i = 0; i < nlhs; ++i) plhs[i] = ka::scalar(-1.0).release();
}

// Lambdas, functors, functions named as template arguments, noexcept, results of several
// outputs: through invoke, as many outputs as asked for, and through the engine's entry.
TEST_F(Declared, FormsAuthorsWrite) {
    Builtin scale("scale");
    scale.def([](double x, double f) noexcept { return x * f; }, pure)
        .def(Halve(), pure)
        .def<&twice>(pure, elementwise, cppName("twice"));
    const DeclaredBuiltin scaled(std::move(scale));
    const ka::ArrayPtr six = ka::scalar(6.0), two = ka::scalar(2.0);
    EXPECT_EQ(callForDouble(scaled, {six.get(), two.get()}), 12);
    EXPECT_EQ(callForDouble(scaled, {six.get()}), 3);
    for (const BuiltinVariant& v : scaled.lists().all) {
        EXPECT_NE(v.functionDescriptor.nativeEntry, nullptr) << "the engine calls a plain function";
    }

    Builtin both("extremes");
    both.def(&extremes, pure).def(&three, pure).fallback(&sizeOfAll, pure);
    const DeclaredBuiltin done(std::move(both));
    const ka::ArrayPtr x = ka::row({3.0, -1.0, 7.0});
    kaArray_tag* plhs[3] = {nullptr, nullptr, nullptr};
    kaArray_tag* prhs[] = {x.get()};
    done.function().call(2, plhs, 1, prhs);
    const ka::ArrayPtr low(plhs[0]), high(plhs[1]);
    EXPECT_EQ(*static_cast<const double*>(matrix::data(low.get())), -1);
    EXPECT_EQ(*static_cast<const double*>(matrix::data(high.get())), 7);
    EXPECT_EQ(callForDouble(done, {x.get()}), -1) << "one output: the first";
    EXPECT_THROW(done.function().call(3, plhs, 1, prhs), std::invalid_argument)
        << "extremes gives at most 2 outputs";
    kaArray_tag* scalarArgs[] = {six.get()};
    done.function().call(3, plhs, 1, scalarArgs);
    const ka::ArrayPtr first(plhs[0]), second(plhs[1]), third(plhs[2]);
    EXPECT_EQ(matrix::dimensions(second.get())[1], 2u);
    EXPECT_EQ(matrix::classId(third.get()), kaCHAR_CLASS);
    kaArray_tag* nothing[] = {ka::charArray("x").release()};
    done.function().call(2, plhs, 1, nothing);  // no function takes it: the fallback does
    matrix::releaseReference(nothing[0]);
    const ka::ArrayPtr f0(plhs[0]), f1(plhs[1]);
    EXPECT_EQ(*static_cast<const double*>(matrix::data(f1.get())), -1);
}

double negativeFails(double x) {
    if (x < 0) throw std::domain_error("negative: " + std::to_string(x));
    return x;
}
double shout(std::u16string_view text) {
    if (text.empty()) throw std::length_error("nothing to shout");
    return static_cast<double>(text.size());
}
void refuseAll(int, kaArray_tag**, int, kaArray_tag**, OrroFunctionDescriptor*) {
    throw std::logic_error("refused");
}

// An exception from a declared function of any kind is the call's error, with its text, and
// nothing of the call is left behind.
TEST_F(Declared, ExceptionsAreTheCallsErrorOnEveryRoad) {
    Builtin f("f");
    f.def<&negativeFails>(pure, elementwise).def(&shout, pure).def(&extremes, pure);
    f.fallback(&refuseAll, pure);
    Builtin g("g");
    g.def(&negativeFails, pure, elementwise, warns);
    const DeclaredBuiltin inlined(std::move(f)), reporting(std::move(g));
    const auto call = [](const DeclaredBuiltin& builtin, int nlhs, ka::ArrayPtr argument) {
        kaArray_tag* plhs[2] = {nullptr, nullptr};
        kaArray_tag* prhs[] = {argument.get()};
        try {
            builtin.function().call(nlhs, plhs, 1, prhs);
        } catch (const std::exception& error) {
            EXPECT_EQ(plhs[0], nullptr);
            return std::string(error.what());
        }
        return std::string("no error");
    };
    EXPECT_EQ(call(inlined, 1, ka::scalar(-2.0)), "negative: -2.000000");
    EXPECT_EQ(call(inlined, 1, ka::row({1.0, -3.0, 2.0})), "negative: -3.000000");
    EXPECT_EQ(call(inlined, 1, ka::createNumeric(kaCHAR_CLASS, {0, 0})), "nothing to shout");
    EXPECT_EQ(call(inlined, 2, ka::createNumeric(kaDOUBLE_CLASS, {0, 0})), "extremes of nothing");
    EXPECT_EQ(call(inlined, 1, ka::scalar(true)), "refused");
    EXPECT_EQ(call(reporting, 1, ka::scalar(-2.0)), "negative: -2.000000");
    EXPECT_EQ(call(reporting, 1, ka::row({1.0, -3.0})), "negative: -3.000000");
}

TEST_F(Declared, BehaviourHasSafeDefaults) {
    const DeclaredBuiltin unsure(std::move(Builtin("a").def(&add))),
        sure(std::move(Builtin("b").def(&add, pure)));
    EXPECT_EQ(unsure.lists().all[0].orroSupportLevel,
              OrroSupportLevel::NO_SUPPORT);  // may call back
    EXPECT_EQ(unsure.lists().all[0].mayHaveSideEffects, BuiltinVariant::HasSideEffects::YES);
    EXPECT_EQ(sure.lists().all[0].orroSupportLevel, OrroSupportLevel::EQUIVALENT_SUPPORT);
    EXPECT_EQ(sure.lists().searchedByOrro.size(), 1u);
}

double sizeOf(Array<double> values) {
    return static_cast<double>(values.size());
}
double cellCount(ScalarArray<matrix::cell> cells) {
    return static_cast<double>(cells.size());
}

// The engine calls a boxing variant's entry with unboxed values (two builtins: one signature twice
// would be unreachable).
TEST_F(Declared, BoxingVariantsServeTheEngine) {
    const DeclaredBuiltin sizes(
        std::move(Builtin("size").def(&sizeOf, pure, boxed<double>(), cppName("size"))));
    const DeclaredBuiltin counts(
        std::move(Builtin("cells").def(&cellCount, pure, boxed<double>(), cppName("cells"))));
    std::vector<const BuiltinVariant*> boxing;
    for (const DeclaredBuiltin* done : {&sizes, &counts}) {
        for (const BuiltinVariant& v : done->lists().searchedByOrro) {
            if (v.originalVariant) boxing.push_back(&v);
        }
    }
    ASSERT_EQ(boxing.size(), 2u);
    testsupport::EngineEnvironment environment;
    for (const BuiltinVariant* v : boxing) {
        EXPECT_EQ(v->orroSupportLevel, OrroSupportLevel::ORRO_ONLY);
        bool pending = true;
        auto* descriptor = const_cast<OrroFunctionDescriptor*>(&v->functionDescriptor);
        const Parameter result =
            descriptor->typedEntry(descriptor, &environment, pending, {Parameter(3.0)});
        if (v->cppFunctionName == "size") {
            EXPECT_FALSE(pending);
            EXPECT_EQ(boost::get<double>(result), 1);
        } else {  // a double is no cell: reported, not thrown
            EXPECT_TRUE(pending);
            EXPECT_THROW(std::rethrow_exception(environment.error), std::exception);
        }
    }
}

double negate(double x) {
    return -x;
}
double absolute(double x) {
    return x < 0 ? -x : x;
}

std::vector<std::string> findingsOf(LintFinding::Kind kind,
                                    Builtin&& builtin) {  // sorted "f: name"
    std::vector<std::string> names;
    for (const auto& finding : lintVariantLists("f", DeclaredBuiltin(std::move(builtin)).lists())) {
        if (finding.kind == kind)
            names.push_back(finding.message.substr(0, finding.message.find('(')));
    }
    std::sort(names.begin(), names.end());
    return names;
}

TEST(Lint, FindsUnreachableAndLoweredVariants) {
    // absolute has negate's signature; every double array goes to negate before sizeOf.
    EXPECT_EQ(findingsOf(LintFinding::Kind::UNREACHABLE,
                         std::move(Builtin("f")
                                       .def(&negate, pure, elementwise, cppName("negate"))
                                       .def(&absolute, pure, elementwise, cppName("absolute"))
                                       .def(&sizeOf, pure, cppName("sizeOf")))),
              (std::vector<std::string>{"f: absolute", "f: sizeOf"}));
    EXPECT_EQ(findingsOf(LintFinding::Kind::LOWERED,
                         std::move(Builtin("f")
                                       .def(&firstOf, noSideEffects, cppName("callsBack"))
                                       .def(&sizeOf, pure, cppName("pure")))),
              std::vector<std::string>{"f: pure"});
}

void leavesOutputUnassigned(int, kaArray_tag**, int, kaArray_tag**, OrroFunctionDescriptor*) {}
void warns(int, kaArray_tag** plhs, int, kaArray_tag**, OrroFunctionDescriptor*) {
    matrix::handleWarning(u"unexpected");
    plhs[0] = ka::scalar(1.0).release();
}
void writesTooFar(int, kaArray_tag** plhs, int, kaArray_tag**, OrroFunctionDescriptor*) {
    plhs[0] = ka::scalar(1.0).release();
    plhs[1] = ka::scalar(2.0).release();
}

TEST_F(Declared, DefaultImplementationsAreGuarded) {
    EXPECT_THROW(
        callForDouble(
            DeclaredBuiltin(std::move(Builtin("u").fallback(&leavesOutputUnassigned, pure))), {}),
        UnassignedOutputsException);
    EXPECT_EQ(callForDouble(DeclaredBuiltin(std::move(Builtin("w").fallback(&warns, pure))), {}),
              1);  // may warn
}

TEST(DeclaredDeathTest, DefaultImplementationsThatBreakTheirWordStop) {
    const DeclaredBuiltin quiet(std::move(Builtin("quiet").fallback(&warns, pure, noWarnings)));
    const DeclaredBuiltin overflow(std::move(Builtin("tooFar").fallback(&writesTooFar, pure)));
    kaArray_tag* result[2] = {nullptr, nullptr};
    EXPECT_DEATH(quiet.function().call(1, result, 0, nullptr), "unexpected");
    EXPECT_DEATH(overflow.function().call(1, result, 0, nullptr), "tooFar");
}

}  // namespace
