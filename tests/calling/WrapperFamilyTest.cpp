// Each wrapper the selector gives is the member of the right signature: called under every
// convention against a native function of exactly that signature, it passes each input in its
// place and returns the native result in the alternative of its type.
#include "WrapperCheck.hpp"

#include <boost/mp11/algorithm.hpp>

namespace Norvane::builtin::testing {
namespace {

using boost::mp11::mp_for_each;
using boost::mp11::mp_iota_c;

constexpr std::size_t outputIndexCount = noOutputIndex + 1;

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

}  // namespace
}  // namespace Norvane::builtin::testing
