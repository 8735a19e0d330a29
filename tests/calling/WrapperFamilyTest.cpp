// The alternatives of Parameter keep their stored numbers, and each wrapper the selector gives
// is the member of the right signature: called under every convention against a native function
// of exactly that signature, it passes each input in its place and returns the native result in
// the alternative of its type. Two-input wrappers are
// checked for every output and a spread of input pairs: equal types (where a swap would go
// unseen by type alone), numbers against pointers, and both ends of the index range.
#include "WrapperCheck.hpp"

#include <boost/mp11/algorithm.hpp>
#include <boost/mp11/list.hpp>

#include <complex>
#include <cstdint>

namespace Norvane::builtin::testing {
namespace {

// The plain C++ types in their stored order, as converters and wrappers construct them; a wrong
// number means the order changed or a value lands in a neighbouring alternative.
using StoredOrder =
    boost::mp11::mp_list<std::uint64_t, double, float, bool, signed char, short, int, std::int64_t,
                         unsigned char, unsigned short, unsigned int, std::complex<double>,
                         std::complex<float>, kaArray_tag*, Norvane::String::String*,
                         Norvane::orro::OrroObject*>;

TEST(Parameter, EachTypeLandsInItsStoredAlternative) {
  std::size_t expected = 0;
  boost::mp11::mp_for_each<StoredOrder>([&](auto value) {
    using T = decltype(value);
    SCOPED_TRACE(expected);
    EXPECT_EQ(static_cast<std::size_t>(Parameter(sample<T>(0)).which()), expected);
    EXPECT_EQ(parameterIndexOf<T>, expected);
    ++expected;
  });
  EXPECT_EQ(Parameter(7ul).which(), 0);
  EXPECT_EQ(parameterIndexOf<void>, noOutputIndex);
  EXPECT_EQ(noOutputIndex, 16u);
  EXPECT_EQ(Parameter().which(), 0);
  EXPECT_EQ(boost::get<std::uint64_t>(Parameter()), 0u);
}

using boost::mp11::mp_for_each;
using boost::mp11::mp_iota_c;
using boost::mp11::mp_list;

constexpr std::size_t outputIndexCount = noOutputIndex + 1;

template <std::size_t In0, std::size_t In1>
using Pair = mp_list<ParameterAlternative<In0>, ParameterAlternative<In1>>;
using InputPairs = mp_list<Pair<1, 1>, Pair<0, 15>, Pair<15, 0>, Pair<3, 3>, Pair<2, 1>, Pair<11, 12>,
                           Pair<13, 9>, Pair<4, 7>, Pair<14, 10>, Pair<5, 8>, Pair<6, 13>>;

template <class R, class A0, class A1>
void checkPair(mp_list<A0, A1>) {
  checkWrapperUnderAllConventions<R, A0, A1>();
}

TEST(WrapperFamily, WrappersWithoutInputsServeEveryOutput) {
  mp_for_each<mp_iota_c<outputIndexCount>>(
      [](auto out) { checkWrapperUnderAllConventions<OutputOf<out>>(); });
}

TEST(WrapperFamily, WrappersWithOneInputServeEveryOutputAndInput) {
  mp_for_each<mp_iota_c<outputIndexCount>>([](auto out) {
    using R = OutputOf<decltype(out)::value>;
    mp_for_each<mp_iota_c<parameterTypeCount>>([](auto in0) {
      checkWrapperUnderAllConventions<R, ParameterAlternative<decltype(in0)::value>>();
    });
  });
}

TEST(WrapperFamily, WrappersWithTwoInputsServeEveryOutputAndASpreadOfInputs) {
  mp_for_each<mp_iota_c<outputIndexCount>>([](auto out) {
    using R = OutputOf<decltype(out)::value>;
    mp_for_each<InputPairs>([](auto pair) { checkPair<R>(pair); });
  });
}

}  // namespace
}  // namespace Norvane::builtin::testing
