// The declaration layer by rule: what a C++ signature is read as, which entry a function gets,
// how arguments are converted and held, the behaviour a declaration stands for, the guards of
// a default implementation. A builtin declared by two modules is refused in
// tests/badinput/BundlesTest.cpp.
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include <builtin/declare/declare.hpp>
#include <builtin/invoke/DefaultImplementationChecks.hpp>

#include "engine_environment.hpp"
#include "live_arrays.hpp"

namespace {

using namespace Norvane::builtin;
using namespace Norvane::builtin::declare;
using JCC = JIT_CALLING_CONVENTION;

// --- reading signatures ---------------------------------------------------------------------

using Plain = double (*)(double, int);
using WithDescriptor = double (*)(double, OrroFunctionDescriptor*);
using Reporting = bool (*)(double, float, double*, IOrroBuiltinEnvironment*, OrroFunctionDescriptor*);
using ReportingNothing = bool (*)(double, void*, IOrroBuiltinEnvironment*, OrroFunctionDescriptor*);

static_assert(Signature<Plain>::convention == JCC::Direct);
static_assert(std::is_same_v<Signature<Plain>::Inputs, TypeList<double, int>>);
static_assert(Signature<WithDescriptor>::convention == JCC::DirectWithDescriptor);
static_assert(std::is_same_v<Signature<WithDescriptor>::Inputs, TypeList<double>>);
static_assert(Signature<Reporting>::convention == JCC::CanThrow);
static_assert(std::is_same_v<Signature<Reporting>::Inputs, TypeList<double, float>>);
static_assert(std::is_same_v<Signature<Reporting>::Output, double>);
static_assert(std::is_same_v<Signature<ReportingNothing>::Output, void>);

// --- the functions of the tests -------------------------------------------------------------

double add(double a, int b) { return a + b; }
double addThree(double a, double b, double c) { return a + b + c; }
double length(std::u16string_view text) { return static_cast<double>(text.size()); }
double firstOf(Row<double> row) { return row[0]; }
std::uint32_t countBorrowed(const kaArray_tag* a) { return a->refCount; }
std::uint32_t countOwned(kaArray_tag* a) {
    const std::uint32_t count = a->refCount;
    matrix::releaseReference(a);
    return count;
}
double fails(const kaArray_tag*, double) { throw std::runtime_error("failed"); }

class Declared : public testsupport::LiveArrayTest {
protected:
    static double callForDouble(const DeclaredBuiltin& builtin, std::vector<kaArray_tag*> arguments) {
        kaArray_tag* result[1] = {nullptr};
        builtin.function().call(1, result, static_cast<int>(arguments.size()), arguments.data());
        const ka::ArrayPtr held(result[0]);
        const void* data = matrix::data(held.get());
        return matrix::classId(held.get()) == kaUINT32_CLASS ? *static_cast<const std::uint32_t*>(data)
                                                             : *static_cast<const double*>(data);
    }
};

TEST_F(Declared, EntriesByTheTypesOfTheFunction) {
    Builtin builtin("f");
    builtin.def(&add, pure).def(&addThree, pure).def(&length, pure);
    const DeclaredBuiltin done(std::move(builtin));
    const auto& all = done.lists().all;
    const auto entryOf = [&](const char* cppName) -> TypedEntry {
        for (const auto& v : all) {
            if (v.inputArgTypes.size() == 2 && std::string(cppName) == "add") return v.functionDescriptor.typedEntry;
            if (v.inputArgTypes.size() == 3 && std::string(cppName) == "addThree") return v.functionDescriptor.typedEntry;
        }
        return nullptr;
    };
    EXPECT_EQ(entryOf("add"), builtinreg::detail::getExportedInlineCWrapperFcn(nullptr, 1, 1, 6)) << "the library's";
    EXPECT_NE(entryOf("addThree"), nullptr);
    // Three signatures of the string parameter, without StringSupport the scalar string is gone.
    EXPECT_EQ(all.size(), 2u + 2u);

    const ka::ArrayPtr one = ka::scalar(1.0), two = ka::scalar<std::int32_t>(2);
    EXPECT_EQ(callForDouble(done, {one.get(), two.get()}), 3);
    EXPECT_EQ(callForDouble(done, {one.get(), one.get(), one.get()}), 3) << "through the module's entry";
    EXPECT_EQ(callForDouble(done, {ka::charArray("four").get()}), 4) << "a char row as a string";
}

TEST_F(Declared, ArraysAreHeldForTheCallAndOwnedReferencesHandedOver) {
    Builtin borrowed("borrowed"), owned("owned"), view("view"), failing("failing");
    borrowed.def(&countBorrowed, pure);
    owned.def(&countOwned, pure);
    view.def(&firstOf, pure);
    failing.def(&fails, pure);
    const ka::ArrayPtr row = ka::row({7.0, 8.0});
    EXPECT_EQ(callForDouble(DeclaredBuiltin(std::move(borrowed)), {row.get()}), 2) << "the caller's and the call's";
    EXPECT_EQ(callForDouble(DeclaredBuiltin(std::move(owned)), {row.get()}), 2) << "the call's, handed over";
    EXPECT_EQ(callForDouble(DeclaredBuiltin(std::move(view)), {row.get()}), 7);
    EXPECT_THROW(callForDouble(DeclaredBuiltin(std::move(failing)), {row.get(), ka::scalar(1.0).get()}),
                 std::runtime_error);
    EXPECT_EQ(row->refCount, 1u) << "every path gave the references back";
}

TEST_F(Declared, BehaviourHasSafeDefaults) {
    Builtin plainDefaults("a"), declaredPure("b");
    const DeclaredBuiltin unsure(std::move(plainDefaults.def(&add)));
    EXPECT_EQ(unsure.lists().all[0].orroSupportLevel, OrroSupportLevel::NO_SUPPORT) << "may call back";
    EXPECT_EQ(unsure.lists().all[0].mayHaveSideEffects, BuiltinVariant::HasSideEffects::YES);
    const DeclaredBuiltin sure(std::move(declaredPure.def(&add, pure)));
    EXPECT_EQ(sure.lists().all[0].orroSupportLevel, OrroSupportLevel::EQUIVALENT_SUPPORT);
    EXPECT_EQ(sure.lists().searchedByOrro.size(), 1u);
}

double sizeOf(Array<double> values) { return static_cast<double>(values.size()); }
double cellCount(ScalarArray<matrix::cell> cells) { return static_cast<double>(cells.size()); }

// What the engine does with a boxing variant: calls its entry with its own unboxed values.
TEST_F(Declared, BoxingVariantsServeTheEngine) {
    // Two builtins: boxing variants of one signature from two sources would leave one of them
    // unreachable.
    Builtin size("size"), cells("cells");
    const DeclaredBuiltin sizes(std::move(size.def(&sizeOf, pure, boxed<double>(), cppName("size"))));
    const DeclaredBuiltin counts(std::move(cells.def(&cellCount, pure, boxed<double>(), cppName("cells"))));
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
        const Parameter result = descriptor->typedEntry(descriptor, &environment, pending, {Parameter(3.0)});
        if (v->cppFunctionName == "size") {
            EXPECT_FALSE(pending);
            EXPECT_EQ(boost::get<double>(result), 1) << "a 1-by-1 array of the double";
        } else {
            EXPECT_TRUE(pending) << "a double is no cell: the failure is reported, not thrown";
            EXPECT_THROW(std::rethrow_exception(environment.error), std::exception);
        }
    }
}

