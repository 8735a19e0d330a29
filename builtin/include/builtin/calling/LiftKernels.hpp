// The two kinds of kernel that LiftedEntry lifts over arrays.
//
//   PointerKernel  a native function known only at run time, through the descriptor's
//                  nativeEntry, called by its calling convention. The convention is read once for
//                  each run of the loop; the call itself is indirect for every element.
//   InlineKernel   a function known at compile time as a stateless callable type (a lambda, a
//                  functor, a function named as a template argument). Its inner loops call it
//                  directly, so the compiler can inline and vectorise them: one loop for each way
//                  the inputs run, chosen once per run. A module may add a block kernel that
//                  computes a whole run at once (out[i] = f(a[i], b[i]) for n elements); it is
//                  then called for every run, inputs that stay on one element being spread over a
//                  small buffer first.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <tuple>
#include <type_traits>
#include <utility>

#include <boost/variant/get.hpp>

#include <builtin/calling/CallingConvention.hpp>
#include <builtin/calling/InlineCWrappers.hpp>
#include <builtin/calling/LiftArrays.hpp>
#include <builtin/calling/LiftSharing.hpp>
#include <builtin/calling/NativeCall.hpp>
#include <builtin/calling/ReportingScope.hpp>

namespace Norvane::builtin::builtinreg::detail {

namespace lift {

// Calls fn.template operator()<M>() for the M equal to `mask`, M below 2^N.
template <std::size_t N, class Fn>
void withMask(unsigned mask, Fn&& fn) {
    [&]<unsigned... M>(std::integer_sequence<unsigned, M...>) {
        (void)((mask == M ? (fn.template operator()<M>(), true) : false) || ...);
    }
    (std::make_integer_sequence<unsigned, (1u << N)>());
}

// One input of an inner loop: running along, or one value held for the whole run.
template <class A, bool Runs>
struct Lane {
    const A* in;
    A operator[](std::size_t i) const { return in[i]; }
};
template <class A>
struct Lane<A, false> {
    A value;
    explicit Lane(const A* in) : value(*in) {}
    A operator[](std::size_t) const { return value; }
};

template <unsigned Mask, std::size_t J>
inline constexpr bool runs = ((Mask >> J) & 1u) != 0;

inline bool hasAvx2() noexcept {
    static const bool has = __builtin_cpu_supports("avx2");
    return has;
}

}  // namespace lift

template <class R, bool Distinct, class... A>
struct PointerKernel {
    using Result = R;
    using Inputs = std::tuple<A...>;
    static constexpr bool distinctWarnings = Distinct;

    static Parameter scalar(OrroFunctionDescriptor* descriptor,
                            IOrroBuiltinEnvironment* environment, bool& pending,
                            const ParameterList& arguments) {
        if constexpr (sizeof...(A) <= 2 &&
                      (std::is_same_v<typename Lifted<A>::Unboxed, A> && ...)) {
            return getExportedInlineCWrapperFcn(nullptr, parameterIndexOf<R>,
                                                parameterIndexOf<A>...)(descriptor, environment,
                                                                        pending, arguments);
        } else {
            return scalarOf(descriptor, environment, pending, arguments,
                            std::index_sequence_for<A...>());
        }
    }

    // Without a native function, or under a convention it cannot call, the run is zeros.
    static void run(const LoopContext* context, unsigned varying, R* out, std::size_t n,
                    const A*... in) {
        using enum JIT_CALLING_CONVENTION;
        OrroFunctionDescriptor* const descriptor = context->descriptor;
        const NativeEntry entry = descriptor->nativeEntry;
        if (entry != nullptr && descriptor->callingConvention == Direct) {
            const auto fn = reinterpret_cast<orro::NativeFunction<Direct, R, A...>>(entry);
            lift::withMask<N>(varying, [&]<unsigned M>() {
                loop<M>([fn](A... a) { return fn(a...); }, out, n, std::index_sequence_for<A...>(),
                        in...);
            });
        } else if (entry != nullptr && descriptor->callingConvention == DirectWithDescriptor) {
            const auto fn =
                reinterpret_cast<orro::NativeFunction<DirectWithDescriptor, R, A...>>(entry);
            lift::withMask<N>(varying, [&]<unsigned M>() {
                loop<M>([fn, descriptor](A... a) { return fn(a..., descriptor); }, out, n,
                        std::index_sequence_for<A...>(), in...);
            });
        } else if (entry != nullptr && descriptor->callingConvention == CanThrow) {
            const auto fn = reinterpret_cast<orro::NativeFunction<CanThrow, R, A...>>(entry);
            IOrroBuiltinEnvironment* const environment = context->environment;
            bool failed = false;
            lift::withMask<N>(varying, [&]<unsigned M>() {
                loop<M>(
                    [&](A... a) {
                        R r{};
                        failed |= fn(a..., &r, environment, descriptor);
                        return r;
                    },
                    out, n, std::index_sequence_for<A...>(), in...);
            });
            if (failed) {
                markFailed(context);
            }
        } else {
            std::fill_n(out, n, R{});
        }
    }

private:
    static constexpr std::size_t N = sizeof...(A);

