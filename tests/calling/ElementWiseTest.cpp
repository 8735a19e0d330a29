// The lifted entries by road: selection, views, one input, reuse, broadcasting (fast and general
// paths against a plain reference loop), empty outputs, and the conventions inside the loop.
#include <oneapi/tbb/global_control.h>

#include <complex>
#include <cstdint>
#include <random>
#include <utility>

#include "ElementWiseSupport.hpp"

namespace elementwisetest {
namespace {

using builtinreg::detail::elementWiseInlineC;
using enum JIT_CALLING_CONVENTION;

// Exact in doubles for the small whole numbers the tests use, and tells the inputs apart.
double combine(double a, double b) {
  threads.note();
  return a * 1000 + b;
}

using ElementWise = LiftedCallTest;

// --- selection -------------------------------------------------------------------------------

TEST_F(ElementWise, OnlyDiagonalPositionsHoldKernels) {
  struct Case {
    const char* name;
    std::size_t out, in0, in1;  // in1 past 15: the one-input selector
    bool lifted;
  };
  const Case cases[] = {
      {"(k=0) position 0", 0, 0, 99, true},       {"position 1", 0, 1, 99, false},
      {"(k=1) position 17", 1, 1, 99, true},      {"(k=12) position 204", 12, 12, 99, true},
      {"position 221 (k=13)", 13, 13, 99, false}, {"(k=1) position 273", 1, 1, 1, true},
      {"(k=12) position 3276", 12, 12, 12, true}, {"position 274", 1, 1, 2, false},
      {"position 3549 (k=13)", 13, 13, 13, false},
  };
  // No kernel, and arguments of alternative 0: a lifted entry of k = 0 hands them to its scalar
  // wrapper, which clears the flag; any other lifted entry refuses them.
  auto variant = liftedVariant<double, 1>(nullptr, Direct);
  const ParameterList arguments{Parameter(std::uint64_t{0}), Parameter(std::uint64_t{0})};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    bool flag = true;
    const auto run = [&] {
      return c.in1 > 15 ? elementWiseInlineC(&variant.functionDescriptor, &parent, flag,
                                             arguments, nullptr, c.out, c.in0)
                        : elementWiseInlineC(&variant.functionDescriptor, &parent, flag,
                                             arguments, nullptr, c.out, c.in0, c.in1);
    };
    if (c.lifted && c.out != 0) {
      EXPECT_THROW(run(), std::logic_error);
    } else {
      EXPECT_EQ(run(), Parameter());
      EXPECT_EQ(flag, !c.lifted) << "only a lifted entry touches the flag";
    }
  }
}

// --- views -----------------------------------------------------------------------------------

TEST_F(ElementWise, UnboxedScalarsComeBackUnboxedAndArraysAsArrays) {
  auto one = liftedVariant<double, 1>(entryOf(&negate), Direct);
  auto two = liftedVariant<double, 2>(entryOf(&combine), Direct);
  EXPECT_EQ(call(one, &parent, pending, {Parameter(2.0)}), Parameter(-2.0));
  EXPECT_EQ(call(two, &parent, pending, {Parameter(2.0), Parameter(3.0)}), Parameter(2003.0));

  const ka::ArrayPtr result = resultArray(call(one, &parent, pending, {give(ka::scalar(2.0))}));
  EXPECT_EQ(dimsOf(result.get()), (std::vector<std::size_t>{1, 1}));
  EXPECT_EQ(elementsOf<double>(result.get()), std::vector<double>{-2.0});
  EXPECT_FALSE(pending);
}

TEST_F(ElementWise, ArraysOfAnotherKindAreRefusedAndReleased) {
  struct Case {
    const char* name;
    std::function<ka::ArrayPtr()> make;
  };
  const Case cases[] = {
      {"single array", [] { return ka::row<float>({1, 2}); }},
      {"complex double", [] { return ka::row<std::complex<double>>({{1, 1}}); }},
      {"sparse double", [] { return ka::createSparse(kaDOUBLE_CLASS, 2, 2, {{0, 0, 1.0}}); }},
  };
  auto one = liftedVariant<double, 1>(entryOf(&negate), Direct);
  auto two = liftedVariant<double, 2>(entryOf(&combine), Direct);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_THROW(call(one, &parent, pending, {give(c.make())}), std::bad_cast);
    // The second input is looked at first; the reference of the first is given back as well.
    EXPECT_THROW(call(two, &parent, pending, {give(ka::row({1.0, 2.0})), give(c.make())}),
                 std::bad_cast);
    EXPECT_THROW(call(two, &parent, pending, {give(c.make()), Parameter(1.0)}), std::bad_cast);
    EXPECT_EQ(alive(), 0);
  }
  // A char array is no uint16 array, although a 1-by-1 char arrives at this kernel unboxed.
  auto ofUint16 = liftedVariant<unsigned short, 1>(entryOf(&negate), Direct);
  EXPECT_THROW(call(ofUint16, &parent, pending, {give(ka::charArray(u"ab"))}), std::bad_cast);
  EXPECT_EQ(threads.calls, 0);
}

