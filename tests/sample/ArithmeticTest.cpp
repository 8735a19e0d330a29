// The sample module's arithmetic under the language's class rules, through invoke: the class of
// every pair of classes, or its error, then values at the edges.
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <ArrayValues.hpp>
#include <LiveArrays.hpp>
#include <ModuleHost.hpp>
#include <builtin/invoke/BuiltinFcn.hpp>
#include <ka/ka.hpp>

namespace arithmetictest {
namespace {

using namespace Norvane::builtin;

const std::unique_ptr<declare::ModuleDirectory>& modules() {
    static const auto started = testsupport::startModules();
    return started;
}

// The fourteen classes, in the order of the table below, each as a 1-by-1 value of 1.
const char* const classes[] = {"double", "single", "logical", "char",   "int8",
                               "int16",  "int32",  "int64",   "uint8",  "uint16",
                               "uint32", "uint64", "cdouble", "csingle"};

ka::ArrayPtr one(const std::string& name) {
    if (name == "double") return ka::scalar(1.0);
    if (name == "single") return ka::scalar(1.0f);
    if (name == "logical") return ka::scalar(true);
    if (name == "char") return ka::charArray(u"\x01");
    if (name == "int8") return ka::scalar<std::int8_t>(1);
    if (name == "int16") return ka::scalar<std::int16_t>(1);
    if (name == "int32") return ka::scalar<std::int32_t>(1);
    if (name == "int64") return ka::scalar<std::int64_t>(1);
    if (name == "uint8") return ka::scalar<std::uint8_t>(1);
    if (name == "uint16") return ka::scalar<std::uint16_t>(1);
    if (name == "uint32") return ka::scalar<std::uint32_t>(1);
    if (name == "uint64") return ka::scalar<std::uint64_t>(1);
    if (name == "cdouble") return ka::scalar(std::complex<double>(1, 1));
    return ka::scalar(std::complex<float>(1, 1));
}

// The result of row with column: a class by its index in `classes`, I for two different
// integers refused, C for complex with an integer refused.
//                          d    s    l    c    i8   i16  i32  i64  u8   u16  u32  u64  cd   cs
const char* const table[] = {
    /* double  */ "d s d d i8 i16 i32 i64 u8 u16 u32 u64 cd cs",
    /* single  */ "s s s s i8 i16 i32 i64 u8 u16 u32 u64 cs cs",
    /* logical */ "d s d d i8 i16 i32 i64 u8 u16 u32 u64 cd cs",
    /* char    */ "d s d d i8 i16 i32 i64 u8 u16 u32 u64 cd cs",
    /* int8    */ "i8 i8 i8 i8 i8 I I I I I I I C C",
    /* int16   */ "i16 i16 i16 i16 I i16 I I I I I I C C",
    /* int32   */ "i32 i32 i32 i32 I I i32 I I I I I C C",
    /* int64   */ "i64 i64 i64 i64 I I I i64 I I I I C C",
    /* uint8   */ "u8 u8 u8 u8 I I I I u8 I I I C C",
    /* uint16  */ "u16 u16 u16 u16 I I I I I u16 I I C C",
    /* uint32  */ "u32 u32 u32 u32 I I I I I I u32 I C C",
    /* uint64  */ "u64 u64 u64 u64 I I I I I I I u64 C C",
    /* cdouble */ "cd cs cd cd C C C C C C C C cd cs",
    /* csingle */ "cs cs cs cs C C C C C C C C cs cs",
};

std::string classOf(const kaArray_tag* array) {
    const std::string name(ka::className(matrix::classId(array)));
    static const std::map<std::string, std::string> shortNames = {
        {"double", "d"}, {"single", "s"},   {"logical", "l"},  {"char", "c"},
        {"int8", "i8"},  {"int16", "i16"},  {"int32", "i32"},  {"int64", "i64"},
        {"uint8", "u8"}, {"uint16", "u16"}, {"uint32", "u32"}, {"uint64", "u64"}};
    return (matrix::isComplex(array) ? "c" : "") + shortNames.at(name);
}

// The elements of a real array of any numeric class, as doubles.
std::vector<double> valuesOf(const kaArray_tag* array) {
    const auto as = [&]<class T>() {
        const std::vector<T> elements = testsupport::elementsOf<T>(array);
        return std::vector<double>(elements.begin(), elements.end());
    };
    switch (matrix::classId(array)) {
        case kaDOUBLE_CLASS: return as.template operator()<double>();
        case kaSINGLE_CLASS: return as.template operator()<float>();
        case kaINT8_CLASS: return as.template operator()<std::int8_t>();
        case kaINT16_CLASS: return as.template operator()<std::int16_t>();
        case kaINT32_CLASS: return as.template operator()<std::int32_t>();
        case kaINT64_CLASS: return as.template operator()<std::int64_t>();
        case kaUINT8_CLASS: return as.template operator()<std::uint8_t>();
        case kaUINT16_CLASS: return as.template operator()<std::uint16_t>();
        case kaUINT32_CLASS: return as.template operator()<std::uint32_t>();
        case kaUINT64_CLASS: return as.template operator()<std::uint64_t>();
        default: return {};
    }
}

class Arithmetic : public testsupport::LiveArrayTest {
protected:
    // The result of name(a, b), or "error: <what>".
    static std::string call(const char* name, const ka::ArrayPtr& a, const ka::ArrayPtr& b,
                            ka::ArrayPtr* result = nullptr) {
        kaArray_tag* prhs[] = {a.get(), b.get()};
        kaArray_tag* plhs[1] = {nullptr};
        try {
            modules()->find(name)->invoke(1, plhs, 2, prhs,
                                          BuiltinFcn::VariantsToConsider::InvokeNoOrro);
        } catch (const std::exception& error) {
            return std::string("error: ") + error.what();
        }
        ka::ArrayPtr out(plhs[0]);
        const std::string text = classOf(out.get());
        if (result != nullptr) *result = std::move(out);
        return text;
    }
};

TEST_F(Arithmetic, EveryPairOfClasses) {
    for (std::size_t row = 0; row < std::size(classes); ++row) {
        std::istringstream expected(table[row]);
        for (std::size_t column = 0; column < std::size(classes); ++column) {
            std::string want;
            expected >> want;
            const auto a = one(classes[row]), b = one(classes[column]);
            const auto name = [](const char* c) {
                const std::string s(c);
                return s[0] == 'c' && s != "char" ? "complex " + s.substr(1) : s;
            };
            if (want == "I") {
                want = "error: integers of different classes cannot be combined: " +
                       name(classes[row]) + " and " + name(classes[column]);
            } else if (want == "C") {
                want =
                    "error: complex values and integers cannot be combined: " + name(classes[row]) +
                    " and " + name(classes[column]);
            }
            for (const char* op : {"plus", "minus", "times"}) {
                EXPECT_EQ(call(op, a, b), want)
                    << op << "(" << classes[row] << ", " << classes[column] << ")";
            }
        }
    }
}

// Integer results: computed in double, halves away from zero, saturated at both ends, NaN 0;
// char codes count as numbers; arrays broadcast like scalars.
TEST_F(Arithmetic, ValuesAtTheEdges) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const struct {
        const char* op;
        ka::ArrayPtr a, b;
        std::vector<double> values;
    } cases[] = {
        {"plus", ka::scalar<std::int8_t>(100), ka::scalar<std::int8_t>(100), {127}},
        {"minus", ka::scalar<std::int8_t>(-100), ka::scalar<std::int8_t>(100), {-128}},
        {"minus", ka::scalar<std::uint8_t>(3), ka::scalar(5.0), {0}},
        {"plus", ka::scalar<std::int16_t>(2), ka::scalar(0.5), {3}},
        {"plus", ka::scalar<std::int16_t>(-2), ka::scalar(-0.5), {-3}},
        {"plus", ka::scalar<std::int32_t>(7), ka::scalar(nan), {0}},
        {"plus", ka::scalar<std::uint32_t>(7), ka::scalar(inf), {4294967295.0}},
        {"times", ka::scalar<std::int64_t>(2), ka::scalar(-inf), {-9223372036854775808.0}},
        {"times", ka::scalar<std::uint16_t>(300), ka::scalar(1.0f / 3), {100}},
        {"plus", ka::charArray(u"a"), ka::scalar(1.0), {98}},
        {"minus", ka::charArray(u"ab"), ka::charArray(u"aa"), {0, 1}},
        {"plus", ka::scalar(true), ka::scalar<std::int8_t>(127), {127}},
        {"plus",
         ka::row<std::int16_t>({1, 2, 3}),
         ka::column({0.5, 100000.0}),
         {2, 32767, 3, 32767, 4, 32767}},
    };
    for (const auto& c : cases) {
        ka::ArrayPtr result;
        const std::string cls = call(c.op, c.a, c.b, &result);
        ASSERT_TRUE(result) << cls;
        EXPECT_EQ(valuesOf(result.get()), c.values) << c.op << " giving " << cls;
    }
}

}  // namespace
}  // namespace arithmetictest
