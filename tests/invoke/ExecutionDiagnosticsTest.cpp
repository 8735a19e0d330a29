// The guards around a developer's function: the stack of running variants of a tavi and the
// check of a declaration of no call-backs, the guard of a declaration of no warnings, and the
// records of the execution log and of the multi-tavi reports.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include <builtin/invoke/invoke.hpp>
#include <fl/diag.hpp>
#include <foundation/log/test/memory_sink.hpp>
#include <foundation/usm/test/store_access.hpp>

#include "../variants/VariantBuilders.hpp"
#include "fatal_text.hpp"

namespace guardstest {
namespace {

using namespace varianttest;
using builtinreg::CallsKeldorCheckAsserted;
using testsupport::fatalReport;
namespace usm = foundation::usm;
namespace logtest = foundation::log::test;

// Each test runs in a tavi of its own, empty at the start.
class CallsKeldorCheck : public ::testing::Test {
protected:
    usm::Store store;
    usm::CurrentTavi current{store};
    const BuiltinVariant quiet = makeVariant({.name = "quietFn"});
    const BuiltinVariant callsBack =
        makeVariant({.callsBack = V::CallsIntoKeldor::YES, .name = "callsBackFn"});
};
using CallsKeldorCheckDeathTest = CallsKeldorCheck;

std::string callBackReport(const std::string& cppName) {
    return fatalReport("The " + cppName +
                           " implementation of the KELDOR builtin function fn is marked as not "
                           "calling into keldor, but does.Need to change builtin doxygen from "
                           "\"nvDoesNotCallKELDOR true\" to \"nvDoesNotCallKELDOR false\"\n",
                       "builtin2/interface/builtin/CallsKeldorCheck");
}

TEST_F(CallsKeldorCheckDeathTest, OnlyTheInnermostRunningVariantCounts) {
    nvDoesNotCallKELDORAssertion();
    EXPECT_EQ(store.size(), 0u) << "a check in a tavi where nothing ran makes no stack";
    {
        const CallsKeldorCheckAsserted outer(&quiet);
        EXPECT_TRUE(outer.pushed);
        {
            const CallsKeldorCheckAsserted inner(&callsBack);
            nvDoesNotCallKELDORAssertion();
            {
                const CallsKeldorCheckAsserted innermost(&quiet);
                EXPECT_DEATH(nvDoesNotCallKELDORAssertion(), callBackReport("quietFn"));
            }
            const CallsKeldorCheckAsserted unknown(nullptr);
            nvDoesNotCallKELDORAssertion();
        }
        EXPECT_DEATH(nvDoesNotCallKELDORAssertion(), callBackReport("quietFn"));
        const bool previous = fl_set_diag_terminate(false);
        nvDoesNotCallKELDORAssertion();
        fl_set_diag_terminate(previous);
    }
    nvDoesNotCallKELDORAssertion();
    EXPECT_EQ(store.size(), 1u) << "the stack stays with its tavi, empty";
}

// The stack's slot is learnt from a store where a variant ran; another store that holds an int
// there turns the guard off for the scope instead of failing.
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
    const builtinreg::detail::AssertIfWarnings handler(variant);
    const std::string opening =
        "builtin: \"fn\" function: \"quietFn\" claims no warnings but generated this warning:\n";
    const std::string path = "builtin2/interface/builtin/CaptureWarnings";
    EXPECT_DEATH(handler(u"R\u00e9sultat \u2248 0"), fatalReport(opening + "R\u00e9sultat \u2248 0", path));
    EXPECT_DEATH(handler(u""), fatalReport(opening, path));
    EXPECT_DEATH(handler(std::u16string(1, char16_t(0xD800))),
                 fatalReport(opening + "<a warning that is not valid UTF-16>", path));
}

logtest::captured_record record(const char* channel, std::string text) {
    logtest::captured_record expected;
    expected.channel = channel;
    expected.severity = 1;
    expected.text = std::move(text);
    return expected;
}

// Execution records with the bit of severity 1 alone, none for a null variant; multi-tavi
// reports likewise.
TEST(ExecutionLog, RecordsAtSeverityOne) {
    const BuiltinVariant variant = makeVariant({.name = "logged"});
    std::ostringstream printed;
    printed << variant;
    const logtest::memory_sink sink;
    for (const std::uint32_t mask : {0u, 2u | 4u}) {
        const logtest::scoped_channel_mask off("builtin2::invoke", mask);
        const builtinreg::detail::LogBuiltinVariantExecution_ log(&variant);
    }
    EXPECT_EQ(sink.size(), 0u);
    const char* multiTavi = "builtinservice::MultiTAVIReporting";
    {
        const logtest::scoped_channel_mask on("builtin2::invoke", 1), reports(multiTavi, 1);
        const builtinreg::detail::LogBuiltinVariantExecution_ log(&variant);
        const builtinreg::detail::LogBuiltinVariantExecution_ none(nullptr);
        builtinreg::detail::logMultiTaviViolation(nullptr);
        builtinreg::detail::logMultiTaviViolation(&variant);
        builtinreg::detail::logMultiTaviReportingViolation("plot", "figure");
    }
    EXPECT_EQ(sink.records(),
              (std::vector<logtest::captured_record>{
                  record("builtin2::invoke", "Executing: " + printed.str()),
                  record(multiTavi, "Non-Multi-TAVI builtin fn on class double called."),
                  record(multiTavi, "Non-Multi-TAVI builtin plot on class figure called."),
                  record("builtin2::invoke", "Execution complete: " + printed.str())}));
}

}  // namespace
}  // namespace guardstest
