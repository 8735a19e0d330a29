// The walk of the general broadcast path, where the two inputs of a lifted call really differ in
// shape. The output is cut into blocks of contiguous elements inside which each input either
// stays on one element or runs along contiguously; the typed loop runs one plain inner loop per
// block, and a BlockCursor gives the input offsets of each block. None of it depends on the
// element type.
//
//   block       the output elements of the leading dimensions, up to the first one at which the
//               way the inputs vary changes (firstOuter)
//   mode        how the inputs vary inside a block
//   strides     per outer dimension, how far an input moves when the output moves one step
//               there: its cumulative size below that dimension, or 0 where it has size 1
//
// Requires inputs that broadcast and differ in shape, and a nonempty output, as the lifted entry
// makes sure: then both inputs vary somewhere the other does not, so the walk for the block
// always ends.
#pragma once

#include <cstddef>
#include <span>

#include "ElementWiseArrays.hpp"

namespace Norvane::builtin::builtinreg::detail {

enum class BlockMode : unsigned char {
    SCALAR_AND_ARRAY = 1,  // only input 1 varies inside a block
    ARRAY_AND_SCALAR = 2,  // only input 0 varies
    ARRAY_AND_ARRAY = 3,   // both do
};

struct BroadcastPlan {
    OutputDims outDims;
    std::size_t firstOuter = 0;
    std::size_t block = 0;   // output elements in a block
    std::size_t blocks = 0;  // blocks in the output
    BlockMode mode = BlockMode::ARRAY_AND_ARRAY;
    OutputDims stride0;  // by dimension; only those from firstOuter are used
    OutputDims stride1;
};

BroadcastPlan planBroadcast(std::span<const std::size_t> dims0, std::span<const std::size_t> dims1,
                            std::span<const std::size_t> outDims);

// The position of the two inputs at one block of the output, and the step to the next block.
// Inline: it runs once per block, inside the loop bodies.
class BlockCursor {
public:
    // Decodes the output counters of block `first`, the last dimension most significant.
    BlockCursor(const BroadcastPlan& plan, std::size_t first)
        : plan_(plan), counters_(plan.outDims.size(), 0) {
        std::size_t rest = first;
        for (std::size_t d = plan.firstOuter; d < plan.outDims.size(); ++d) {
            const std::size_t count = rest % plan.outDims[d];
            rest /= plan.outDims[d];
            counters_[d] = count;
            offset0_ += count * plan.stride0[d];
            offset1_ += count * plan.stride1[d];
        }
    }

    std::size_t offset0() const noexcept { return offset0_; }
    std::size_t offset1() const noexcept { return offset1_; }

    // Steps the lowest outer counter that is not at its end and resets those below it.
    void step() noexcept {
        for (std::size_t d = plan_.firstOuter; d < plan_.outDims.size(); ++d) {
            if (counters_[d] + 1 < plan_.outDims[d]) {
                ++counters_[d];
                offset0_ += plan_.stride0[d];
                offset1_ += plan_.stride1[d];
                return;
            }
            offset0_ -= counters_[d] * plan_.stride0[d];
            offset1_ -= counters_[d] * plan_.stride1[d];
            counters_[d] = 0;
        }
    }

private:
    const BroadcastPlan& plan_;
    OutputDims counters_;
    std::size_t offset0_ = 0;
    std::size_t offset1_ = 0;
};

}  // namespace Norvane::builtin::builtinreg::detail
