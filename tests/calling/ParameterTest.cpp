// The alternatives of Parameter keep their stored numbers, and argument lists of up to eight
// stay in inline storage.
#include "SampleValues.hpp"

#include <gtest/gtest.h>

#include <complex>
#include <cstdint>

namespace Norvane::builtin::testing {
namespace {

TEST(Parameter, DefaultIsAlternativeZeroWithValueZero) {
  const Parameter parameter;
  EXPECT_EQ(parameter.which(), 0);
  EXPECT_EQ(boost::get<std::uint64_t>(parameter), 0u);
}

// Each value is constructed from its plain C++ type, as converters and wrappers do; a wrong
// number here means the order changed or a value lands in a neighbouring alternative.
TEST(Parameter, EachTypeLandsInItsStoredAlternative) {
  struct Case {
    int which;
    Parameter parameter;
    std::size_t indexOfType;
  };
  const Case cases[] = {
      {0, Parameter(std::uint64_t{7}), parameterIndexOf<std::uint64_t>},
      {0, Parameter(7ul), parameterIndexOf<unsigned long>},
      {1, Parameter(2.5), parameterIndexOf<double>},
      {2, Parameter(2.5f), parameterIndexOf<float>},
      {3, Parameter(true), parameterIndexOf<bool>},
      {4, Parameter(static_cast<signed char>(-1)), parameterIndexOf<signed char>},
      {5, Parameter(static_cast<short>(-1)), parameterIndexOf<short>},
      {6, Parameter(-1), parameterIndexOf<int>},
      {7, Parameter(std::int64_t{-1}), parameterIndexOf<std::int64_t>},
      {8, Parameter(static_cast<unsigned char>(1)), parameterIndexOf<unsigned char>},
      {9, Parameter(static_cast<unsigned short>(1)), parameterIndexOf<unsigned short>},
      {10, Parameter(1u), parameterIndexOf<unsigned int>},
      {11, Parameter(std::complex<double>(1, 2)), parameterIndexOf<std::complex<double>>},
      {12, Parameter(std::complex<float>(1, 2)), parameterIndexOf<std::complex<float>>},
      {13, Parameter(sample<kaArray_tag*>(0)), parameterIndexOf<kaArray_tag*>},
      {14, Parameter(sample<Norvane::String::String*>(0)),
       parameterIndexOf<Norvane::String::String*>},
      {15, Parameter(sample<Norvane::orro::OrroObject*>(0)),
       parameterIndexOf<Norvane::orro::OrroObject*>},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.which);
    EXPECT_EQ(c.parameter.which(), c.which);
    EXPECT_EQ(c.indexOfType, static_cast<std::size_t>(c.which));
  }
  EXPECT_EQ(parameterIndexOf<void>, noOutputIndex);
  EXPECT_EQ(noOutputIndex, 16u);
}

TEST(Parameter, ArgumentListsOfUpToEightStayInline) {
  struct Case {
    std::size_t count;
    bool inline_;
  };
  for (const Case c : {Case{0, true}, Case{8, true}, Case{9, false}}) {
    SCOPED_TRACE(c.count);
    ParameterList list;
    for (std::size_t i = 0; i < c.count; ++i) {
      list.push_back(Parameter(static_cast<int>(i)));
    }
    const auto* first = reinterpret_cast<const char*>(list.data());
    const auto* self = reinterpret_cast<const char*>(&list);
    EXPECT_EQ(first >= self && first < self + sizeof(list), c.inline_);
    EXPECT_EQ(list.size(), c.count);
  }
}

}  // namespace
}  // namespace Norvane::builtin::testing
