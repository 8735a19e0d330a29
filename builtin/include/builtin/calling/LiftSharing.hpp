// The one place where lifted loops meet oneTBB: a range of output elements is shared among the
// workers, or run at once on the calling thread when it is small or workers are not allowed.
// Loop bodies arrive type-erased, so one instantiation of parallel_for serves every element
// type, kernel and module.
#pragma once

#include <cstddef>
#include <limits>

#include <builtin/calling/LiftPlan.hpp>
#include <builtin/calling/OrroBuiltinEnvironment.hpp>
#include <builtin/calling/OrroFunctionDescriptor.hpp>
#include <builtin/config.hpp>

namespace Norvane::builtin::builtinreg::detail {

// A loop goes parallel only above this many output elements: at 1024 it stays serial.
inline constexpr std::size_t parallelThreshold = 1024;
// The grain of the loops over several inputs, in elements, and the upper bound of a general
// broadcast's grain in blocks.
inline constexpr std::size_t twoInputGrain = 512;

// What every loop body of one call reads; on the stack of the lifted entry.
struct LoopContext {
    std::size_t serialLimit = std::numeric_limits<std::size_t>::max();
    IOrroBuiltinEnvironment* environment = nullptr;  // what kernels report to
    OrroFunctionDescriptor* descriptor = nullptr;
    bool* failed = nullptr;  // set by atomic exchange when a kernel reports failure
};

// The serial limit of a call: parallelThreshold if the variant allows workers, else none.
BUILTIN_API std::size_t serialLimitOf(const OrroFunctionDescriptor* descriptor) noexcept;

// Marks the call failed. Called by a loop body that caught an exception from a kernel, inside
// its handler: the exception goes to the context's environment as the call's error.
BUILTIN_API void reportCaughtException(const LoopContext* context) noexcept;

// Marks the call failed after a kernel returned true under CanThrow.
BUILTIN_API void markFailed(const LoopContext* context) noexcept;

// A piece of work over the output elements [first, last). The pointer is called once per piece,
// not per element. The body must not throw.
struct RangeTask {
    void (*run)(const void* body, std::size_t first, std::size_t last) noexcept;
    const void* body;
};

template <class Body>
RangeTask rangeTask(const Body& body) noexcept {
    return {[](const void* self, std::size_t first, std::size_t last) noexcept {
                (*static_cast<const Body*>(self))(first, last);
            },
            &body};
}

// Runs the task over the plan's output: at once if the output is within the serial limit,
// else in pieces on oneTBB's workers, in an isolated task group context that carries the
// calling thread's floating-point settings to them. Pieces are at least 512 elements (one input:
// any size), or whole blocks of a general broadcast.
BUILTIN_API void shareRange(const LoopContext* context, const LiftPlan& plan, RangeTask task);

}  // namespace Norvane::builtin::builtinreg::detail
