// The sample module's elementary functions against long double references: at most 1 ULP from
// the correctly rounded value over the whole range of the type, with libm's special values, for
// the scalar kernels and for the block kernels of every instruction set this CPU has, each forced
// in turn.
#include <Elementary.hpp>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace elementarytest {
namespace {

using namespace sample::elementary;

const Function functions[] = {Function::EXP, Function::LOG, Function::SIN, Function::COS,
                              Function::TANH};
const char* const names[] = {"exp", "log", "sin", "cos", "tanh"};

long double exact(Function f, long double x) {
    switch (f) {
        case Function::EXP: return std::exp(x);
        case Function::LOG: return std::log(x);
        case Function::SIN: return std::sin(x);
        case Function::COS: return std::cos(x);
        case Function::TANH: break;
    }
    return std::tanh(x);
}

// The distance from the exact value in units of the last place of T there; 0 for equal specials.
template <class T>
double ulps(T got, long double want) {
    const T rounded = static_cast<T>(want);
    if (std::isnan(want) || std::isnan(got)) return std::isnan(want) == std::isnan(got) ? 0 : 1e9;
    if (std::isinf(rounded) || std::isinf(got)) return got == rounded ? 0 : 1e9;
    const int exponent =
        std::max(std::ilogb(rounded == 0 ? std::numeric_limits<T>::min() : rounded),
                 std::numeric_limits<T>::min_exponent - 1);
    const long double unit = std::ldexp(1.0L, exponent - std::numeric_limits<T>::digits + 1);
    return static_cast<double>(std::fabs(static_cast<long double>(got) - want) / unit);
}

// Inputs over the whole range of T (random bit patterns of finite values), and denser in the
// range where each function does its work, with the special values the language relies on.
template <class T>
std::vector<T> inputs(Function f) {
    using Bits = std::conditional_t<sizeof(T) == 8, std::uint64_t, std::uint32_t>;
    std::mt19937_64 random(static_cast<unsigned>(f) + sizeof(T));
    std::vector<T> values = {T(0),
                             -T(0),
                             T(1),
                             T(-1),
                             std::numeric_limits<T>::infinity(),
                             -std::numeric_limits<T>::infinity(),
                             std::numeric_limits<T>::quiet_NaN(),
                             std::numeric_limits<T>::min(),
                             std::numeric_limits<T>::denorm_min(),
                             std::numeric_limits<T>::max(),
                             T(709.78),
                             T(710),
                             T(-745.1),
                             T(-746),
                             T(88.7),
                             T(-103.9)};
    while (values.size() < 20000) {
        const T x = std::bit_cast<T>(static_cast<Bits>(random()));
        if (std::isfinite(x)) values.push_back(x);
    }
    const T high = f == Function::EXP ? T(sizeof(T) == 8 ? 720 : 100) : T(50);
    std::uniform_real_distribution<T> nearby(f == Function::LOG ? T(0) : -high, high);
    while (values.size() < 60000) values.push_back(nearby(random));
    return values;
}

template <class T>
void sweep(const std::string& road, bool blocks) {
    for (std::size_t k = 0; k < std::size(functions); ++k) {
        const Function f = functions[k];
        const std::vector<T> x = inputs<T>(f);
        std::vector<T> y(x.size());
        if (blocks) {
            block(f, x.data(), y.data(), x.size());
        } else {
            for (std::size_t i = 0; i < x.size(); ++i) y[i] = scalar(f, x[i]);
        }
        double worst = 0;
        T worstAt = 0;
        for (std::size_t i = 0; i < x.size(); ++i) {
            const double error = ulps(y[i], exact(f, x[i]));
            if (error > worst) worst = error, worstAt = x[i];
        }
        // The references are themselves within a few ULPs of long double, 2^-11 of T's.
        EXPECT_LE(worst, 1.001) << road << " " << names[k] << (sizeof(T) == 8 ? "" : "f") << " at "
                                << worstAt;
    }
}

TEST(Elementary, AtMostOneUlpOnEveryRoad) {
    sweep<double>("scalar", false);
    sweep<float>("scalar", false);
    const InstructionSet chosen = instructionSet();
    for (const InstructionSet set :
         {InstructionSet::SSE2, InstructionSet::AVX2, InstructionSet::AVX512}) {
        if (!useInstructionSet(set)) {
            std::printf("[ skipped  ] %s: this CPU does not have it\n", nameOf(set).data());
            continue;
        }
        sweep<double>(std::string(nameOf(set)), true);
        sweep<float>(std::string(nameOf(set)), true);
    }
    useInstructionSet(chosen);
}

// libm's answers at the edges, with the sign of zero, on every road.
TEST(Elementary, SpecialValuesAsLibmGivesThem) {
    const double inf = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        Function f;
        double x, y;
    } cases[] = {
        {Function::EXP, -inf, 0},  {Function::EXP, 710, inf},  {Function::EXP, -746, 0},
        {Function::EXP, inf, inf}, {Function::LOG, 0, -inf},   {Function::LOG, -0.0, -inf},
        {Function::LOG, inf, inf}, {Function::LOG, -1, nan},   {Function::SIN, -0.0, -0.0},
        {Function::SIN, inf, nan}, {Function::COS, 0, 1},      {Function::TANH, -0.0, -0.0},
        {Function::TANH, inf, 1},  {Function::TANH, -inf, -1}, {Function::SIN, nan, nan},
        {Function::EXP, nan, nan}, {Function::COS, inf, nan},  {Function::LOG, nan, nan},
    };
    const InstructionSet chosen = instructionSet();
    for (const InstructionSet set :
         {InstructionSet::SSE2, InstructionSet::AVX2, InstructionSet::AVX512}) {
        if (!useInstructionSet(set)) continue;
        for (const auto& c : cases) {
            double viaBlock = 0;
            block(c.f, &c.x, &viaBlock, 1);
            for (const double got : {scalar(c.f, c.x), viaBlock}) {
                SCOPED_TRACE(::testing::Message()
                             << nameOf(set) << " " << names[static_cast<int>(c.f)] << "(" << c.x
                             << ")");
                if (std::isnan(c.y)) {
                    EXPECT_TRUE(std::isnan(got));
                } else {
                    EXPECT_EQ(got, c.y);
                    EXPECT_EQ(std::signbit(got), std::signbit(c.y));
                }
            }
        }
    }
    useInstructionSet(chosen);
}

}  // namespace
}  // namespace elementarytest