TEST_F(ElementWise, OtherAlternativesThrowLogicErrorNamingBothTypes) {
  auto two = liftedVariant<double, 2>(entryOf(&combine), Direct);
  const ParameterList arguments{give(ka::row({1.0, 2.0})),
                                Parameter(static_cast<Norvane::String::String*>(nullptr))};
  try {
    call(two, &parent, pending, arguments);
    ADD_FAILURE() << "no exception";
  } catch (const std::logic_error& error) {
    EXPECT_STREQ(error.what(),
                 "Parameter should contain double but actually contained "
                 "Norvane::String::String*");
  }
  EXPECT_EQ(alive(), 0);
}

// Each of the thirteen types reads and writes arrays of its own class and complexity.
template <std::size_t K>
void checkType() {
  using T = ParameterAlternative<K>;
  SCOPED_TRACE(K);
  struct Kernel {
    static T identity(T x) { return x; }
  };
  auto variant = liftedVariant<T, 1>(entryOf(&Kernel::identity), Direct);
  const T values[] = {T(1), T(0), T(1)};
  const ka::ArrayPtr input = ka::createFrom<T>({1, 3}, values);
  bool pending = false;
  const ka::ArrayPtr result = resultArray(call(variant, nullptr, pending, {share(input)}));
  EXPECT_EQ(matrix::classId(result.get()), matrix::classId(input.get()));
  EXPECT_EQ(matrix::isComplex(result.get()), matrix::isComplex(input.get()));
  EXPECT_EQ(elementsOf<T>(result.get()), elementsOf<T>(input.get()));
}

TEST_F(ElementWise, EveryNumericTypeKeepsItsClass) {
  [this]<std::size_t... K>(std::index_sequence<K...>) {
    (checkType<K>(), ...);
  }(std::make_index_sequence<13>());
}

// --- one input and reuse ---------------------------------------------------------------------

TEST_F(ElementWise, OneInputOverwritesAnInputThatNobodyElseHolds) {
  auto variant = liftedVariant<double, 1>(entryOf(&negate), Direct);
  struct Case {
    const char* name;
    std::function<ka::ArrayPtr(ka::ArrayPtr&)> hold;  // what else holds the input, if anything
    bool reused;
  };
  const Case cases[] = {
      {"one reference", [](ka::ArrayPtr&) { return ka::ArrayPtr(); }, true},
      {"two references",
       [](ka::ArrayPtr& a) {
         matrix::takeReference(a.get());
         return ka::ArrayPtr(a.get());
       },
       false},
      {"shared data", [](ka::ArrayPtr& a) { return ka::sharedDataCopy(a.get()); }, false},
  };
  const std::vector<double> values(2000, 3.0);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ka::ArrayPtr input = ka::createFrom<double>({40, 50}, values);
    const ka::ArrayPtr other = c.hold(input);
    kaArray_tag* const inputAddress = input.get();
    const ka::ArrayPtr result = resultArray(call(variant, &parent, pending, {give(std::move(input))}));
    EXPECT_EQ(result.get() == inputAddress, c.reused);
    EXPECT_EQ(dimsOf(result.get()), (std::vector<std::size_t>{40, 50}));
    EXPECT_EQ(elementsOf<double>(result.get()), std::vector<double>(2000, -3.0));
    if (other) {
      EXPECT_EQ(elementsOf<double>(other.get()), values) << "the held input is unchanged";
    }
  }
}

