// The lifted entries by road: selection, views, reuse, broadcasting (fast and general paths
// against a plain reference loop), empty outputs, and the conventions inside the loop.
#include <oneapi/tbb/global_control.h>

#include <cstdint>
#include <random>
#include <utility>

#include "ElementWiseSupport.hpp"

namespace elementwisetest {
namespace {

using builtinreg::detail::elementWiseInlineC;
using enum JIT_CALLING_CONVENTION;
using ElementWise = LiftedCallTest;
using Shapes = std::pair<ka::Dims, ka::Dims>;

// Exact in doubles for the small whole numbers used here, and tells the inputs apart.
double combine(double a, double b) {
  threads.note();
  return a * 1000 + b;
}

TEST_F(ElementWise, OnlyDiagonalPositionsHoldKernels) {
  struct Case {
    std::size_t out, in0, in1;  // in1 past 15: the one-input selector
    bool lifted;
  };
  const Case cases[] = {{0, 0, 99, true},    {0, 1, 99, false},   {1, 1, 99, true},
                        {12, 12, 99, true},  {13, 13, 99, false}, {1, 1, 1, true},
                        {12, 12, 12, true},  {1, 1, 2, false},    {13, 13, 13, false}};
  // No kernel, and arguments of alternative 0: the lifted entry of k = 0 hands them to its
  // scalar wrapper, which clears the flag; any other lifted entry refuses them.
  auto variant = liftedVariant<double, 1>(NativeEntry{}, Direct);
  const ParameterList arguments{Parameter(std::uint64_t{0}), Parameter(std::uint64_t{0})};
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << c.out << " " << c.in0 << " " << c.in1);
    bool flag = true;
    const auto run = [&] {
      OrroFunctionDescriptor* const d = &variant.functionDescriptor;
      return c.in1 > 15 ? elementWiseInlineC(d, &parent, flag, arguments, nullptr, c.out, c.in0)
                        : elementWiseInlineC(d, &parent, flag, arguments, nullptr, c.out, c.in0, c.in1);
    };
    const TypedEntry entry = c.in1 > 15 ? builtinreg::detail::getElementWiseEntry(nullptr, c.out, c.in0)
                                        : builtinreg::detail::getElementWiseEntry(nullptr, c.out, c.in0, c.in1);
    EXPECT_EQ(entry != nullptr, c.lifted) << "declarations take the entry that the selector calls";
    if (c.lifted && c.out != 0) {
      EXPECT_THROW(run(), std::logic_error);
    } else {
      EXPECT_EQ(run(), Parameter());
      EXPECT_EQ(flag, !c.lifted) << "only a lifted entry touches the flag";
    }
  }
}

TEST_F(ElementWise, UnboxedScalarsComeBackUnboxedAndArraysAsArrays) {
  auto one = liftedVariant<double, 1>(&negate, Direct);
  auto two = liftedVariant<double, 2>(&combine, Direct);
  EXPECT_EQ(call(one, {Parameter(2.0)}), Parameter(-2.0));
  EXPECT_EQ(call(two, {Parameter(2.0), Parameter(3.0)}), Parameter(2003.0));
  const ka::ArrayPtr result = callForArray(one, {give(ka::scalar(2.0))});
  EXPECT_EQ(dimsOf(result.get()), (std::vector<std::size_t>{1, 1}));
  EXPECT_EQ(elementsOf<double>(result.get()), std::vector<double>{-2.0});
}

// Every refused argument gives back the references of both, and no kernel runs. The other
// classes and alternatives refused, each with its text, are in tests/badinput/ArgumentsTest.cpp.
TEST_F(ElementWise, WrongArgumentsAreRefusedAndReleased) {
  auto two = liftedVariant<double, 2>(&combine, Direct);
  EXPECT_THROW(call(two, {give(ramp({1, 2})), give(ka::row<float>({1, 2}))}), std::bad_cast);
  EXPECT_THROW(call(two, {give(ka::row<float>({1, 2})), Parameter(1.0)}), std::bad_cast);
  // A char array is no uint16 array, although a 1-by-1 char reaches this kernel unboxed.
  auto ofUint16 = liftedVariant<unsigned short, 1>(&negate, Direct);
  EXPECT_THROW(call(ofUint16, {give(ka::charArray(u"ab"))}), std::bad_cast);
  EXPECT_EQ(alive(), 0);
  EXPECT_EQ(threads.calls, 0);
}

