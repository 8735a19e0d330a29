// Each wrapper the selector gives is the member of the right signature: called under every
// convention against a native function of exactly that signature, it passes each input in its
// place and returns the native result in the alternative of its type. Two-input wrappers are
// checked for every output and a spread of input pairs: equal types (where a swap would go
// unseen by type alone), numbers against pointers, and both ends of the index range.
#include "WrapperCheck.hpp"

#include <boost/mp11/algorithm.hpp>
#include <boost/mp11/list.hpp>

namespace Norvane::builtin::testing {
namespace {

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
