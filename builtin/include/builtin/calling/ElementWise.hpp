// Element-wise lifting: a native kernel of plain scalars, all of one numeric type T, that also
// answers for arrays. The lifted entry has the shape of a typed entry; it runs the kernel once
// for each element, broadcasting between two inputs, and gives back an array of T's class
// (alternative 13), also for a 1-by-1 result. Two unboxed scalars, or one, go straight to the
// scalar wrapper of the same signature and come back unboxed.
//
// These are the entries for kernels known only at run time, through the descriptor's pointer.
// They and the entries that modules make for kernels known at compile time, of one to four inputs
// of any numeric types, are one template over one plan (LiftedEntry.hpp, LiftPlan.hpp).
//
// A module declares the typed entry of an element-wise variant as a small forwarding function
// that adds the type indices, which is what elementWiseEntry<T, Inputs> below is:
//
//   descriptor.typedEntry = &elementWiseEntry<double, 2>;   // double f(double, double)
//
// The descriptor must be the one of a living BuiltinVariant: the entry reads the variant's
// flags to decide whether the loop may use worker threads (only if the kernel has no side
// effects, never calls back into the interpreter and never warns; a kernel that may fail may run
// in parallel). The loop goes parallel only above 1024 output elements.
//
// Inputs. Each argument is either an unboxed T or an array of T's class and complexity, full,
// not sparse. An array of another class, complexity or density throws std::bad_cast; a Parameter
// of another alternative throws std::logic_error "Parameter should contain {expected} but
// actually contained {actual}". The entry owns the reference each array argument carries, and
// releases it on every path, the exceptions included.
//
// Broadcasting. The output has as many dimensions as the longer input, at least two. In each
// dimension the two sizes (1 past an input's end) must be equal or one of them 1; the output
// size is then the other one. So a size of 0 against 1, or against a dimension that the other
// input does not have, gives 0: 2-by-3 with 2-by-3-by-0 is 2-by-3-by-0, an empty array, and no
// kernel is called. Sizes that do not broadcast (2 against 3, or 0 against 2) throw
// std::invalid_argument before anything is created.
//
// In place. An input whose array nobody else holds (its two counts add up to at most 1), whose
// data is not shared and whose dimensions are those of the output becomes the output, the first
// input first, and is overwritten. Otherwise the output is a fresh array.
//
// Reports. Kernels report through a ParallelEnvironment, which hands everything to `environment`
// at the end and sets `pending`. If any kernel reported an exception, the result is alternative
// 13 holding null and the first exception reported is the one the environment gets; warnings
// come first, in element order (a kernel that may warn never runs in parallel). A kernel that
// throws is taken as one that reported the exception.
#pragma once

#include <cstddef>
#include <span>
#include <typeinfo>

#include <builtin/calling/OrroFunctionDescriptor.hpp>
#include <builtin/config.hpp>

namespace Norvane::builtin::builtinreg::detail {

// The lifted entries. Only the positions with all indices equal to one numeric type index k
// (0 to 12) hold one: out * 16 + in0 = 17 * k, out * 256 + in0 * 16 + in1 = 273 * k. Any other
// position calls nothing, leaves `pending` alone and returns the default Parameter.
BUILTIN_API Parameter elementWiseInlineC(OrroFunctionDescriptor* const descriptor,
                                         IOrroBuiltinEnvironment* const environment, bool& pending,
                                         const ParameterList& arguments, const ParameterTypes* tag,
                                         std::size_t out, std::size_t in0);
BUILTIN_API Parameter elementWiseInlineC(OrroFunctionDescriptor* const descriptor,
                                         IOrroBuiltinEnvironment* const environment, bool& pending,
                                         const ParameterList& arguments, const ParameterTypes* tag,
                                         std::size_t out, std::size_t in0, std::size_t in1);

// The lifted entry itself at one of those positions, or null elsewhere: a declaration takes it
// once, so that each call goes straight to the entry instead of through the selector.
BUILTIN_API TypedEntry getElementWiseEntry(const ParameterTypes* tag, std::size_t out,
                                           std::size_t in0);
BUILTIN_API TypedEntry getElementWiseEntry(const ParameterTypes* tag, std::size_t out,
                                           std::size_t in0, std::size_t in1);

// The dimensions of an unboxed scalar, {1, 1}, for the whole process.
BUILTIN_API const std::span<std::size_t>& getScalarDims();

// The rule of shapes that callers of a two-input lifted entry keep: given the sizes that all
// inputs have in one dimension, stops the process unless all sizes other than 1 are equal. An
// empty or all-1 list passes. Called by the templates of modules that lift kernels themselves;
// the lifted entries here check shapes before they start.
BUILTIN_API void assertElementwiseDimensions(const std::size_t* first, const std::size_t* last);

// Never returns normally. Builds "Parameter should contain {expected} but actually contained
// {actual}" from the readable type names; stops the process with it if mayStop is true and
// fl_diag_terminate() agrees, and throws std::logic_error with it otherwise.
[[noreturn]] BUILTIN_API void assertOrThrowWrongElementWiseArg(const std::type_info& expected,
                                                               const std::type_info& actual,
                                                               bool mayStop);

// The typed entry of an element-wise variant whose kernel takes Inputs (1 or 2) values of T and
// returns a T.
template <class T, std::size_t Inputs>
Parameter elementWiseEntry(OrroFunctionDescriptor* descriptor, IOrroBuiltinEnvironment* environment,
                           bool& pending, const ParameterList& arguments) {
    static_assert(Inputs == 1 || Inputs == 2, "a kernel is lifted over one input or two");
    constexpr std::size_t k = parameterIndexOf<T>;
    static_assert(k < parameterIndexOf<kaArray_tag*>, "only numeric kernels are lifted");
    if constexpr (Inputs == 1) {
        return elementWiseInlineC(descriptor, environment, pending, arguments, nullptr, k, k);
    } else {
        return elementWiseInlineC(descriptor, environment, pending, arguments, nullptr, k, k, k);
    }
}

}  // namespace Norvane::builtin::builtinreg::detail
