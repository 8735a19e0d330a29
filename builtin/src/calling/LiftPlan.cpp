// Works out the plan of a lifted call from the shapes of its inputs.
#include <builtin/calling/LiftPlan.hpp>

#include <algorithm>
#include <sstream>
#include <stdexcept>
#include <string>

namespace Norvane::builtin::builtinreg::detail {

namespace {

std::size_t sizeAt(std::span<const std::size_t> dims, std::size_t d) noexcept {
    return d < dims.size() ? dims[d] : 1;
}

// "2x3", or "2x3 and 3x2", or "2x3, 3x2 and 1x4".
[[noreturn]] void rejectShapes(std::span<const std::span<const std::size_t>> inputDims) {
    std::ostringstream text;
    text << "element-wise inputs of sizes ";
    for (std::size_t j = 0; j < inputDims.size(); ++j) {
        if (j != 0) {
            text << (j + 1 == inputDims.size() ? " and " : ", ");
        }
        for (std::size_t d = 0; d < inputDims[j].size(); ++d) {
            text << (d == 0 ? "" : "x") << inputDims[j][d];
        }
    }
    text << " do not broadcast";
    throw std::invalid_argument(text.str());
}

// The inputs that run along dimension d of the output: those whose size there is not 1.
unsigned varyingAt(std::span<const std::span<const std::size_t>> inputDims, std::size_t d) {
    unsigned mask = 0;
    for (std::size_t j = 0; j < inputDims.size(); ++j) {
        if (sizeAt(inputDims[j], d) != 1) {
            mask |= 1u << j;
        }
    }
    return mask;
}

}  // namespace

LiftPlan planLift(std::span<const std::span<const std::size_t>> inputDims) {
    LiftPlan plan;
    plan.inputs = inputDims.size();
    std::size_t rank = 2;
    for (const std::span<const std::size_t> dims : inputDims) {
        rank = std::max(rank, dims.size());
    }
    plan.outDims.assign(rank, 1);
    for (std::size_t d = 0; d < rank; ++d) {
        for (const std::span<const std::size_t> dims : inputDims) {
            const std::size_t size = sizeAt(dims, d);
            if (size != 1 && plan.outDims[d] != 1 && size != plan.outDims[d]) {
                rejectShapes(inputDims);
            }
            if (size != 1) {
                plan.outDims[d] = size;
            }
        }
    }
    plan.outCount = 1;
    for (const std::size_t size : plan.outDims) {
        plan.outCount *= size;
    }

    // The block: dimensions of size 1 are passed over; the first dimension whose set of
    // running inputs differs from that of the first one that has any ends it.
    unsigned mode = 0;
    std::size_t d = 0;
    for (; d < rank; ++d) {
        if (plan.outDims[d] == 1) {
            continue;
        }
        const unsigned here = varyingAt(inputDims, d);
        if (mode == 0) {
            mode = here;
        } else if (here != mode) {
            break;
        }
    }
    plan.firstOuter = d;
    plan.varying = mode;
    plan.block = 1;
    for (std::size_t i = 0; i < d; ++i) {
        plan.block *= plan.outDims[i];
    }
    if (plan.block == 0) {
        plan.block = 1;  // an empty output: there is nothing to walk
    }

    // Strides of the outer dimensions: an input's own count of elements below d, where it runs
    // along d. With the whole output one block (the usual case) there are none.
    if (plan.firstOuter == rank) {
        return plan;
    }
    for (std::size_t j = 0; j < plan.inputs; ++j) {
        plan.strides[j].assign(rank, 0);
        std::size_t below = 1;
        for (std::size_t k = 0; k < rank; ++k) {
            const std::size_t size = sizeAt(inputDims[j], k);
            if (k >= plan.firstOuter && size != 1) {
                plan.strides[j][k] = below;
            }
            below *= size;
        }
    }
    return plan;
}

}  // namespace Norvane::builtin::builtinreg::detail
