// Several outputs: a native function that returns a std::tuple or a std::pair of declarable
// results.
//
//   std::pair<double, double> minmax(Array<double> x);
//   module.builtin("minmax").def(&minmax, pure);
//
// A call that asks for one output or none gets the first, through the variants as usual (the
// engine sees those too). A call that asks for more reaches the builtin's default implementation,
// since a variant has one output at most: the declaration makes that one, which takes the call
// with the first declared function of several outputs that accepts the arguments (by the same
// rule as every call) and makes as many outputs as the call asks for. It hands the calls it cannot
// take to the builtin's own fallback, if it has one; asking for more outputs than the function
// gives is an error that says how many it gives.
#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/get.hpp>

#include <builtin/calling/ParameterConversion.hpp>
#include <builtin/config.hpp>
#include <builtin/declare/Callables.hpp>
#include <builtin/declare/Parameters.hpp>
#include <builtin/declare/Signature.hpp>
#include <builtin/invoke/BuiltinFcn.hpp>

namespace Norvane::builtin::declare {

namespace detail {

template <class T>
struct IsTuple : std::false_type {};
template <class... R>
struct IsTuple<std::tuple<R...>> : std::true_type {};
template <class A, class B>
struct IsTuple<std::pair<A, B>> : std::true_type {};
template <class T>
inline constexpr bool isTuple = IsTuple<T>::value;

template <class Tuple>
constexpr bool allDeclarableResults = []<std::size_t... K>(std::index_sequence<K...>) {
    return (isDeclarableResult<std::remove_cvref_t<std::tuple_element_t<K, Tuple>>>() && ...) &&
           (!std::is_void_v<std::tuple_element_t<K, Tuple>> && ...);
}
(std::make_index_sequence<std::tuple_size_v<Tuple>>());

// One result as a new array with one reference.
template <class T>
kaArray_tag* toArray(T&& value) {
    using V = std::remove_cvref_t<T>;
    if constexpr (std::is_same_v<V, kaArray_tag*>) {
        return value;
    } else {
        const Parameter boxed = ParameterTraits<V>::toParameter(std::forward<T>(value));
        return boost::apply_visitor(
            [](auto held) -> kaArray_tag* {
                if constexpr (std::is_same_v<decltype(held), kaArray_tag*>) {
                    return held;
                } else {
                    kaArray_tag* array = nullptr;
                    builtinreg::detail::parameterConversionImpl(&array, held);
                    return array;
                }
            },
            boxed);
    }
}

// A result that goes nowhere: a raw array's reference is given back.
template <class T>
void drop(T& value) {
    if constexpr (std::is_same_v<std::remove_cvref_t<T>, kaArray_tag*>) {
        matrix::releaseReference(value);
    }
}

}  // namespace detail

// The first of several results is what a call of one output gets.
template <class Tuple>
requires detail::isTuple<Tuple> && detail::allDeclarableResults<Tuple>
struct ParameterTraits<Tuple> {
    using First = std::remove_cvref_t<std::tuple_element_t<0, Tuple>>;
    static Parameter toParameter(Tuple value) {
        std::apply([](auto&, auto&... rest) { (detail::drop(rest), ...); }, value);
        return ParameterTraits<First>::toParameter(std::move(std::get<0>(value)));
    }
};

// The entry of the calls that ask for several outputs: converts the arguments, calls the
// function, and puts its first nlhs results into plhs.
using MultiEntry = void (*)(OrroFunctionDescriptor* descriptor, const ParameterList& arguments,
                            int nlhs, kaArray_tag** plhs);

// The declared functions of several outputs of one builtin, and its own fallback.
class BUILTIN_API MultiOutputs {
public:
    // The variants of one function, as its declaration made them, and its entry.
    void add(const std::vector<BuiltinVariant>& variants, MultiEntry entry);
    bool empty() const { return candidates_.empty(); }

    // The default variant of a builtin that has these functions: it serves calls of two outputs
    // or more, and hands the rest to `fallback`, the builtin's own default variant (which may
    // have no entry). The variant refers to this object, which must outlive it.
    BuiltinVariant defaultVariant(BuiltinVariant fallback, const std::string& name);

    // Serves a call of nlhs outputs. Throws NoVariantTakesCall where neither a function of
    // several outputs nor the fallback takes it.
    void call(int nlhs, kaArray_tag** plhs, int nrhs, kaArray_tag** prhs) const;

private:
    struct Candidate {
        BuiltinVariant variant;
        MultiEntry entry;
    };
    bool callSeveral(int nlhs, kaArray_tag** plhs, int nrhs, kaArray_tag** prhs) const;

    std::vector<Candidate> candidates_;  // in the order of the variants
    BuiltinVariant fallback_;
};

namespace detail {

// Fn: the function as declared, a pointer or a callable type, which this calls directly (a
// pointer through the developer function of the variant).
template <class Fn, class Output, class Inputs = typename Signature<Fn>::Inputs>
struct MultiOutputEntry;

template <class Fn, class Output, class... Inputs>
struct MultiOutputEntry<Fn, Output, TypeList<Inputs...>> {
    static constexpr std::size_t count = std::tuple_size_v<Output>;

    static void call(OrroFunctionDescriptor* descriptor, const ParameterList& arguments, int nlhs,
                     kaArray_tag** plhs) {
        Output results = invoke(descriptor, arguments, nlhs, std::index_sequence_for<Inputs...>());
        hand(results, nlhs, plhs, std::make_index_sequence<count>());
    }

private:
    // The arguments are taken over before anything can fail, so that their references go back.
    template <std::size_t... I>
    static Output invoke(OrroFunctionDescriptor* descriptor, const ParameterList& arguments,
                         int nlhs, std::index_sequence<I...>) {
        static_assert(Signature<Fn>::convention != JIT_CALLING_CONVENTION::CanThrow,
                      "several outputs come from a function that returns them; report with "
                      "warn() and by throwing");
        const auto fn = Callee<Fn>::of(descriptor);
        CallHolders holders;
        std::tuple<Inputs...> values{ParameterTraits<Inputs>::from(arguments[I], holders)...};
        if (nlhs > static_cast<int>(count)) {
            throw std::invalid_argument(enclosingVariant(descriptor).keldorFunctionName +
                                        " gives at most " + std::to_string(count) + " outputs");
        }
        (handOver<Inputs>(std::get<I>(values)), ...);
        if constexpr (Signature<Fn>::convention == JIT_CALLING_CONVENTION::DirectWithDescriptor) {
            return fn(std::get<I>(values)..., descriptor);
        } else {
            return fn(std::get<I>(values)...);
        }
    }

    // The first nlhs results become arrays, all or none; the rest are dropped.
    template <std::size_t... K>
    static void hand(Output& results, int nlhs, kaArray_tag** plhs, std::index_sequence<K...>) {
        kaArray_tag* made[count] = {};
        try {
            ((static_cast<int>(K) < nlhs
                  ? (void)(made[K] = toArray(std::move(std::get<K>(results))))
                  : drop(std::get<K>(results))),
             ...);
        } catch (...) {
            for (kaArray_tag* array : made) matrix::releaseReference(array);
            throw;
        }
        for (std::size_t k = 0; k < count && static_cast<int>(k) < nlhs; ++k) plhs[k] = made[k];
    }
};

}  // namespace detail

}  // namespace Norvane::builtin::declare