double negate(double x) { return -x; }
double absolute(double x) { return x < 0 ? -x : x; }
double firstOfRow(Row<double> row) { return row[0]; }

std::vector<std::string> findingsOf(LintFinding::Kind kind, Builtin&& builtin) {
    std::vector<std::string> names;
    for (const auto& finding : lintVariantLists("f", DeclaredBuiltin(std::move(builtin)).lists())) {
        if (finding.kind == kind) names.push_back(finding.message.substr(0, finding.message.find('(')));
    }
    std::sort(names.begin(), names.end());
    return names;
}

TEST(Lint, FindsUnreachableAndLoweredVariants) {
    Builtin unreachable("f");
    unreachable.def(&negate, pure, elementwise, cppName("negate"))
        .def(&absolute, pure, elementwise, cppName("absolute"))  // the signature of negate
        .def(&sizeOf, pure, cppName("sizeOf"));                  // every double array goes to negate
    EXPECT_EQ(findingsOf(LintFinding::Kind::UNREACHABLE, std::move(unreachable)),
              (std::vector<std::string>{"f: absolute", "f: sizeOf"}));

    // A row of a function that may call back shadows every pure function of double arrays.
    Builtin lowered("f");
    lowered.def(&firstOfRow, noSideEffects, cppName("callsBack")).def(&sizeOf, pure, cppName("pure"));
    EXPECT_EQ(findingsOf(LintFinding::Kind::LOWERED, std::move(lowered)), std::vector<std::string>{"f: pure"});
}

// --- default implementations ----------------------------------------------------------------

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
    Builtin unassigned("unassigned");
    const DeclaredBuiltin done(std::move(unassigned.fallback(&leavesOutputUnassigned, pure)));
    EXPECT_THROW(callForDouble(done, {}), UnassignedOutputsException);
    Builtin warning("warning");
    const DeclaredBuiltin allowed(std::move(warning.fallback(&warns, pure)));
    EXPECT_EQ(callForDouble(allowed, {}), 1) << "it may warn";
}

TEST(DeclaredDeathTest, DefaultImplementationsThatBreakTheirWordStop) {
    Builtin quiet("quiet"), tooFar("tooFar");
    const DeclaredBuiltin noWarningsDeclared(std::move(quiet.fallback(&warns, pure, noWarnings)));
    const DeclaredBuiltin overflow(std::move(tooFar.fallback(&writesTooFar, pure)));
    kaArray_tag* result[2] = {nullptr, nullptr};
    EXPECT_DEATH(noWarningsDeclared.function().call(1, result, 0, nullptr), "unexpected");
    EXPECT_DEATH(overflow.function().call(1, result, 0, nullptr), "tooFar");
}

}  // namespace
