// LiftedEntry<Kernel>: the typed entry of a scalar kernel lifted over arrays, for one to four
// inputs of possibly different numeric types. The library's entries for kernels known only at
// run time and the entries that modules instantiate for kernels known at compile time are both
// this template; they differ only in their Kernel (LiftKernels.hpp). The steps of a call:
//
//   1. All arguments unboxed scalars: the kernel once, and an unboxed result.
//   2. Take over the references of the array arguments, then view each argument as elements of
//      its type (the last first). An array of another class, complexity or density throws
//      std::bad_cast; a Parameter of another alternative throws std::logic_error.
//   3. Plan the walk (LiftPlan.hpp); shapes that do not broadcast throw std::invalid_argument.
//   4. Reuse as the output the first input of the output's type that nobody else holds, whose
//      data is not shared and whose dimensions are the output's; else create the output.
//   5. Put a ParallelEnvironment in front of the caller's environment, and run the kernel over
//      the output, on worker threads above 1024 elements if the variant allows (LiftSharing.hpp).
//      An exception that escapes a kernel becomes the call's error, once, on any thread.
//   6. Finish: drop the output if a kernel reported an exception; the ParallelEnvironment hands
//      the reports over as it goes out of scope, the views release their references after it.
//
// The result of an array call is always alternative 13, also for a 1-by-1 output.
//
// A Kernel provides:
//   Result, Inputs (std::tuple of the input types), distinctWarnings (pass each warning text of a
//   call on once)
//   static Parameter scalar(descriptor, environment, pending, arguments)   step 1
//   static void run(const LoopContext*, unsigned varying, Result* out, std::size_t n,
//                   const Inputs*... in)
// where `run` computes n output elements, input j running along from in_j if bit j of `varying`
// is set and staying on *in_j otherwise. `out` may be one of the inputs exactly (in place), never
// a partial overlap.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <tuple>
#include <type_traits>
#include <typeinfo>
#include <utility>

#include <boost/variant/get.hpp>

#include <builtin/calling/DistinctWarnings.hpp>
#include <builtin/calling/ElementWise.hpp>
#include <builtin/calling/LiftArrays.hpp>
#include <builtin/calling/LiftPlan.hpp>
#include <builtin/calling/LiftSharing.hpp>
#include <builtin/calling/ParallelEnvironment.hpp>
#include <builtin/calling/ParameterChecks.hpp>

namespace Norvane::builtin::builtinreg::detail {

namespace lift {

// An argument as a run of elements: its dimensions ({1, 1} for an unboxed scalar) and data.
struct InputView {
    std::span<const std::size_t> dims;
    const void* data = nullptr;
};

// An unboxed scalar is viewed in `value`, a copy that must outlive the view.
template <class A>
InputView viewInput(const Parameter& argument, const ka::ArrayPtr& array, A& value) {
    if (holdsUnboxed<A>(argument)) {
        value = unboxed<A>(argument);
        return {getScalarDims(), &value};
    }
    if (argument.which() != static_cast<int>(parameterIndexOf<kaArray_tag*>)) {
        assertOrThrowWrongElementWiseArg(typeid(A), types::detail::parameterTypeInfo(argument),
                                         false);
    }
    if (!array || !fitsElementClass(array.get(), elementClassOf<A>())) {
        throw std::bad_cast();
    }
    return {matrix::dimensions(array.get()), matrix::data(array.get())};
}

// Where the kernels of a call report: the ParallelEnvironment itself, or a DistinctWarnings in
// front of it, made only for the kernels that want one.
template <bool Distinct>
struct ReportsTo {
    explicit ReportsTo(ParallelEnvironment* parallel) : parallel_(parallel) {}
    IOrroBuiltinEnvironment* environment() { return parallel_; }

private:
    ParallelEnvironment* parallel_;
};
template <>
struct ReportsTo<true> {
    explicit ReportsTo(ParallelEnvironment* parallel) : distinct_(parallel) {}
    IOrroBuiltinEnvironment* environment() { return &distinct_; }

private:
    DistinctWarnings distinct_;
};

template <class Kernel, class R, class... A>
struct Entry {
    static constexpr std::size_t N = sizeof...(A);
    static_assert(N >= 1 && N <= maxLiftedInputs, "a kernel is lifted over one to four inputs");
    template <std::size_t I>
    using InputType = std::tuple_element_t<I, std::tuple<A...>>;

