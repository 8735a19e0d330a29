// Sharing the output range of a lifted call among oneTBB's workers, and the marks of a failed
// call; the loop bodies arrive type-erased.
#include <builtin/calling/LiftSharing.hpp>

#include <algorithm>
#include <atomic>

#include <builtin/calling/LiftArrays.hpp>

#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>
#include <oneapi/tbb/partitioner.h>
#include <oneapi/tbb/task_group.h>

#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

namespace Norvane::builtin::builtinreg::detail {

namespace {

using Range = tbb::blocked_range<std::size_t>;

// oneTBB hands the pieces to its workers, and joins them, inside a library that
// ThreadSanitizer does not see into. These marks tell it what the fork and the join guarantee:
// what the calling thread did before the loop happens before every piece, and every piece
// happens before the calling thread goes on. The pieces stay unordered among themselves, so a
// race between two of them is still found. Outside ThreadSanitizer builds they are empty.
class ForkJoinMarks {
public:
#if defined(__SANITIZE_THREAD__)
    void fork() noexcept {
        __tsan_release(&forked_);
    }
    void pieceBegins() noexcept {
        __tsan_acquire(&forked_);
    }
    void pieceEnds() noexcept {
        __tsan_release(&joined_);
    }
    void join() noexcept {
        __tsan_acquire(&joined_);
    }

private:
    char forked_ = 0;
    char joined_ = 0;
#else
    void fork() noexcept {}
    void pieceBegins() noexcept {}
    void pieceEnds() noexcept {}
    void join() noexcept {}
#endif
};

struct RunPiece {
    RangeTask task;
    ForkJoinMarks* marks;
    void operator()(const Range& range) const noexcept {
        marks->pieceBegins();
        task.run(task.body, range.begin(), range.end());
        marks->pieceEnds();
    }
};

void runPieces(const Range& range, RangeTask task, tbb::task_group_context& context) {
    ForkJoinMarks marks;
    marks.fork();
    tbb::parallel_for(range, RunPiece{task, &marks}, tbb::auto_partitioner(), context);
    marks.join();
}

// Pieces of a general broadcast are whole blocks, as many as make the serial limit (at least
// one, at most twoInputGrain); elsewhere pieces of twoInputGrain elements, or of any size for
// one input.
std::size_t grainOf(const LoopContext* context, const LiftPlan& plan) noexcept {
    if (plan.inputs == 1) {
        return 1;
    }
    if (plan.block == plan.outCount) {
        return twoInputGrain;
    }
    return std::min(context->serialLimit / plan.block + 1, twoInputGrain) * plan.block;
}

}  // namespace

std::size_t serialLimitOf(const OrroFunctionDescriptor* descriptor) noexcept {
    return allowsParallel(descriptor) ? parallelThreshold : std::numeric_limits<std::size_t>::max();
}

void reportCaughtException(const LoopContext* context) noexcept {
    markFailed(context);
    IOrroBuiltinAccessors* const accessors =
        context->environment != nullptr ? context->environment->GetOrroBuiltinAccessors() : nullptr;
    if (accessors != nullptr) {
        try {
            accessors->SetInternalPendingException();
        } catch (...) {
            // The environment could not take it (its lock failed): the call is marked failed
            // all the same, and the exception is dropped with the other later reports.
        }
    }
}

void markFailed(const LoopContext* context) noexcept {
    std::atomic_ref<bool>(*context->failed).store(true, std::memory_order_relaxed);
}

void shareRange(const LoopContext* context, const LiftPlan& plan, RangeTask task) {
    if (plan.outCount <= context->serialLimit) {
        task.run(task.body, 0, plan.outCount);
        return;
    }
    tbb::task_group_context group(
        tbb::task_group_context::isolated,
        tbb::task_group_context::default_traits | tbb::task_group_context::fp_settings);
    runPieces(Range(0, plan.outCount, grainOf(context, plan)), task, group);
}

}  // namespace Norvane::builtin::builtinreg::detail
