// The thirteen one-input lifted entries, and the selector that finds them by table position.
#include <array>
#include <utility>

#include <builtin/calling/LiftKernels.hpp>
#include <builtin/calling/LiftedEntry.hpp>

namespace Norvane::builtin::builtinreg::detail {

namespace {

template <std::size_t... K>
constexpr std::array<TypedEntry, sizeof...(K)> oneInputEntries(std::index_sequence<K...>) {
    return {
        &liftedEntry<PointerKernel<ParameterAlternative<K>, false, ParameterAlternative<K>>>...};
}

constexpr auto entries = oneInputEntries(std::make_index_sequence<liftedTypeCount>());

// Positions out * 16 + in0 with out == in0 == k.
constexpr std::size_t diagonalStep = parameterTypeCount + 1;

}  // namespace

Parameter elementWiseInlineC(OrroFunctionDescriptor* const descriptor,
                             IOrroBuiltinEnvironment* const environment, bool& pending,
                             const ParameterList& arguments, const ParameterTypes* /*tag*/,
                             std::size_t out, std::size_t in0) {
    const std::size_t position = out * parameterTypeCount + in0;
    const std::size_t k = position / diagonalStep;
    if (position % diagonalStep != 0 || k >= entries.size()) {
        return Parameter();
    }
    return entries[k](descriptor, environment, pending, arguments);
}

TypedEntry getElementWiseEntry(const ParameterTypes* /*tag*/, std::size_t out, std::size_t in0) {
    const std::size_t position = out * parameterTypeCount + in0;
    const std::size_t k = position / diagonalStep;
    return position % diagonalStep == 0 && k < entries.size() ? entries[k] : nullptr;
}

}  // namespace Norvane::builtin::builtinreg::detail
