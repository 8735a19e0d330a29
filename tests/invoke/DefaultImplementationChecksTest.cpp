// The checks on the outputs of a developer's array function: the user's error for an output
// left unassigned, and the fatal checks of outputs missing, written beyond nlhs, or of a type
// that the variant does not declare.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include <builtin/invoke/invoke.hpp>
#include <fl/diag.hpp>
#include <ka/ka.hpp>

#include "../variants/VariantBuilders.hpp"
#include "fatal_text.hpp"
#include "live_arrays.hpp"

namespace guardstest {
namespace {

using namespace varianttest;
using namespace builtinreg::detail;
using testsupport::fatalReport;
using foundation::core::except::IMsgIDException;
using foundation::core::except::MessageId;

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
        ADD_FAILURE() << "no exception";
    } catch (const IMsgIDException& error) {
        EXPECT_EQ(error.message_id(),
                  (MessageId{"KELDOR:legacy_two_part", "unassignedOutputs", {u"mean"}}));
        EXPECT_STREQ(dynamic_cast<const std::exception&>(error).what(),
                     "KELDOR:legacy_two_part:unassignedOutputs");
        EXPECT_NE(dynamic_cast<const UnassignedOutputsException*>(&error), nullptr);
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
    KaArrayTypes plain;
    plain.shape = Shape::UNKNOWN;
    plain.density = KaArrayTypes::Density::UNKNOWN;
    plain.complexity = KaArrayTypes::Complexity::UNKNOWN;
    const BuiltinVariant anyArrayOut = makeVariant({.out = {plain}});
    const BuiltinVariant scalarOut = makeVariant({.out = {scalar()}});
    const ka::ArrayPtr one = ka::scalar(1.0), row = ka::row({1.0, 2.0, 3.0}),
                       text = ka::charArray(std::string_view("ab"));
    for (const kaArray_tag* array : {one.get(), row.get(), text.get()}) {
        assertLhsWrongType(anyArrayOut, array);
    }
    assertLhsWrongType(scalarOut, one.get());
    try {
        assertLhsWrongType(makeVariant({}), one.get());
        ADD_FAILURE() << "no exception";
    } catch (const std::out_of_range& error) {
        EXPECT_STREQ(error.what(), "invalid vector subscript");
    }
    EXPECT_DEATH(assertLhsWrongType(scalarOut, row.get()),
                 fatalReport("incorrect type returned from builtin: \"native\"\nExpected: double\n"
                             "Actual: KaArrayTypes: kaDOUBLE_CLASS ROW FULL NOT_COMPLEX STRICT",
                             "builtin2/interface/builtin/getFunctionDescriptor"));
    const bool previous = fl_set_diag_terminate(false);
    assertLhsWrongType(scalarOut, row.get());
    fl_set_diag_terminate(previous);
}

}  // namespace
}  // namespace guardstest
