// The guards around a developer's function: the checks on an array function's outputs, the per-tavi
// stack behind the no-call-backs check, the no-warnings guard, and the execution and multi-tavi
// records.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <builtin/invoke/invoke.hpp>
#include <fl/diag.hpp>
#include <foundation/log/test/memory_sink.hpp>
#include <foundation/usm/test/store_access.hpp>
#include <ka/ka.hpp>

#include "../variants/VariantBuilders.hpp"
#include "FatalText.hpp"
#include "LiveArrays.hpp"

namespace guardstest {
namespace {

using namespace varianttest;
using namespace builtinreg::detail;
using foundation::core::except::MessageId;
using testsupport::fatalReport;

using UnassignedOutputs = testsupport::LiveArrayTest;

TEST_F(UnassignedOutputs, ThrowOnlyWhenAnOutputIsNullAndLeaveNoOutput) {
    throwIfUnassignedOutputs(u"mean", 0, nullptr);
    const ka::ArrayPtr first = ka::scalar(1.0), second = ka::row({1.0, 2.0});
    kaArray_tag* assigned[] = {first.get(), second.get()};
    throwIfUnassignedOutputs(u"mean", 2, assigned);
    EXPECT_THAT(assigned, ::testing::ElementsAre(first.get(), second.get()));

    kaArray_tag* plhs[] = {ka::scalar(1.0).release(), nullptr, ka::row({1.0, 2.0}).release()};
    try {
        throwIfUnassignedOutputs(u"mean", 3, plhs);
        ADD_FAILURE();
    } catch (const UnassignedOutputsException& error) {
        EXPECT_EQ(error.message_id(),
                  (MessageId{"KELDOR:legacy_two_part", "unassignedOutputs", {u"mean"}}));
        EXPECT_STREQ(error.what(), "KELDOR:legacy_two_part:unassignedOutputs");
    }
    EXPECT_THAT(plhs, ::testing::Each(nullptr));  // and the fixture sees both arrays gone
}

const std::string lhsPath = "builtin2/interface/builtin/getDefaultImplementationVariant";

TEST(DefaultImplementationDeathTest, MissingAndOverflowingOutputsStop) {
    const BuiltinVariant variant = makeVariant({.name = "meanImpl"});
    const std::string opening =
        "KELDOR Builtin: \"fn\" of dominant class \"double\" implemented by \"meanImpl\" ";
    EXPECT_DEATH(assertLhsIsNotNull(2, 1, variant),
                 fatalReport(opening + "did not populate plhs[1] but nlhs is 2", lhsPath));
    EXPECT_DEATH(assertLhsOverflow(1, 3, variant),
                 fatalReport(opening + "wrote to plhs[3] but nlhs is 1", lhsPath));
}

TEST(DefaultImplementationDeathTest, WrongOutputTypeStopsUnlessTheOutputIsAPlainArray) {
    KaArrayTypes plain;  // every property unknown
    plain.shape = Shape::UNKNOWN;
    plain.density = KaArrayTypes::Density::UNKNOWN;
    plain.complexity = KaArrayTypes::Complexity::UNKNOWN;
    const BuiltinVariant anyArrayOut = makeVariant({.out = {plain}});
    const BuiltinVariant scalarOut = makeVariant({.out = {scalar()}});
    const ka::ArrayPtr one = ka::scalar(1.0), row = ka::row({1.0, 2.0, 3.0}),
                       text = ka::charArray(std::string_view("ab"));
    for (const kaArray_tag* array : {one.get(), row.get(), text.get()})
        assertLhsWrongType(anyArrayOut, array);
    assertLhsWrongType(scalarOut, one.get());
    EXPECT_THAT(
        [&] { assertLhsWrongType(makeVariant({}), one.get()); },
        ::testing::ThrowsMessage<std::out_of_range>(::testing::StrEq("invalid vector subscript")));
    EXPECT_DEATH(assertLhsWrongType(scalarOut, row.get()),
                 fatalReport("incorrect type returned from builtin: \"native\"\nExpected: double\n"
                             "Actual: KaArrayTypes: kaDOUBLE_CLASS ROW FULL NOT_COMPLEX STRICT",
                             "builtin2/interface/builtin/getFunctionDescriptor"));
    const bool previous = fl_set_diag_terminate(false);
    assertLhsWrongType(scalarOut, row.get());
    fl_set_diag_terminate(previous);
}

using builtinreg::CallsKeldorCheckAsserted;
namespace usm = foundation::usm;
namespace logtest = foundation::log::test;

class CallsKeldorCheck : public ::testing::Test {
protected:
    usm::Store store;
    usm::CurrentTavi current{store};
    const BuiltinVariant quiet = makeVariant({.name = "quietFn"});
    const BuiltinVariant callsBack =
        makeVariant({.callsBack = V::CallsIntoKeldor::YES, .name = "callsBackFn"});
};
using CallsKeldorCheckDeathTest = CallsKeldorCheck;

const std::string callBackReport = fatalReport(
    "The quietFn implementation of the KELDOR builtin function fn is marked as not calling into "
    "keldor, but does."
    "Need to change builtin doxygen from \"nvDoesNotCallKELDOR true\" to \"nvDoesNotCallKELDOR "
    "false\"\n",
    "builtin2/interface/builtin/CallsKeldorCheck");

TEST_F(CallsKeldorCheckDeathTest, OnlyTheInnermostRunningVariantCounts) {
    nvDoesNotCallKELDORAssertion();
    EXPECT_EQ(store.size(), 0u);  // a check where nothing ran makes no stack
    {
        const CallsKeldorCheckAsserted outer(&quiet);
        EXPECT_TRUE(outer.pushed);
        {
            const CallsKeldorCheckAsserted inner(&callsBack);
            nvDoesNotCallKELDORAssertion();
            {
                const CallsKeldorCheckAsserted innermost(&quiet);
                EXPECT_DEATH(nvDoesNotCallKELDORAssertion(), callBackReport);
            }
            const CallsKeldorCheckAsserted unknown(nullptr);
            nvDoesNotCallKELDORAssertion();
        }
        EXPECT_DEATH(nvDoesNotCallKELDORAssertion(), callBackReport);
        const bool previous = fl_set_diag_terminate(false);
        nvDoesNotCallKELDORAssertion();
        fl_set_diag_terminate(previous);
    }
    nvDoesNotCallKELDORAssertion();
    EXPECT_EQ(store.size(), 1u);  // the stack stays with its tavi, empty
}

// A store that holds another type in the stack's slot turns the guard off instead of failing.
TEST_F(CallsKeldorCheck, GivesUpWhereTheStoreHoldsAnotherType) {
    { const CallsKeldorCheckAsserted learn(&quiet); }
    const std::vector<usm::ID> ids = usm::test::store_access::ids(store);
    ASSERT_EQ(ids.size(), 1u);
    usm::Store spoiled;
    usm::test::store_access::insertAs(spoiled, ids[0], typeid(int), usm::makeValue<int>(7));
    const usm::CurrentTavi useSpoiled(spoiled);
    const CallsKeldorCheckAsserted scope(&quiet);
    EXPECT_FALSE(scope.pushed);
    nvDoesNotCallKELDORAssertion();
    EXPECT_EQ(*static_cast<int*>(spoiled.find(ids[0], typeid(int))), 7);
}

TEST(AssertIfWarningsDeathTest, StopsAtAnyWarningWithItsText) {
    const BuiltinVariant variant = makeVariant({.name = "quietFn"});
    const AssertIfWarnings handler(variant);
    const std::string opening =
        "builtin: \"fn\" function: \"quietFn\" claims no warnings but generated this warning:\n";
    const std::string path = "builtin2/interface/builtin/CaptureWarnings";
    EXPECT_DEATH(handler(u"R\u00e9sultat \u2248 0"),
                 fatalReport(opening + "R\u00e9sultat \u2248 0", path));
    EXPECT_DEATH(handler(u""), fatalReport(opening, path));
    EXPECT_DEATH(handler(std::u16string(1, char16_t(0xD800))),
                 fatalReport(opening + "<a warning that is not valid UTF-16>", path));
}

// Execution records at severity 1 alone, none for a null variant; multi-tavi reports likewise.
TEST(ExecutionLog, RecordsAtSeverityOne) {
    const BuiltinVariant variant = makeVariant({.name = "logged"});
    std::ostringstream printed;
    printed << variant;
    const logtest::memory_sink sink;
    for (const std::uint32_t mask : {0u, 2u | 4u}) {
        const logtest::scoped_channel_mask off("builtin2::invoke", mask);
        const LogBuiltinVariantExecution_ log(&variant);
    }
    EXPECT_EQ(sink.size(), 0u);
    const char* multiTavi = "builtinservice::MultiTAVIReporting";
    {
        const logtest::scoped_channel_mask on("builtin2::invoke", 1), reports(multiTavi, 1);
        const LogBuiltinVariantExecution_ log(&variant);
        const LogBuiltinVariantExecution_ none(nullptr);
        logMultiTaviViolation(nullptr);
        logMultiTaviViolation(&variant);
        logMultiTaviReportingViolation("plot", "figure");
    }
    const std::vector<std::pair<std::string, std::string>> expected = {
        {"builtin2::invoke", "Executing: " + printed.str()},
        {multiTavi, "Non-Multi-TAVI builtin fn on class double called."},
        {multiTavi, "Non-Multi-TAVI builtin plot on class figure called."},
        {"builtin2::invoke", "Execution complete: " + printed.str()}};
    ASSERT_EQ(sink.size(), expected.size());
    for (std::size_t k = 0; k < expected.size(); ++k) {
        EXPECT_EQ(sink.records()[k].severity, 1u);
        EXPECT_EQ(std::pair(sink.records()[k].channel, sink.records()[k].text), expected[k]);
    }
}

}  // namespace
}  // namespace guardstest