template <std::size_t K>
void checkClassOfType() {
  using T = ParameterAlternative<K>;
  SCOPED_TRACE(K);
  struct Kernel {
    static T identity(T x) { return x; }
  };
  auto variant = liftedVariant<T, 1>(&Kernel::identity, Direct);
  const T values[] = {T(1), T(0)};
  const ka::ArrayPtr input = ka::createFrom<T>({1, 2}, values);
  bool pending = false;
  const ka::ArrayPtr result = resultArray(call(variant, nullptr, pending, {share(input)}));
  EXPECT_EQ(matrix::classId(result.get()), matrix::classId(input.get()));
  EXPECT_EQ(matrix::isComplex(result.get()), matrix::isComplex(input.get()));
  EXPECT_EQ(elementsOf<T>(result.get()), elementsOf<T>(input.get()));
}

TEST_F(ElementWise, EveryNumericTypeKeepsItsClass) {
  []<std::size_t... K>(std::index_sequence<K...>) {
    (checkClassOfType<K>(), ...);
  }(std::make_index_sequence<13>());
}

// The first input that nobody else holds, whose data is its own and whose dimensions are the
// output's, is overwritten and returned.
TEST_F(ElementWise, ReusesTheFirstInputThatQualifies) {
  enum Hold { FREE, HELD, SHARED_DATA };
  struct Case {
    ka::Dims dims0, dims1;  // dims1 empty: one input
    Hold hold0, hold1;
    int reused;  // 0, 1, or -1 for a new array
  };
  const Case cases[] = {
      {{40, 50}, {}, FREE, FREE, 0},       {{40, 50}, {}, HELD, FREE, -1},
      {{40, 50}, {}, SHARED_DATA, FREE, -1}, {{2, 3}, {2, 3}, FREE, FREE, 0},
      {{2, 3}, {2, 3}, HELD, FREE, 1},     {{2, 1}, {2, 3}, FREE, FREE, 1},
      {{2, 3}, {2, 3, 4}, FREE, FREE, 1},  {{2, 3}, {2, 3}, HELD, HELD, -1},
  };
  auto one = liftedVariant<double, 1>(&negate, Direct);
  auto two = liftedVariant<double, 2>(&combine, Direct);
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::PrintToString(c.dims0) + " " + ::testing::PrintToString(c.dims1));
    ParameterList arguments;
    std::vector<ka::ArrayPtr> kept;  // what else holds an input
    std::vector<kaArray_tag*> addresses;
    for (const auto& [dims, hold] : {std::pair(c.dims0, c.hold0), std::pair(c.dims1, c.hold1)}) {
      if (dims.empty()) break;
      ka::ArrayPtr input = ramp(dims);
      addresses.push_back(input.get());
      if (hold == SHARED_DATA) kept.push_back(ka::sharedDataCopy(input.get()));
      if (hold == HELD) arguments.push_back(share(kept.emplace_back(std::move(input))));
      else arguments.push_back(give(std::move(input)));
    }
    const ka::ArrayPtr result = callForArray(arguments.size() == 1 ? one : two, arguments);
    for (int i = 0; i < static_cast<int>(addresses.size()); ++i) {
      EXPECT_EQ(result.get() == addresses[static_cast<std::size_t>(i)], c.reused == i) << i;
    }
    for (const ka::ArrayPtr& other : kept) {
      EXPECT_EQ(elementsOf<double>(other.get()), elementsOf<double>(ramp(dimsOf(other.get())).get()))
          << "an input held elsewhere is left as it was";
    }
  }
}

