// The lifted entries of a kernel T f(T) or T f(T, T), instantiated for the thirteen numeric
// alternatives by the two units that build the selector tables. The steps of a call:
//
//   1. Unboxed scalars go straight to the scalar wrapper and return unboxed; otherwise view the
//      arguments (the second first).
//   2. Work out the output dimensions; reuse an input as the output or create it.
//   3. Decide the serial limit from the variant's flags, and put a ParallelEnvironment in front
//      of the caller's environment.
//   4. Run the loop: one input, a fast path (array and scalar, scalar and array, array and
//      array), or the general broadcast path by blocks.
//   5. Finish: drop the output if a kernel reported an exception; the ParallelEnvironment hands
//      the reports over as it goes out of scope, the views release their references after it.
//
// Only the views and the loops are typed; the rest is in ElementWiseArrays and BroadcastPlan.
#pragma once

#include <algorithm>
#include <cstddef>
#include <limits>
#include <span>

#include <builtin/calling/InlineCWrappers.hpp>
#include <builtin/calling/ParallelEnvironment.hpp>

#include "BroadcastPlan.hpp"
#include "ElementView.hpp"
#include "ElementWiseArrays.hpp"
#include "ElementWiseLoops.hpp"

namespace Norvane::builtin::builtinreg::detail {

inline LoopContext makeLoopContext(OrroFunctionDescriptor* descriptor,
                                   ParallelEnvironment* environment, bool* failed) noexcept {
    const std::size_t serialLimit =
        allowsParallel(descriptor) ? parallelThreshold : std::numeric_limits<std::size_t>::max();
    return {serialLimit, environment, descriptor, failed};
}

template <class T>
T* outputData(const ka::ArrayPtr& output) noexcept {
    return static_cast<T*>(matrix::data(output.get()));
}

// The general path: the two inputs differ in shape and the output is not empty.
template <class T>
void runBroadcast(const LoopContext* context, const T* in0, const T* in1, T* out,
                  std::span<const std::size_t> dims0, std::span<const std::size_t> dims1,
                  std::span<const std::size_t> outDims, std::size_t outCount) {
    const BroadcastPlan plan = planBroadcast(dims0, dims1, outDims);
    const auto body = [&](std::size_t first, std::size_t last) noexcept {
        const std::size_t block = plan.block;
        BlockCursor cursor(plan, first);
        for (std::size_t b = first; b < last; ++b) {
            T* const o = out + b * block;
            switch (plan.mode) {
                case BlockMode::SCALAR_AND_ARRAY:
                    scalarAndArray(context, in0 + cursor.offset0(), in1 + cursor.offset1(), o,
                                   block);
                    break;
                case BlockMode::ARRAY_AND_SCALAR:
                    arrayAndScalar(context, in0 + cursor.offset0(), in1 + cursor.offset1(), o,
                                   block);
                    break;
                case BlockMode::ARRAY_AND_ARRAY:
                    arrayAndArray(context, in0 + cursor.offset0(), in1 + cursor.offset1(), o,
                                  block);
                    break;
            }
            cursor.step();
        }
    };
    // Blocks above the serial limit get a grain of 1, so that a large block never keeps the
    // whole loop on one thread.
    const std::size_t grain = std::min(context->serialLimit / plan.block + 1, twoInputGrain);
    shareTwoInputs(context, outCount, plan.blocks, grain, rangeTask(body));
}

template <class T>
void runTwoInputs(const LoopContext* context, const ElementView<T>& view0,
                  const ElementView<T>& view1, std::span<const std::size_t> outDims, T* out) {
    const std::size_t outCount = elementCount(outDims);
    if (outCount == 0) {
        return;  // an empty output: no kernel runs and no input is read
    }
    const std::size_t n0 = view0.data.size();
    const std::size_t n1 = view1.data.size();
    const T* const in0 = view0.data.data();
    const T* const in1 = view1.data.data();
    if (outCount == std::max(n0, n1)) {
        if (n0 != 1 && n1 == 1) {
            const auto body = [&](std::size_t first, std::size_t last) noexcept {
                arrayAndScalar(context, in0 + first, in1, out + first, last - first);
            };
            shareTwoInputs(context, n0, n0, twoInputGrain, rangeTask(body));
            return;
        }
        if (n0 == 1 && n1 != 1) {
            const auto body = [&](std::size_t first, std::size_t last) noexcept {
                scalarAndArray(context, in0, in1 + first, out + first, last - first);
            };
            shareTwoInputs(context, n1, n1, twoInputGrain, rangeTask(body));
            return;
        }
        if (n0 == n1) {
            const auto body = [&](std::size_t first, std::size_t last) noexcept {
                arrayAndArray(context, in0 + first, in1 + first, out + first, last - first);
            };
            shareTwoInputs(context, n0, n0, twoInputGrain, rangeTask(body));
            return;
        }
    }
    runBroadcast(context, in0, in1, out, view0.dims, view1.dims, outDims, outCount);
}

template <class T>
Parameter liftOneInput(OrroFunctionDescriptor* descriptor, IOrroBuiltinEnvironment* environment,
                       bool& pending, const ParameterList& arguments) {
    constexpr std::size_t k = parameterIndexOf<T>;
    // An unboxed scalar needs no view: straight to the scalar wrapper. Past this, the view holds
    // an array, since makeView refuses every other alternative.
    if (static_cast<std::size_t>(arguments[0].which()) == k) {
        return getExportedInlineCWrapperFcn(nullptr, k, k)(descriptor, environment, pending,
                                                           arguments);
    }
    ElementView<T> view = makeView<T>(arguments[0], claimArray(arguments[0]));
    const OutputDims dims = outputDims(view.dims);
    ka::ArrayPtr output = reuseOrCreate(dims, elementClasses[k], {&view.array});
    bool failed = false;
    ParallelEnvironment parallel(environment, &pending);
    pending = false;
    const LoopContext context = makeLoopContext(descriptor, &parallel, &failed);
    const T* const in = view.data.data();
    T* const out = outputData<T>(output);
    const auto body = [&](std::size_t first, std::size_t last) noexcept {
        transform(&context, in + first, out + first, last - first);
    };
    shareOneInput(&context, view.data.size(), rangeTask(body));
    return finish(std::move(output), failed, parallel, pending);
}

template <class T>
Parameter liftTwoInputs(OrroFunctionDescriptor* descriptor, IOrroBuiltinEnvironment* environment,
                        bool& pending, const ParameterList& arguments) {
    constexpr std::size_t k = parameterIndexOf<T>;
    // Two unboxed scalars need no views: straight to the scalar wrapper. Past this, at least one
    // view holds an array, since makeView refuses every other alternative.
    if (static_cast<std::size_t>(arguments[0].which()) == k &&
        static_cast<std::size_t>(arguments[1].which()) == k) {
        return getExportedInlineCWrapperFcn(nullptr, k, k, k)(descriptor, environment, pending,
                                                              arguments);
    }
    // Both references are claimed first, so that a refusal of the second argument still gives
    // back the reference of the first.
    ka::ArrayPtr array0 = claimArray(arguments[0]);
    ElementView<T> view1 = makeView<T>(arguments[1], claimArray(arguments[1]));
    ElementView<T> view0 = makeView<T>(arguments[0], std::move(array0));
    const OutputDims dims = outputDims(view0.dims, view1.dims);
    ka::ArrayPtr output = reuseOrCreate(dims, elementClasses[k], {&view0.array, &view1.array});
    bool failed = false;
    ParallelEnvironment parallel(environment, &pending);
    pending = false;
    const LoopContext context = makeLoopContext(descriptor, &parallel, &failed);
    runTwoInputs(&context, view0, view1, dims, outputData<T>(output));
    return finish(std::move(output), failed, parallel, pending);
}

}  // namespace Norvane::builtin::builtinreg::detail