    // One way of running, the call indirect for each element. A function of its own, so that
    // everything the loop keeps across the call fits in the registers that the call preserves;
    // inlined into the loop body it would be reloaded from the stack for every element. An input
    // that stays is read from its place for each element, an L1 hit, for the same reason.
    template <unsigned M, class Call, std::size_t... I>
    [[gnu::noinline]] static void loop(Call call, R* out, std::size_t n, std::index_sequence<I...>,
                                       const A*... in) {
        for (std::size_t i = 0; i < n; ++i) {
            out[i] = call(in[lift::runs<M, I> ? i : 0]...);
        }
    }

    // Three or more unboxed inputs, or characters: no wrapper of the family takes them; called
    // as a wrapper calls them.
    template <std::size_t... I>
    static Parameter scalarOf(OrroFunctionDescriptor* descriptor,
                              IOrroBuiltinEnvironment* environment, bool& pending,
                              const ParameterList& arguments, std::index_sequence<I...>) {
        const NativeCall call = prepareNativeCall(descriptor, pending);
        if (call.entry == nullptr) {
            return Parameter();
        }
        return callNative<R, A...>(descriptor, environment, pending, call,
                                   unboxed<A>(arguments[I])...);
    }
};

// F: the kernel's callable type, default-constructible; its form is Convention:
//   Direct                R F{}(A...)
//   DirectWithDescriptor  R F{}(A..., OrroFunctionDescriptor*)
//   CanThrow              bool F{}(A..., R*, IOrroBuiltinEnvironment*, OrroFunctionDescriptor*)
// Reports: the kernel may call the one-call reports of ReportingScope.hpp (a Direct kernel
// that warns), so every call of it runs inside a scope.
// B: the block kernel, void B{}(const A*..., R* out, std::size_t n), or void for none.
template <class F, JIT_CALLING_CONVENTION Convention, bool Reports, class B, class R, class... A>
struct InlineKernel {
    using Result = R;
    using Inputs = std::tuple<A...>;
    static constexpr bool distinctWarnings = true;
    static constexpr std::size_t N = sizeof...(A);

    static Parameter scalar(OrroFunctionDescriptor* descriptor,
                            IOrroBuiltinEnvironment* environment, bool& pending,
                            const ParameterList& arguments) {
        pending = false;
        return scalarOf(descriptor, environment, pending, arguments,
                        std::index_sequence_for<A...>());
    }

    static void run(const LoopContext* context, unsigned varying, R* out, std::size_t n,
                    const A*... in) {
        if constexpr (Reports) {
            const ReportingScope scope(context->environment);
            dispatch(context, varying, out, n, in...);
            if (scope.reported()) {
                markFailed(context);
            }
        } else {
            dispatch(context, varying, out, n, in...);
        }
    }

private:
    template <std::size_t... I>
    static Parameter scalarOf(OrroFunctionDescriptor* descriptor,
                              IOrroBuiltinEnvironment* environment, bool& pending,
                              const ParameterList& arguments, std::index_sequence<I...>) {
        if constexpr (Convention == JIT_CALLING_CONVENTION::CanThrow) {
            R out{};
            pending = F{}(unboxed<A>(arguments[I])..., &out, environment, descriptor);
            return Parameter(out);
        } else if constexpr (Reports) {
            const ReportingScope scope(environment);
            try {
                const R out = F{}(unboxed<A>(arguments[I])...);
                pending = scope.reported();
                return Parameter(out);
            } catch (...) {
                pending = reportCurrentException(environment);
                return Parameter();
            }
        } else if constexpr (Convention == JIT_CALLING_CONVENTION::DirectWithDescriptor) {
            return Parameter(F{}(unboxed<A>(arguments[I])..., descriptor));
        } else {
            return Parameter(F{}(unboxed<A>(arguments[I])...));
        }
    }

