// The only place where the lifted loops meet oneTBB: one instantiation of parallel_for for
// every element type and path.
#include "ElementWiseLoops.hpp"

#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>
#include <oneapi/tbb/partitioner.h>
#include <oneapi/tbb/task_group.h>

namespace Norvane::builtin::builtinreg::detail {

namespace {

using Range = tbb::blocked_range<std::size_t>;

struct RunPiece {
  RangeTask task;
  void operator()(const Range& range) const noexcept {
    task.run(task.body, range.begin(), range.end());
  }
};

}  // namespace

void shareOneInput(const LoopContext* context, std::size_t count, RangeTask task) {
  if (count <= context->serialLimit) {
    task.run(task.body, 0, count);
    return;
  }
  tbb::parallel_for(Range(0, count), RunPiece{task}, tbb::auto_partitioner());
}

void shareTwoInputs(const LoopContext* context, std::size_t elements, std::size_t count,
                    std::size_t grain, RangeTask task) {
  if (elements <= context->serialLimit) {
    task.run(task.body, 0, count);
    return;
  }
  tbb::task_group_context group(tbb::task_group_context::isolated,
                                tbb::task_group_context::default_traits |
                                    tbb::task_group_context::fp_settings);
  tbb::parallel_for(Range(0, count, grain), RunPiece{task}, tbb::auto_partitioner(), group);
}

}  // namespace Norvane::builtin::builtinreg::detail