// combine() over two conforming shapes by a plain walk over the output, from the inputs' ramps.
std::vector<double> referenceCombine(ka::Dims dims0, ka::Dims dims1) {
  const std::size_t rank = std::max(dims0.size(), dims1.size());
  dims0.resize(rank, 1);
  dims1.resize(rank, 1);
  std::size_t count = 1;
  for (std::size_t d = 0; d < rank; ++d) count *= std::max(dims0[d], dims1[d]);
  std::vector<double> expected(count);
  std::vector<std::size_t> at(rank, 0);  // subscripts of output element i
  for (std::size_t i = 0; i < count; ++i) {
    std::size_t index0 = 0, index1 = 0, stride0 = 1, stride1 = 1;
    for (std::size_t d = 0; d < rank; ++d) {
      index0 += (dims0[d] == 1 ? 0 : at[d]) * stride0;
      index1 += (dims1[d] == 1 ? 0 : at[d]) * stride1;
      stride0 *= dims0[d];
      stride1 *= dims1[d];
    }
    expected[i] = static_cast<double>(index0) * 1000 + static_cast<double>(index1);
    for (std::size_t d = 0; d < rank && ++at[d] == std::max(dims0[d], dims1[d]); ++d) at[d] = 0;
  }
  return expected;
}

// Random conforming pairs of up to four dimensions, some above the parallel threshold, run
// serially (a kernel with side effects) and in parallel under several thread limits.
TEST_F(ElementWise, BroadcastMatchesAPlainReferenceLoop) {
  std::mt19937 random(20240611);
  const std::size_t sizes[] = {1, 2, 3, 5, 33};
  std::vector<Shapes> shapes = {{{2, 1}, {1, 3}}, {{2, 3}, {2, 3, 4}}, {{1000, 1}, {1, 7}},
                                {{3, 1, 5}, {1, 4}}, {{2, 3}, {1, 1}}, {{1, 1}, {2, 3}}};
  while (shapes.size() < 60) {
    const std::size_t rank = 2 + random() % 3;
    ka::Dims dims0(rank), dims1(rank);
    std::size_t count = 1;
    for (std::size_t d = 0; d < rank; ++d) {
      const std::size_t size = sizes[random() % 5];
      dims0[d] = random() % 3 == 0 ? 1 : size;
      dims1[d] = random() % 3 == 0 ? 1 : size;
      count *= size;
    }
    if (count <= 40000) shapes.emplace_back(dims0, dims1);
  }
  auto serial = liftedVariant<double, 2>(&combine, Direct, {.sideEffects = true});
  auto parallel = liftedVariant<double, 2>(&combine, Direct);
  for (std::size_t limit : {1ul, 2ul, 4ul}) {
    tbb::global_control control(tbb::global_control::max_allowed_parallelism, limit);
    for (const auto& [dims0, dims1] : shapes) {
      for (BuiltinVariant* variant : {&serial, &parallel}) {
        SCOPED_TRACE(::testing::Message() << "threads " << limit << (variant == &serial ? " serial " : " ")
                                          << ::testing::PrintToString(dims0) << " with "
                                          << ::testing::PrintToString(dims1));
        const ka::ArrayPtr result = callForArray(*variant, {give(ramp(dims0)), give(ramp(dims1))});
        ASSERT_EQ(elementsOf<double>(result.get()), referenceCombine(dims0, dims1));
      }
    }
  }
  // An unboxed scalar on either side takes the same paths as a 1-by-1 array.
  const std::vector<double> withSeven = {7, 1007, 2007, 3007, 4007, 5007};
  EXPECT_EQ(elementsOf<double>(callForArray(parallel, {give(ramp({2, 3})), Parameter(7.0)}).get()),
            withSeven);
  EXPECT_EQ(elementsOf<double>(callForArray(parallel, {Parameter(7.0), give(ramp({2, 3}))}).get()),
            (std::vector<double>{7000, 7001, 7002, 7003, 7004, 7005}));
}