    static void dispatch(const LoopContext* context, unsigned varying, R* out, std::size_t n,
                         const A*... in) {
        lift::withMask<N>(varying, [&]<unsigned M>() {
            if constexpr (!std::is_void_v<B>) {
                blocks<M>(out, n, std::index_sequence_for<A...>(), in...);
            } else if (lift::hasAvx2()) {
                loopAvx2<M>(context, out, n, std::index_sequence_for<A...>(), in...);
            } else {
                loopDefault<M>(context, out, n, std::index_sequence_for<A...>(), in...);
            }
        });
    }

    // The inner loop, compiled twice: for any x86-64, and for AVX2, which a CPU that has it
    // runs, twice the elements per instruction where the module is built for any x86-64. Chosen
    // by hand: the compiler's own clones would take the loop for one that never throws, and a
    // kernel may throw.
    template <unsigned M, std::size_t... I>
    static void loopDefault(const LoopContext* context, R* out, std::size_t n,
                            std::index_sequence<I...> inputs, const A*... in) {
        loop<M>(context, out, n, inputs, in...);
    }
    template <unsigned M, std::size_t... I>
    [[gnu::target("avx2")]] static void loopAvx2(const LoopContext* context, R* out, std::size_t n,
                                                 std::index_sequence<I...> inputs, const A*... in) {
        loop<M>(context, out, n, inputs, in...);
    }

    // One way of running. `out` may be an input exactly, never a partial overlap, so no
    // iteration depends on another: ivdep lets the compiler vectorise without checking for
    // overlap at run time.
    template <unsigned M, std::size_t... I>
    [[gnu::always_inline]] static void loop(const LoopContext* context, R* out, std::size_t n,
                                            std::index_sequence<I...>, const A*... in) {
        const std::tuple<lift::Lane<A, lift::runs<M, I>>...> lanes{
            lift::Lane<A, lift::runs<M, I>>{in}...};
        if constexpr (Convention == JIT_CALLING_CONVENTION::CanThrow) {
            bool failed = false;
            for (std::size_t i = 0; i < n; ++i) {
                R r{};
                failed |=
                    F{}(std::get<I>(lanes)[i]..., &r, context->environment, context->descriptor);
                out[i] = r;
            }
            if (failed) {
                markFailed(context);
            }
        } else if constexpr (Convention == JIT_CALLING_CONVENTION::DirectWithDescriptor) {
            OrroFunctionDescriptor* const descriptor = context->descriptor;
#pragma GCC ivdep
            for (std::size_t i = 0; i < n; ++i) {
                out[i] = F{}(std::get<I>(lanes)[i]..., descriptor);
            }
        } else {
#pragma GCC ivdep
            for (std::size_t i = 0; i < n; ++i) {
                out[i] = F{}(std::get<I>(lanes)[i]...);
            }
        }
    }

    // The block kernel over the run; an input that stays on one element is spread over a buffer
    // of `chunk` copies, and the run is done chunk by chunk.
    template <unsigned M, std::size_t... I>
    static void blocks(R* out, std::size_t n, std::index_sequence<I...>, const A*... in) {
        if constexpr (((lift::runs<M, I>)&&...)) {
            B{}(in..., out, n);
        } else {
            constexpr std::size_t chunk = 256;
            std::tuple<std::array<A, lift::runs<M, I> ? 0 : chunk>...> spread;
            (fillIfHeld<M, I>(std::get<I>(spread), in, std::min(chunk, n)), ...);
            for (std::size_t done = 0; done < n; done += chunk) {
                B{}(pick<M, I>(std::get<I>(spread), in, done)..., out + done,
                    std::min(chunk, n - done));
            }
        }
    }

    template <unsigned M, std::size_t I, class Buffer, class T>
    static void fillIfHeld(Buffer& buffer, const T* in, std::size_t count) {
        if constexpr (!lift::runs<M, I>) {
            std::fill_n(buffer.data(), count, *in);
        }
    }

    template <unsigned M, std::size_t I, class Buffer, class T>
    static const T* pick(const Buffer& buffer, const T* in, std::size_t done) {
        if constexpr (lift::runs<M, I>) {
            return in + done;
        } else {
            return buffer.data();
        }
    }
};

}  // namespace Norvane::builtin::builtinreg::detail
