// The thirteen two-input lifted entries, and the selector that finds them by table position.
#include <array>
#include <utility>

#include <builtin/calling/LiftKernels.hpp>
#include <builtin/calling/LiftedEntry.hpp>

namespace Norvane::builtin::builtinreg::detail {

namespace {

template <std::size_t... K>
constexpr std::array<TypedEntry, sizeof...(K)> twoInputEntries(std::index_sequence<K...>) {
    return {&liftedEntry<PointerKernel<ParameterAlternative<K>, false, ParameterAlternative<K>,
                                       ParameterAlternative<K>>>...};
}

constexpr auto entries = twoInputEntries(std::make_index_sequence<liftedTypeCount>());

// Positions out * 256 + in0 * 16 + in1 with out == in0 == in1 == k.
constexpr std::size_t diagonalStep =
    parameterTypeCount * parameterTypeCount + parameterTypeCount + 1;

}  // namespace

Parameter elementWiseInlineC(OrroFunctionDescriptor* const descriptor,
                             IOrroBuiltinEnvironment* const environment, bool& pending,
                             const ParameterList& arguments, const ParameterTypes* /*tag*/,
                             std::size_t out, std::size_t in0, std::size_t in1) {
    const std::size_t position = (out * parameterTypeCount + in0) * parameterTypeCount + in1;
    const std::size_t k = position / diagonalStep;
    if (position % diagonalStep != 0 || k >= entries.size()) {
        return Parameter();
    }
    return entries[k](descriptor, environment, pending, arguments);
}

TypedEntry getElementWiseEntry(const ParameterTypes* /*tag*/, std::size_t out, std::size_t in0,
                               std::size_t in1) {
    const std::size_t position = (out * parameterTypeCount + in0) * parameterTypeCount + in1;
    const std::size_t k = position / diagonalStep;
    return position % diagonalStep == 0 && k < entries.size() ? entries[k] : nullptr;
}

}  // namespace Norvane::builtin::builtinreg::detail