// A size of 0 against 1 or against a missing dimension gives 0, and nothing is read or called;
// sizes that do not broadcast are refused before anything is made.
TEST_F(ElementWise, ZeroSizesGiveEmptyOutputsAndMismatchesThrow) {
  struct Case {
    ka::Dims dims0, dims1, out;  // out empty: refused
  };
  const Case cases[] = {
      {{2, 3}, {2, 3, 0}, {2, 3, 0}}, {{2, 3, 0}, {2, 1}, {2, 3, 0}}, {{0, 3}, {1, 3}, {0, 3}},
      {{2, 0}, {1, 1}, {2, 0}},       {{0, 1}, {1, 4}, {0, 4}},       {{2, 3}, {3, 2}, {}},
      {{0, 3}, {2, 3}, {}},
  };
  auto two = liftedVariant<double, 2>(&combine, Direct);
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::PrintToString(c.dims0) + " with " + ::testing::PrintToString(c.dims1));
    const ParameterList arguments{give(ka::createNumeric(kaDOUBLE_CLASS, c.dims0)),
                                  give(ka::createNumeric(kaDOUBLE_CLASS, c.dims1))};
    if (c.out.empty()) {
      EXPECT_THROW(call(two, arguments), std::invalid_argument);
    } else {
      EXPECT_EQ(dimsOf(callForArray(two, arguments).get()), c.out);
    }
  }
  auto one = liftedVariant<double, 1>(&negate, Direct);
  EXPECT_EQ(dimsOf(callForArray(one, {give(ka::createNumeric(kaDOUBLE_CLASS, {0, 3}))}).get()),
            (std::vector<std::size_t>{0, 3}));
  EXPECT_EQ(threads.calls, 0);
  EXPECT_EQ(alive(), 0);
}

OrroFunctionDescriptor* seenDescriptor = nullptr;
double negateDescribed(double x, OrroFunctionDescriptor* descriptor) {
  seenDescriptor = descriptor;
  return -x;
}
IOrroBuiltinEnvironment* seenEnvironment = nullptr;
bool negateReporting(double x, double* out, IOrroBuiltinEnvironment* environment,
                     OrroFunctionDescriptor*) {
  seenEnvironment = environment;
  *out = -x;
  return false;
}

TEST_F(ElementWise, EachConventionIsCalledAsItSays) {
  struct Case {
    NativeEntry kernel;
    std::uint32_t convention;
    double expected;
  };
  const Case cases[] = {
      {reinterpret_cast<NativeEntry>(&negate), 0, -2},
      {reinterpret_cast<NativeEntry>(&negateDescribed), 1, -2},
      {reinterpret_cast<NativeEntry>(&negateReporting), 2, -2},
      {reinterpret_cast<NativeEntry>(&negate), 3, 0},  // the engine's own: nothing is called
      {reinterpret_cast<NativeEntry>(&negate), 7, 0},
      {nullptr, 0, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << "convention " << c.convention << " kernel " << c.kernel);
    auto variant = liftedVariant<double, 1>(c.kernel, Direct);
    variant.functionDescriptor.callingConvention = static_cast<JIT_CALLING_CONVENTION>(c.convention);
    seenDescriptor = nullptr;
    seenEnvironment = nullptr;
    const ka::ArrayPtr result = callForArray(variant, {give(ka::row({2.0, 2.0}))});
    EXPECT_EQ(elementsOf<double>(result.get()), std::vector<double>(2, c.expected));
    EXPECT_EQ(seenDescriptor, c.convention == 1 ? &variant.functionDescriptor : nullptr);
    EXPECT_EQ(seenEnvironment != nullptr, c.convention == 2);
    EXPECT_NE(seenEnvironment, &parent) << "kernels report to the collecting environment";
  }
}

}  // namespace
}  // namespace elementwisetest
