// LiftPlan: how a lifted element-wise call walks its output, for one to four inputs that
// broadcast against each other. None of it depends on the element types, so the library plans
// and the typed loops (LiftedEntry.hpp) only follow the plan.
//
// Broadcasting. The output has as many dimensions as the longest input, at least two. In each
// dimension the inputs' sizes (1 past an input's end) must be equal or 1, and the output size is
// the one that is not 1. So 0 against 1 gives 0, and 0 against 2 does not broadcast.
//
// The walk. The output is cut into runs of contiguous elements inside which every input either
// runs along contiguously too or stays on one element:
//
//   block       the output elements of the leading dimensions up to `firstOuter`, the first
//               dimension at which the set of inputs that run along changes (dimensions of size
//               1 change nothing); the whole output when every input is either of the output's
//               shape or a single element
//   varying     the inputs that run along inside a block, one bit each
//   strides     per input and outer dimension, how far the input moves when the output moves
//               one step there: 0 where the input has size 1
//
// A range of output elements [first, last), as a worker gets it, starts and ends anywhere; a
// RunCursor gives the input offsets of each run in it.
#pragma once

#include <array>
#include <cstddef>
#include <span>

#include <boost/container/small_vector.hpp>

#include <builtin/config.hpp>

namespace Norvane::builtin::builtinreg::detail {

// Dimension lists of a lifted call; five need no allocation.
using OutputDims = boost::container::small_vector<std::size_t, 5>;

inline constexpr std::size_t maxLiftedInputs = 4;

struct LiftPlan {
    OutputDims outDims;
    std::size_t outCount = 0;
    std::size_t inputs = 0;
    std::size_t firstOuter = 0;
    std::size_t block = 1;
    unsigned varying = 0;
    std::array<OutputDims, maxLiftedInputs> strides;
};

// The plan for inputs of these dimensions (1 to maxLiftedInputs of them). Throws
// std::invalid_argument "element-wise inputs of sizes 2x3 and 3x2 do not broadcast" (all the
// sizes named) where they do not, before anything is made.
BUILTIN_API LiftPlan planLift(std::span<const std::span<const std::size_t>> inputDims);

// The position of each input at one output element of a plan, and the way to the next run.
// Inline: it runs once per run, inside the loop bodies.
class RunCursor {
public:
    RunCursor(const LiftPlan& plan, std::size_t first)
        : plan_(plan),
          counters_(plan.firstOuter < plan.outDims.size() ? plan.outDims.size() : 0, 0),
          within_(first % plan.block) {
        std::size_t rest = first / plan.block;
        for (std::size_t d = plan.firstOuter; d < plan.outDims.size() && rest != 0; ++d) {
            const std::size_t count = rest % plan.outDims[d];
            rest /= plan.outDims[d];
            counters_[d] = count;
            for (std::size_t j = 0; j < plan.inputs; ++j) {
                offsets_[j] += count * plan.strides[j][d];
            }
        }
    }

    // Output elements left in the current block.
    std::size_t runLength() const noexcept { return plan_.block - within_; }

    // Where input j stands at the current element.
    std::size_t offset(std::size_t j) const noexcept {
        return offsets_[j] + (((plan_.varying >> j) & 1u) != 0 ? within_ : 0);
    }

    // Moves n elements on, n at most runLength().
    void advance(std::size_t n) noexcept {
        within_ += n;
        if (within_ == plan_.block) {
            within_ = 0;
            nextBlock();
        }
    }

private:
    // Steps the lowest outer counter that is not at its end, and resets those below it.
    void nextBlock() noexcept {
        for (std::size_t d = plan_.firstOuter; d < plan_.outDims.size(); ++d) {
            if (counters_[d] + 1 < plan_.outDims[d]) {
                ++counters_[d];
                for (std::size_t j = 0; j < plan_.inputs; ++j) {
                    offsets_[j] += plan_.strides[j][d];
                }
                return;
            }
            for (std::size_t j = 0; j < plan_.inputs; ++j) {
                offsets_[j] -= counters_[d] * plan_.strides[j][d];
            }
            counters_[d] = 0;
        }
    }

    const LiftPlan& plan_;
    OutputDims counters_;
    std::array<std::size_t, maxLiftedInputs> offsets_{};
    std::size_t within_;
};

}  // namespace Norvane::builtin::builtinreg::detail
