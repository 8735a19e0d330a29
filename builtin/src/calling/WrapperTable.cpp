// The three selectors of the wrapper family. The position is the type indices read in base 16
// with the output most significant; it is split back into a row (the output) and a place in
// the row, so that an input index above 15 lands on a neighbouring position as it would in one
// flat table.
#include "WrapperRow.hpp"

#include <utility>

namespace Norvane::builtin::builtinreg::detail {

extern template const WrapperRow& wrapperRowFor<0>();
extern template const WrapperRow& wrapperRowFor<1>();
extern template const WrapperRow& wrapperRowFor<2>();
extern template const WrapperRow& wrapperRowFor<3>();
extern template const WrapperRow& wrapperRowFor<4>();
extern template const WrapperRow& wrapperRowFor<5>();
extern template const WrapperRow& wrapperRowFor<6>();
extern template const WrapperRow& wrapperRowFor<7>();
extern template const WrapperRow& wrapperRowFor<8>();
extern template const WrapperRow& wrapperRowFor<9>();
extern template const WrapperRow& wrapperRowFor<10>();
extern template const WrapperRow& wrapperRowFor<11>();
extern template const WrapperRow& wrapperRowFor<12>();
extern template const WrapperRow& wrapperRowFor<13>();
extern template const WrapperRow& wrapperRowFor<14>();
extern template const WrapperRow& wrapperRowFor<15>();
extern template const WrapperRow& wrapperRowFor<16>();

namespace {

using RowGetter = const WrapperRow& (*)();

template <std::size_t... Out>
constexpr std::array<RowGetter, sizeof...(Out)> rowGetters(std::index_sequence<Out...>) {
    return {&wrapperRowFor<Out>...};
}

constexpr auto rows = rowGetters(std::make_index_sequence<outputIndexCount>());

constexpr std::size_t base = parameterTypeCount;

Wrapper at(std::size_t out, std::size_t placeInRow) {
    return rows[out]()[placeInRow];
}

}  // namespace

Wrapper getExportedInlineCWrapperFcn(const ParameterTypes* /*tag*/, std::size_t out) {
    if (out >= outputIndexCount) {
        return nullptr;
    }
    return at(out, 0);
}

Wrapper getExportedInlineCWrapperFcn(const ParameterTypes* /*tag*/, std::size_t out,
                                     std::size_t in0) {
    const std::size_t position = out * base + in0;
    if (position >= outputIndexCount * base) {
        return nullptr;
    }
    return at(position / base, oneInputOffset + position % base);
}

Wrapper getExportedInlineCWrapperFcn(const ParameterTypes* /*tag*/, std::size_t out,
                                     std::size_t in0, std::size_t in1) {
    const std::size_t position = (out * base + in0) * base + in1;
    if (position >= outputIndexCount * base * base) {
        return nullptr;
    }
    return at(position / (base * base), twoInputOffset + position % (base * base));
}

}  // namespace Norvane::builtin::builtinreg::detail