TEST_F(ElementWise, TwoInputsReuseTheFirstThatQualifies) {
  auto variant = liftedVariant<double, 2>(entryOf(&combine), Direct);
  struct Case {
    const char* name;
    ka::Dims dims0, dims1;
    bool holdFirst, holdSecond;
    int reused;  // 0, 1, or -1 for a new array
  };
  const Case cases[] = {
      {"equal shapes", {2, 3}, {2, 3}, false, false, 0},
      {"equal shapes, first held", {2, 3}, {2, 3}, true, false, 1},
      {"2x1 with 2x3", {2, 1}, {2, 3}, false, false, 1},
      {"2x3 with 2x3x4", {2, 3}, {2, 3, 4}, false, false, 1},
      {"both held", {2, 3}, {2, 3}, true, true, -1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ka::ArrayPtr in0 = ka::createNumeric(kaDOUBLE_CLASS, c.dims0);
    ka::ArrayPtr in1 = ka::createNumeric(kaDOUBLE_CLASS, c.dims1);
    kaArray_tag* const addresses[] = {in0.get(), in1.get()};
    const Parameter a0 = c.holdFirst ? share(in0) : give(std::move(in0));
    const Parameter a1 = c.holdSecond ? share(in1) : give(std::move(in1));
    const ka::ArrayPtr result = resultArray(call(variant, &parent, pending, {a0, a1}));
    for (int i = 0; i < 2; ++i) EXPECT_EQ(result.get() == addresses[i], c.reused == i) << i;
  }
}

// --- broadcasting ----------------------------------------------------------------------------

// The column-major index into an input of the output element with these subscripts.
std::size_t inputIndex(const std::vector<std::size_t>& subscripts, const ka::Dims& dims) {
  std::size_t index = 0;
  std::size_t stride = 1;
  for (std::size_t d = 0; d < dims.size(); ++d) {
    index += (dims[d] == 1 ? 0 : subscripts[d]) * stride;
    stride *= dims[d];
  }
  return index;
}

// combine() over two conforming shapes, by a plain walk over the output.
std::vector<double> referenceCombine(ka::Dims dims0, ka::Dims dims1) {
  const std::size_t rank = std::max(dims0.size(), dims1.size());
  dims0.resize(rank, 1);
  dims1.resize(rank, 1);
  ka::Dims out(rank);
  std::size_t count = 1;
  for (std::size_t d = 0; d < out.size(); ++d) count *= out[d] = dims0[d] == 1 ? dims1[d] : dims0[d];
  std::vector<double> expected(count);
  std::vector<std::size_t> subscripts(out.size(), 0);
  for (std::size_t i = 0; i < count; ++i) {
    expected[i] = static_cast<double>(inputIndex(subscripts, dims0)) * 1000 +
                  static_cast<double>(inputIndex(subscripts, dims1));
    for (std::size_t d = 0; d < out.size() && ++subscripts[d] == out[d]; ++d) subscripts[d] = 0;
  }
  return expected;
}

// Random conforming pairs of up to four dimensions, some of them above the parallel threshold,
// run serially (a kernel with side effects) and in parallel under several thread limits.
TEST_F(ElementWise, BroadcastMatchesAPlainReferenceLoop) {
  std::mt19937 random(20240611);
  const std::size_t sizes[] = {1, 2, 3, 5, 33};
  std::vector<std::pair<ka::Dims, ka::Dims>> shapes = {
      {{2, 1}, {1, 3}}, {{2, 3}, {2, 3, 4}}, {{1000, 1}, {1, 7}}, {{3, 1, 5}, {1, 4}}};
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
  auto serial = liftedVariant<double, 2>(entryOf(&combine), Direct, {.sideEffects = true});
  auto parallel = liftedVariant<double, 2>(entryOf(&combine), Direct);
  for (int limit : {1, 2, 4}) {
    tbb::global_control control(tbb::global_control::max_allowed_parallelism,
                                static_cast<std::size_t>(limit));
    for (const auto& [dims0, dims1] : shapes) {
      for (BuiltinVariant* variant : {&serial, &parallel}) {
        SCOPED_TRACE(::testing::Message()
                     << "threads " << limit << (variant == &serial ? " serial " : " parallel ")
                     << ::testing::PrintToString(dims0) << " with " << ::testing::PrintToString(dims1));
        const ka::ArrayPtr result = resultArray(
            call(*variant, &parent, pending, {give(ramp(dims0)), give(ramp(dims1))}));
        ASSERT_EQ(elementsOf<double>(result.get()), referenceCombine(dims0, dims1));
      }
    }
  }
}

TEST_F(ElementWise, ScalarSideByParameterOrOneByOneArray) {
  auto variant = liftedVariant<double, 2>(entryOf(&combine), Direct);
  const auto values = [&](Parameter a0, Parameter a1) {
    const ka::ArrayPtr result = resultArray(call(variant, &parent, pending, {a0, a1}));
    EXPECT_EQ(dimsOf(result.get()), (std::vector<std::size_t>{2, 3}));
    return elementsOf<double>(result.get());
  };
  const std::vector<double> arrayAndScalar = {7, 1007, 2007, 3007, 4007, 5007};
  EXPECT_EQ(values(give(ramp({2, 3})), Parameter(7.0)), arrayAndScalar);
  EXPECT_EQ(values(give(ramp({2, 3})), give(ka::scalar(7.0))), arrayAndScalar);
  const std::vector<double> scalarAndArray = {7000, 7001, 7002, 7003, 7004, 7005};
  EXPECT_EQ(values(Parameter(7.0), give(ramp({2, 3}))), scalarAndArray);
}

// A size of 0 against 1 or against a missing dimension gives 0, and nothing is read or called.
TEST_F(ElementWise, ZeroSizesGiveEmptyOutputs) {
  struct Case {
    ka::Dims dims0, dims1, out;
  };
  const Case cases[] = {
      {{2, 3}, {2, 3, 0}, {2, 3, 0}},
      {{2, 3, 0}, {2, 1}, {2, 3, 0}},
      {{0, 3}, {1, 3}, {0, 3}},
      {{2, 0}, {1, 1}, {2, 0}},
      {{0, 1}, {1, 4}, {0, 4}},
  };
  auto two = liftedVariant<double, 2>(entryOf(&combine), Direct);
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::PrintToString(c.dims0) + " with " + ::testing::PrintToString(c.dims1));
    const ka::ArrayPtr result = resultArray(call(two, &parent, pending,
        {give(ka::createNumeric(kaDOUBLE_CLASS, c.dims0)),
         give(ka::createNumeric(kaDOUBLE_CLASS, c.dims1))}));
    EXPECT_EQ(dimsOf(result.get()), c.out);
  }
  auto one = liftedVariant<double, 1>(entryOf(&negate), Direct);
  const ka::ArrayPtr empty =
      resultArray(call(one, &parent, pending, {give(ka::createNumeric(kaDOUBLE_CLASS, {0, 3}))}));
  EXPECT_EQ(dimsOf(empty.get()), (std::vector<std::size_t>{0, 3}));
  EXPECT_EQ(threads.calls, 0);
}

