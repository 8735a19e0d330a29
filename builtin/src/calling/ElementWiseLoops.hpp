// The loops of a lifted call: the call of the kernel for one element, the plain inner loops
// built on it, and the sharing of a range of work among oneTBB's workers.
//
// The convention is read from the descriptor for each element, inside the one loop body, so
// there is a single loop for all conventions; the branch is always predicted, and the indirect
// call of the kernel costs more. The bodies are noexcept: an exception that escapes a kernel
// ends the process. Kernels of conventions 0 and 1 must not throw, and those of convention 2
// catch and report through the environment.
#pragma once

#include <atomic>
#include <cstddef>

#include <builtin/calling/CallingConvention.hpp>
#include <builtin/calling/OrroFunctionDescriptor.hpp>

namespace Norvane::builtin::builtinreg::detail {

// Loop bodies go parallel only above this many output elements.
inline constexpr std::size_t parallelThreshold = 1024;
// The grain of the two-input loops, and the upper bound of the general path's grain.
inline constexpr std::size_t twoInputGrain = 512;

// What every loop body of one call reads; on the stack of the lifted entry.
struct LoopContext {
    std::size_t serialLimit;  // parallelThreshold, or the largest size_t if workers are not allowed
    IOrroBuiltinEnvironment* environment;  // the call's ParallelEnvironment
    OrroFunctionDescriptor* descriptor;
    bool* failed;  // set by atomic exchange when a kernel returns true
};

// The kernel on one element. A kernel of convention 2 that returns true marks the call failed
// and still gives the value it left in its output. Another convention, or no kernel, gives 0.
template <class T, class... A>
inline T callKernel(const LoopContext* context, A... a) noexcept {
    using enum JIT_CALLING_CONVENTION;
    OrroFunctionDescriptor* const descriptor = context->descriptor;
    const NativeEntry entry = descriptor->nativeEntry;
    if (entry == nullptr) [[unlikely]] {
        return T{};
    }
    const JIT_CALLING_CONVENTION convention = descriptor->callingConvention;
    if (convention == Direct) [[likely]] {
        return reinterpret_cast<orro::NativeFunction<Direct, T, A...>>(entry)(a...);
    }
    if (convention == DirectWithDescriptor) {
        return reinterpret_cast<orro::NativeFunction<DirectWithDescriptor, T, A...>>(entry)(
            a..., descriptor);
    }
    if (convention == CanThrow) {
        T out{};
        if (reinterpret_cast<orro::NativeFunction<CanThrow, T, A...>>(entry)(
                a..., &out, context->environment, descriptor)) {
            std::atomic_ref<bool>(*context->failed).exchange(true, std::memory_order_relaxed);
        }
        return out;
    }
    return T{};
}

// The inner loops. `out` may be one of the inputs: element i is read before it is written.
// The scalar side is given by its place in its input and read there for each element, an L1
// hit: held in a register instead, it would have to live across the kernel call, and GCC then
// stores and reloads it for every element, a chain that costs a fifth of the loop. Nobody
// writes it during the loop: an input reused as the output varies along every dimension of
// the output, so it is never the scalar side.
template <class T>
void transform(const LoopContext* context, const T* in, T* out, std::size_t n) noexcept {
    for (std::size_t i = 0; i < n; ++i) {
        out[i] = callKernel<T>(context, in[i]);
    }
}

template <class T>
void arrayAndScalar(const LoopContext* context, const T* a, const T* b, T* out,
                    std::size_t n) noexcept {
    for (std::size_t i = 0; i < n; ++i) {
        out[i] = callKernel<T>(context, a[i], *b);
    }
}

template <class T>
void scalarAndArray(const LoopContext* context, const T* a, const T* b, T* out,
                    std::size_t n) noexcept {
    for (std::size_t i = 0; i < n; ++i) {
        out[i] = callKernel<T>(context, *a, b[i]);
    }
}

template <class T>
void arrayAndArray(const LoopContext* context, const T* a, const T* b, T* out,
                   std::size_t n) noexcept {
    for (std::size_t i = 0; i < n; ++i) {
        out[i] = callKernel<T>(context, a[i], b[i]);
    }
}

// A piece of work over [first, last) of some range, handed to the untyped sharing code. The
// pointer is called once per piece, not per element.
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

// The one-input loop over [0, count): serial up to the context's limit, else shared among the
// workers in the caller's task group context with the default grain.
void shareOneInput(const LoopContext* context, std::size_t count, RangeTask task);

// The two-input loops over [0, count) pieces of `elements` output elements in all: serial if the
// elements are within the context's limit, else shared with this grain in an isolated task
// group context that carries the calling thread's floating-point settings to the workers.
void shareTwoInputs(const LoopContext* context, std::size_t elements, std::size_t count,
                    std::size_t grain, RangeTask task);

}  // namespace Norvane::builtin::builtinreg::detail
