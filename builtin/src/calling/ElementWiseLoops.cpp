// The only place where the lifted loops meet oneTBB: the loop bodies arrive type-erased, so one
// instantiation of parallel_for serves every element type and path.
#include "ElementWiseLoops.hpp"

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

template <class... Context>
void runPieces(const Range& range, RangeTask task, Context&... context) {
    ForkJoinMarks marks;
    marks.fork();
    tbb::parallel_for(range, RunPiece{task, &marks}, tbb::auto_partitioner(), context...);
    marks.join();
}

}  // namespace

void shareOneInput(const LoopContext* context, std::size_t count, RangeTask task) {
    if (count <= context->serialLimit) {
        task.run(task.body, 0, count);
        return;
    }
    runPieces(Range(0, count), task);
}

void shareTwoInputs(const LoopContext* context, std::size_t elements, std::size_t count,
                    std::size_t grain, RangeTask task) {
    if (elements <= context->serialLimit) {
        task.run(task.body, 0, count);
        return;
    }
    tbb::task_group_context group(
        tbb::task_group_context::isolated,
        tbb::task_group_context::default_traits | tbb::task_group_context::fp_settings);
    runPieces(Range(0, count, grain), task, group);
}

}  // namespace Norvane::builtin::builtinreg::detail