TEST_F(ElementWise, ShapesThatDoNotBroadcastAreRefused) {
  auto two = liftedVariant<double, 2>(entryOf(&combine), Direct);
  for (const auto& [dims0, dims1] : {std::pair<ka::Dims, ka::Dims>{{2, 3}, {3, 2}},
                                     std::pair<ka::Dims, ka::Dims>{{0, 3}, {2, 3}}}) {
    EXPECT_THROW(call(two, &parent, pending,
                      {give(ka::createNumeric(kaDOUBLE_CLASS, dims0)),
                       give(ka::createNumeric(kaDOUBLE_CLASS, dims1))}),
                 std::invalid_argument);
  }
  EXPECT_EQ(alive(), 0);
}

// --- conventions inside the loop -------------------------------------------------------------

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
    const char* name;
    NativeEntry kernel;
    std::uint32_t convention;
    double expected;
  };
  const Case cases[] = {
      {"Direct", entryOf(&negate), 0, -2},
      {"DirectWithDescriptor", entryOf(&negateDescribed), 1, -2},
      {"CanThrow", entryOf(&negateReporting), 2, -2},
      {"the engine's own convention calls nothing", entryOf(&negate), 3, 0},
      {"unknown convention", entryOf(&negate), 7, 0},
      {"no kernel", nullptr, 0, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    auto variant = liftedVariant<double, 1>(entryOf(&negate), Direct);
    variant.functionDescriptor.nativeEntry = c.kernel;
    variant.functionDescriptor.callingConvention = static_cast<JIT_CALLING_CONVENTION>(c.convention);
    seenDescriptor = nullptr;
    seenEnvironment = nullptr;
    const ka::ArrayPtr result = resultArray(call(variant, &parent, pending, {give(ka::row({2.0, 2.0}))}));
    EXPECT_EQ(elementsOf<double>(result.get()), std::vector<double>(2, c.expected));
    if (c.convention == 1) {
      EXPECT_EQ(seenDescriptor, &variant.functionDescriptor);
    }
    if (c.convention == 2) {
      ASSERT_NE(seenEnvironment, nullptr);
      EXPECT_NE(seenEnvironment, &parent) << "kernels report to the collecting environment";
    }
  }
}

}  // namespace
}  // namespace elementwisetest
