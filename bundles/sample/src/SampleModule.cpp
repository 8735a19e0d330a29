// The sample module: one builtin of each kind a module author writes, declared the way the
// declaration headers intend. It is the reference for authors and the subject of the end-to-end
// tests; every road of a call runs through one of its builtins.
//
//   plus, minus, times   element-wise over every pair of the numeric classes, logical and char
//                        under the language's class rules (Arithmetic.hpp); plus of two
//                        strings joins them
//   sqrt                 element-wise, warns for a negative real input and gives NaN there
//   exp, log, sin, cos,  element-wise over double and single, arrays a run at a time in SIMD
//   tanh                 vectors; log warns for a negative input, as sqrt does
//   hypot, abs           element-wise; abs also of complex values and arrays
//   clamp                element-wise over three inputs: x held between lo and hi
//   ldexp                element-wise over a double and an int32: x times 2 to the e
//   sum                  of a double array along its first dimension whose size is not 1
//   minmax               the least and the greatest element of a double array, two outputs;
//                        an error for an empty one
//   round                halves away from zero, or with 'even' to the even neighbour, 'away'
//   sort                 of a double vector, with 'ascend' or 'descend'
//   upper                of a string or a char row
//   inv                  of a double scalar; 0 is an error
//   size, class          default implementations only, over arrays of every kind; size gives
//                        one dimension to each output asked for
//   zeros, ones, rand,   arrays without literals (Constructors.hpp)
//   colon
//   counter, count       an object of the class system's Counter class made from a number, and
//                        the number read back
#include <algorithm>
#include <cfenv>
#include <cmath>
#include <complex>
#include <cstdint>
#include <functional>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include <builtin/declare/declare.hpp>
#include <classbundle/ClassSystem.hpp>
#include <ka/ka.hpp>

#include "Arithmetic.hpp"
#include "Constructors.hpp"
#include "Elementary.hpp"

