// The checks that the wrapper of a developer's array function (a default implementation) makes
// on the outputs: the assertLhs family stops the process when the function broke its own
// contract, throwIfUnassignedOutputs raises the user's error when an output was left unassigned.
//
//   for (int i = 0; i < nlhs; ++i)
//       if (plhs[i] == nullptr) builtinreg::detail::assertLhsIsNotNull(nlhs, i, variant);
//   builtinreg::detail::assertLhsWrongType(variant, plhs[0]);
//
// The library never calls them itself.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <utility>

#include <fl/except.hpp>

#include <builtin/config.hpp>
#include <builtin/variants/BuiltinVariant.hpp>

struct kaArray_tag;

namespace KELDOR::legacy_two_part {

// The message of outputs left unassigned; its one argument is the function's name. The text
// is in the product's message catalog.
struct unassignedOutputs : foundation::core::except::MessageId {
    explicit unassignedOutputs(std::u16string functionName)
        : MessageId{"KELDOR:legacy_two_part", "unassignedOutputs", {std::move(functionName)}} {}
};

}  // namespace KELDOR::legacy_two_part

namespace Norvane::builtin {

using UnassignedOutputsException =
    foundation::core::except::Exception<KELDOR::legacy_two_part::unassignedOutputs, std::exception,
                                        void>;

// Returns if none of plhs[0] to plhs[nlhs-1] is null. Otherwise destroys those that are not,
// sets all of them to null, and throws UnassignedOutputsException with the function's name:
// a call with an unassigned output delivers no output and leaks none.
BUILTIN_API void throwIfUnassignedOutputs(const std::u16string& functionName, int nlhs,
                                          kaArray_tag** plhs);

namespace builtinreg::detail {

// Always stops: plhs[index] is null although the call asked for nlhs outputs.
[[noreturn]] BUILTIN_API void assertLhsIsNotNull(std::int64_t nlhs, std::int64_t index,
                                                 const BuiltinVariant& variant);

// Always stops: the function wrote plhs[index], beyond the nlhs outputs asked for.
[[noreturn]] BUILTIN_API void assertLhsOverflow(std::int64_t nlhs, std::int64_t index,
                                                const BuiltinVariant& variant);

// Returns if the array is of a type that the variant's first output accepts, or if that output
// is the plain array type, which stands for any array. Otherwise stops with both types (unless
// fl_diag_terminate() answers false). Throws std::out_of_range for a variant without outputs.
BUILTIN_API void assertLhsWrongType(const BuiltinVariant& variant, const kaArray_tag* array);

}  // namespace builtinreg::detail
}  // namespace Norvane::builtin
