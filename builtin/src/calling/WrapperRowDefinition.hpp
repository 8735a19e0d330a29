// Builds one row of the wrapper family at compile time. Included only by the seventeen
// generated units, each of which instantiates wrapperRowFor for its own output index.
#pragma once

#include "WrapperRow.hpp"
#include "WrapperTemplates.hpp"

#include <type_traits>
#include <utility>

namespace Norvane::builtin::builtinreg::detail {

// The native result type of output index Out: void for "no output".
template <std::size_t Out>
using OutputType =
    typename std::conditional_t<Out == noOutputIndex, std::type_identity<void>,
                                boost::mpl::at_c<ParameterTypes, static_cast<long>(Out)>>::type;

template <class R, std::size_t... In0>
constexpr std::array<Wrapper, sizeof...(In0)> oneInputWrappers(std::index_sequence<In0...>) {
    return {&inlineCWrapper<R, ParameterAlternative<In0>>...};
}

// Position p within the block stands for in0 = p / 16, in1 = p % 16.
template <class R, std::size_t... P>
constexpr std::array<Wrapper, sizeof...(P)> twoInputWrappers(std::index_sequence<P...>) {
    return {&inlineCWrapper<R, ParameterAlternative<P / parameterTypeCount>,
                            ParameterAlternative<P % parameterTypeCount>>...};
}

template <class R>
constexpr WrapperRow makeWrapperRow() {
    constexpr auto one = oneInputWrappers<R>(std::make_index_sequence<parameterTypeCount>());
    constexpr auto two =
        twoInputWrappers<R>(std::make_index_sequence<parameterTypeCount * parameterTypeCount>());
    WrapperRow row{};
    row[0] = &inlineCWrapper<R>;
    for (std::size_t i = 0; i < one.size(); ++i) {
        row[oneInputOffset + i] = one[i];
    }
    for (std::size_t i = 0; i < two.size(); ++i) {
        row[twoInputOffset + i] = two[i];
    }
    return row;
}

template <std::size_t Out>
const WrapperRow& wrapperRowFor() {
    static constexpr WrapperRow row = makeWrapperRow<OutputType<Out>>();
    return row;
}

}  // namespace Norvane::builtin::builtinreg::detail