namespace sample {

namespace {

using namespace Norvane::builtin;
using namespace Norvane::builtin::declare;
using Complex = std::complex<double>;

// --- functions of one number ------------------------------------------------------------------

// A negative input warns and gives NaN, as the language's real sqrt does.
double squareRoot(double x) {
    if (x < 0) {
        warn(u"sqrt of a negative number is NaN here; take the sqrt of a complex number instead");
        return std::numeric_limits<double>::quiet_NaN();
    }
    return std::sqrt(x);
}

// The elementary functions: SLEEF's scalar function for one element, its vector functions for a
// run of an array.
template <elementary::Function F, class T>
struct Elementary {
    static T one(T x) { return elementary::scalar(F, x); }
    static void run(const T* in, T* out, std::size_t n) { elementary::block(F, in, out, n); }
};

constexpr const char* logOfNegative =
    "log of a negative number is NaN here; take the log of a complex number instead";

template <class T>
T logarithm(T x) {
    if (x < 0) warn(logOfNegative);
    return elementary::scalar(elementary::Function::LOG, x);
}

// `out` may be `in`: the inputs are looked at before they are overwritten.
template <class T>
void logarithms(const T* in, T* out, std::size_t n) {
    const bool negative = std::any_of(in, in + n, [](T x) { return x < 0; });
    elementary::block(elementary::Function::LOG, in, out, n);
    if (negative) warn(logOfNegative);
}

template <elementary::Function F>
void declareElementary(Builtin& builtin) {
    builtin.def<&Elementary<F, double>::one>(pure, elementwise,
                                             block<&Elementary<F, double>::run>());
    builtin.def<&Elementary<F, float>::one>(pure, elementwise, block<&Elementary<F, float>::run>());
}

double clampBetween(double x, double low, double high) {
    return std::min(std::max(x, low), high);
}

double scaleByPowerOfTwo(double x, std::int32_t e) {
    return std::ldexp(x, e);
}

double hypotenuse(double a, double b) {
    return std::hypot(a, b);
}
double absolute(double x) {
    return std::abs(x);
}
float absoluteSingle(float x) {
    return std::abs(x);
}
double magnitude(Complex z) {
    return std::abs(z);
}

ka::ArrayPtr magnitudes(Array<Complex> z) {
    const auto dims = z.dimensions();
    ka::ArrayPtr result = ka::createNumeric(kaDOUBLE_CLASS, ka::Dims(dims.begin(), dims.end()));
    auto* out = static_cast<double*>(matrix::data(result.get()));
    std::transform(z.begin(), z.end(), out, [](Complex value) { return std::abs(value); });
    return result;
}

double roundAway(double x) {
    return std::round(x);
}
double roundEven(double x) {
    // Halves go to the even neighbour: the rounding of IEEE arithmetic itself.
    const double floor = std::floor(x);
    const double difference = x - floor;
    if (difference != 0.5) return std::round(x);
    return std::fmod(floor, 2.0) == 0 ? floor : floor + 1;
}

// inv of a scalar: 1/0 is an error here rather than Inf.
double inverse(double x) {
    if (x == 0) throw std::domain_error("inv: the inverse of 0 does not exist");
    return 1 / x;
}

// --- arrays ----------------------------------------------------------------------------------

// Along the first dimension whose size is not 1; the sum of nothing is 0.
ka::ArrayPtr sumAlongFirst(Array<double> x) {
    const auto dims = x.dimensions();
    ka::Dims out(dims.begin(), dims.end());
    const auto first = std::find_if(dims.begin(), dims.end(), [](std::size_t n) { return n != 1; });
    const std::size_t d = first == dims.end() ? 0 : static_cast<std::size_t>(first - dims.begin());
    std::size_t before = 1, after = 1;
    for (std::size_t k = 0; k < dims.size(); ++k) {
        if (k < d) before *= dims[k];
        if (k > d) after *= dims[k];
    }
    const std::size_t n = dims[d];
    out[d] = 1;
    if (dims.size() == 2 && dims[0] == 0 && dims[1] == 0) out = {1, 1};  // sum([]) is 0
    ka::ArrayPtr result = ka::createNumeric(kaDOUBLE_CLASS, out);
    auto* sums = static_cast<double*>(matrix::data(result.get()));
    for (std::size_t a = 0; a < after; ++a) {
        for (std::size_t b = 0; b < before; ++b) {
            double total = 0;
            for (std::size_t k = 0; k < n; ++k) total += x[b + k * before + a * before * n];
            sums[b + a * before] = total;
        }
    }
    return result;
}

// Two outputs: [lo, hi] = minmax(x); a call of one output gets lo.
std::pair<double, double> extremes(Array<double> x) {
    if (x.begin() == x.end()) throw std::invalid_argument("minmax: the array is empty");
    const auto [low, high] = std::minmax_element(x.begin(), x.end());
    return {*low, *high};
}

template <class Vector, bool Descending>
ka::ArrayPtr sorted(Vector v) {
    const auto dims = v.dimensions();
    std::vector<double> values(v.begin(), v.end());
    // NaN goes last, as the language sorts.
    std::stable_sort(values.begin(), values.end(), [](double a, double b) {
        if (std::isnan(a)) return false;
        if (std::isnan(b)) return true;
        return Descending ? a > b : a < b;
    });
    return ka::createFrom<double>(ka::Dims(dims.begin(), dims.end()), values);
}

template <class Vector>
void declareSort(Builtin& sort) {
    sort.def(&sorted<Vector, false>, pure, relaxed, cppName("sortAscend"))
        .def(&sorted<Vector, false>, pure, relaxed, flag(1, "ascend"), cppName("sortAscend"))
        .def(&sorted<Vector, true>, pure, relaxed, flag(1, "descend"), cppName("sortDescend"));
}

char16_t upperOf(char16_t c) {
    // ASCII and Latin-1 letters; the other characters stay.
    if ((c >= u'a' && c <= u'z') || (c >= u'\u00e0' && c <= u'\u00fe' && c != u'\u00f7'))
        return c - 32;
    return c;
}

std::u16string upperString(ScalarString s) {
    std::u16string result(s.text);
    std::transform(result.begin(), result.end(), result.begin(), upperOf);
    return result;
}

template <class Chars>
ka::ArrayPtr upperChars(Chars chars) {
    std::u16string text(chars.begin(), chars.end());
    std::transform(text.begin(), text.end(), text.begin(), upperOf);
    return text.empty() ? ka::createNumeric(kaCHAR_CLASS, {0, 0})
                        : ka::charArray(std::u16string_view(text));
}

// --- objects ---------------------------------------------------------------------------------

using classbundle::Counter;

// The engine object starts without a reference; the array it goes into takes one.
Counter* makeCounter(double start) {
    return new Counter(static_cast<long>(std::llround(start)));
}
double countOf(Counter* counter) {
    return static_cast<double>(counter->value());
}

// --- default implementations ------------------------------------------------------------------

// A default implementation gets the arguments as the interpreter passed them, a null one
// included: the library hands over what no variant took, unread.

// size(x): the dimensions as a row of doubles; [r, c, ...] = size(x) gives one dimension to each
// output, 1 beyond the last, and the product of the dimensions left over to the last output.
void sizeOf(int nlhs, kaArray_tag** plhs, int nrhs, kaArray_tag** prhs, OrroFunctionDescriptor*) {
    if (nrhs != 1 || prhs[0] == nullptr) throw std::invalid_argument("size takes one argument");
    const auto dims = matrix::dimensions(prhs[0]);
    if (nlhs <= 1) {
        std::vector<double> values(dims.begin(), dims.end());
        plhs[0] = ka::createFrom<double>({1, values.size()}, values).release();
        return;
    }
    const auto outputs = static_cast<std::size_t>(nlhs);
    std::vector<double> extents(outputs, 1.0);
    for (std::size_t d = 0; d < dims.size(); ++d)
        extents[std::min(d, outputs - 1)] *= static_cast<double>(dims[d]);
    // All made before any is handed over, so that a failure leaves no output half assigned.
    std::vector<ka::ArrayPtr> made;
    for (const double extent : extents) made.push_back(ka::scalar(extent));
    for (std::size_t k = 0; k < outputs; ++k) plhs[k] = made[k].release();
}

// class(x): the class name as a char row.
void classOf(int, kaArray_tag** plhs, int nrhs, kaArray_tag** prhs, OrroFunctionDescriptor*) {
    if (nrhs != 1 || prhs[0] == nullptr) throw std::invalid_argument("class takes one argument");
    const std::string& objectClass = ka::objectClassName(prhs[0]);
    const std::string name =
        objectClass.empty() ? std::string(ka::className(matrix::classId(prhs[0]))) : objectClass;
    plhs[0] = ka::charArray(std::string_view(name)).release();
}

void declareSample(Module& module) {
    declarePlus(module);
    declareMinus(module);
    declareTimes(module);
    module.builtin("sqrt").def<&squareRoot>(pure, elementwise, warns, noErrors);
    declareElementary<elementary::Function::EXP>(module.builtin("exp"));
    declareElementary<elementary::Function::SIN>(module.builtin("sin"));
    declareElementary<elementary::Function::COS>(module.builtin("cos"));
    declareElementary<elementary::Function::TANH>(module.builtin("tanh"));
    module.builtin("log")
        .def<&logarithm<double>>(pure, elementwise, warns, noErrors, block<&logarithms<double>>())
        .def<&logarithm<float>>(pure, elementwise, warns, noErrors, block<&logarithms<float>>());
    module.builtin("hypot").def<&hypotenuse>(pure, elementwise);
    module.builtin("abs")
        .def<&absolute>(pure, elementwise)
        .def<&absoluteSingle>(pure, elementwise)
        .def(&magnitude, pure)
        .def(&magnitudes, pure);
    module.builtin("clamp").def<&clampBetween>(pure, elementwise);
    module.builtin("ldexp").def<&scaleByPowerOfTwo>(pure, elementwise);
    // The engine holds a double scalar unboxed; the boxing variant hands it over as an array.
    module.builtin("sum").def(&sumAlongFirst, pure, boxed<double>());
    module.builtin("minmax").def(&extremes, pure, throws);
    module.builtin("round")
        .def<&roundAway>(pure, elementwise, cppName("roundAway"))
        .def<&roundEven>(pure, elementwise, flag(1, "even"), cppName("roundEven"))
        .def<&roundAway>(pure, elementwise, flag(1, "away"), cppName("roundAway"));
    Builtin& sort = module.builtin("sort");
    declareSort<Row<double>>(sort);
    declareSort<Column<double>>(sort);
    module.builtin("upper")
        .def(&upperString, pure)
        .def(&upperChars<Row<char16_t>>, pure, relaxed)
        .def(&upperChars<Empty<char16_t>>, pure);
    module.builtin("inv").def(&inverse, pure, throws);
    module.object<Counter>();
    module.builtin("counter").def(&makeCounter, pure);
    module.builtin("count").def(&countOf, pure);
    module.builtin("size").fallback(&sizeOf, pure, noWarnings);
    module.builtin("class").fallback(&classOf, pure, noWarnings);
    declareConstructors(module);
}

}  // namespace

}  // namespace sample

KELDOR_BUILTIN_MODULE(KELDOR_MODULE_NAME, sample::declareSample)