    // The loop body over a range of output elements, as the workers run it.
    struct Body {
        const LoopContext* context;
        const LiftPlan* plan;
        std::tuple<const A*...> in;
        R* out;

        void operator()(std::size_t first, std::size_t last) const noexcept {
            try {
                runRange(first, last, std::index_sequence_for<A...>());
            } catch (...) {
                reportCaughtException(context);
            }
        }

        template <std::size_t... I>
        void runRange(std::size_t first, std::size_t last, std::index_sequence<I...>) const {
            RunCursor cursor(*plan, first);
            while (first < last) {
                const std::size_t n = std::min(cursor.runLength(), last - first);
                Kernel::run(context, plan->varying, out + first, n,
                            (std::get<I>(in) + cursor.offset(I))...);
                first += n;
                cursor.advance(n);
            }
        }
    };

    template <std::size_t... I>
    static Parameter call(OrroFunctionDescriptor* descriptor, IOrroBuiltinEnvironment* environment,
                          bool& pending, const ParameterList& arguments,
                          std::index_sequence<I...>) {
        if ((holdsUnboxed<A>(arguments[I]) && ...)) {
            return Kernel::scalar(descriptor, environment, pending, arguments);
        }
        // Every reference is claimed before any view is made, so that a refusal gives back all.
        std::array<ka::ArrayPtr, N> arrays{claimArray(arguments[I])...};
        std::array<InputView, N> views;
        std::tuple<A...> scalars;
        ((views[N - 1 - I] = viewInput<InputType<N - 1 - I>>(
              arguments[N - 1 - I], arrays[N - 1 - I], std::get<N - 1 - I>(scalars))),
         ...);
        const std::array<std::span<const std::size_t>, N> dims{views[I].dims...};
        const LiftPlan plan = planLift(dims);

        ka::ArrayPtr output;
        ((std::is_same_v<A, R> && !output && arrays[I] && canBecomeOutput(arrays[I].get(), plan)
              ? (void)(output = std::move(arrays[I]))
              : (void)0),
         ...);
        if (!output) {
            output = createOutput(plan, elementClassOf<R>());
        }

        bool failed = false;
        ParallelEnvironment parallel(environment, &pending);
        pending = false;
        ReportsTo<Kernel::distinctWarnings> reports(&parallel);
        const LoopContext context{serialLimitOf(descriptor), reports.environment(), descriptor,
                                  &failed};
        if (plan.outCount != 0) {
            const Body body{&context,
                            &plan,
                            {static_cast<const A*>(views[I].data)...},
                            static_cast<R*>(matrix::data(output.get()))};
            shareRange(&context, plan, rangeTask(body));
        }
        return finishLift(std::move(output), failed, parallel, pending);
    }
};

template <class Kernel, class Inputs>
struct EntryOf;
template <class Kernel, class... A>
struct EntryOf<Kernel, std::tuple<A...>> {
    using type = Entry<Kernel, typename Kernel::Result, A...>;
};

}  // namespace lift

template <class Kernel>
Parameter liftedEntry(OrroFunctionDescriptor* descriptor, IOrroBuiltinEnvironment* environment,
                      bool& pending, const ParameterList& arguments) {
    using E = typename lift::EntryOf<Kernel, typename Kernel::Inputs>::type;
    return E::call(descriptor, environment, pending, arguments, std::make_index_sequence<E::N>());
}

}  // namespace Norvane::builtin::builtinreg::detail
