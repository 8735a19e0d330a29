// The alternatives of Parameter keep their stored numbers, and argument lists of up to eight
// stay in inline storage.
#include "SampleValues.hpp"

#include <boost/mp11/algorithm.hpp>
#include <boost/mp11/list.hpp>
#include <gtest/gtest.h>

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

TEST(Parameter, ArgumentListsOfUpToEightStayInline) {
  for (const std::size_t count : {0u, 8u, 9u}) {
    SCOPED_TRACE(count);
    ParameterList list(count, Parameter(1));
    const auto* first = reinterpret_cast<const char*>(list.data());
    const auto* self = reinterpret_cast<const char*>(&list);
    EXPECT_EQ(first >= self && first < self + sizeof(list), count <= 8);
  }
}

}  // namespace
}  // namespace Norvane::builtin::testing
