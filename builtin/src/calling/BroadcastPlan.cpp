// Works out the blocks of the general broadcast path from the shapes of the inputs.
#include "BroadcastPlan.hpp"

namespace Norvane::builtin::builtinreg::detail {

namespace {

// Cumulative sizes: entry i is the number of elements in dimensions 0 to i. Past the end of an
// input's dimensions the size stays.
OutputDims cumulativeSizes(std::span<const std::size_t> dims, std::size_t count) {
    OutputDims sizes(count);
    sizes[0] = dims[0];
    for (std::size_t i = 1; i < count; ++i) {
        sizes[i] = i < dims.size() ? dims[i] * sizes[i - 1] : sizes[i - 1];
    }
    return sizes;
}

// 2 if input 0 varies along dimension i, plus 1 if input 1 does.
unsigned pattern(std::span<const std::size_t> dims0, std::span<const std::size_t> dims1,
                 std::size_t i) {
    const bool varies0 = i < dims0.size() && dims0[i] != 1;
    const bool varies1 = i < dims1.size() && dims1[i] != 1;
    return (varies0 ? 2u : 0u) + (varies1 ? 1u : 0u);
}

}  // namespace

BroadcastPlan planBroadcast(std::span<const std::size_t> dims0, std::span<const std::size_t> dims1,
                            std::span<const std::size_t> outDims) {
    const std::size_t rank = outDims.size();
    BroadcastPlan plan;
    plan.outDims.assign(outDims.begin(), outDims.end());
    const OutputDims sizes0 = cumulativeSizes(dims0, rank);
    const OutputDims sizes1 = cumulativeSizes(dims1, rank);
    const OutputDims sizesOut = cumulativeSizes(outDims, rank);

    // The leading block: dimensions in which nothing varies are passed over; the first whose way
    // of varying differs from the first varying one ends it.
    unsigned mode = 0;
    std::size_t i = 0;
    for (; i < rank; ++i) {
        const unsigned here = pattern(dims0, dims1, i);
        if (here == 0) {
            continue;
        }
        if (mode == 0) {
            mode = here;
        } else if (here != mode) {
            break;
        }
    }
    plan.firstOuter = i;
    plan.mode = static_cast<BlockMode>(mode);
    plan.block = sizesOut[i - 1];
    plan.blocks = sizesOut[rank - 1] / plan.block;

    plan.stride0.assign(rank, 0);
    plan.stride1.assign(rank, 0);
    for (std::size_t d = plan.firstOuter; d < rank; ++d) {
        plan.stride0[d] = sizes0[d - 1] != sizes0[d] ? sizes0[d - 1] : 0;
        plan.stride1[d] = sizes1[d - 1] != sizes1[d] ? sizes1[d - 1] : 0;
    }
    return plan;
}

}  // namespace Norvane::builtin::builtinreg::detail
