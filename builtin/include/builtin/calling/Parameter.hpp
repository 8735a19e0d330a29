// Parameter: the one currency of values between the interpreter, the engine and native
// functions. Thirteen unboxed numbers and three pointers in a tagged union whose alternative
// number (`which()`) is the type index of all calling code: 0 to 12 numeric, 13 array,
// 14 string, 15 object; as an output index 16 means "no output".
//
// The order of the alternatives is a stored number: wrapper tables are indexed by it and code
// all over the library switches on `which()`. Never reorder them.
#pragma once

#include <boost/container/small_vector.hpp>
#include <boost/mpl/at.hpp>
#include <boost/mpl/find.hpp>
#include <boost/mpl/size.hpp>
#include <boost/mpl/vector.hpp>
#include <boost/variant/get.hpp>
#include <boost/variant/variant.hpp>

#include <engine/opaque.hpp>

#include <complex>
#include <cstddef>
#include <cstdint>
#include <type_traits>

// The array of the array library; a Parameter only carries a pointer to it.
struct kaArray_tag;

namespace Norvane::orro {

// The sixteen alternatives as a type list, in `which` order. The exported selectors take a null
// pointer to it as a tag.
using ParameterTypes =
    boost::mpl::vector<std::uint64_t,         //  0 unsigned __int64
                       double,                //  1
                       float,                 //  2
                       bool,                  //  3
                       signed char,           //  4
                       short,                 //  5
                       int,                   //  6
                       std::int64_t,          //  7 __int64
                       unsigned char,         //  8
                       unsigned short,        //  9 also a 16-bit character code unit
                       unsigned int,          // 10
                       std::complex<double>,  // 11
                       std::complex<float>,   // 12
                       kaArray_tag*,  // 13 carries one counted reference, owned by the receiver
                       Norvane::String::String*,   // 14 not owned
                       Norvane::orro::OrroObject*  // 15 not owned
                       >;

// A plain value: copying copies a number or a pointer and nothing is ever released by it.
// A default Parameter is alternative 0 with value 0.
using Parameter = boost::variant<std::uint64_t, double, float, bool, signed char, short, int,
                                 std::int64_t, unsigned char, unsigned short, unsigned int,
                                 std::complex<double>, std::complex<float>, kaArray_tag*,
                                 Norvane::String::String*, Norvane::orro::OrroObject*>;

// The argument list of a typed entry; eight arguments need no allocation.
using ParameterList = boost::container::small_vector<Parameter, 8>;

// Number of alternatives, and the output index of a function without an output.
inline constexpr std::size_t parameterTypeCount = 16;
inline constexpr std::size_t noOutputIndex = 16;

namespace detail {

template <class T>
constexpr std::size_t findParameterIndex() {
    if constexpr (std::is_void_v<T>) {
        return noOutputIndex;
    } else {
        using Position = typename boost::mpl::find<ParameterTypes, T>::type::pos;
        static_assert(Position::value < parameterTypeCount, "T is not an alternative of Parameter");
        return Position::value;
    }
}

template <class Types, std::size_t Index>
using TypeAt = typename boost::mpl::at_c<Types, static_cast<long>(Index)>::type;

template <std::size_t Index, class T>
constexpr bool holdsAt() {
    return std::is_same_v<TypeAt<ParameterTypes, Index>, T> &&
           std::is_same_v<TypeAt<Parameter::types, Index>, T>;
}

}  // namespace detail

// The type index of T, as a module computes it for its native signature: the `which` number of
// T's alternative, or noOutputIndex for void.
template <class T>
inline constexpr std::size_t parameterIndexOf = detail::findParameterIndex<T>();

// The type of alternative Index.
template <std::size_t Index>
using ParameterAlternative = detail::TypeAt<ParameterTypes, Index>;

static_assert(boost::mpl::size<ParameterTypes>::value == parameterTypeCount);
static_assert(boost::mpl::size<Parameter::types>::value == parameterTypeCount);
static_assert(detail::holdsAt<0, std::uint64_t>() && detail::holdsAt<1, double>() &&
                  detail::holdsAt<2, float>() && detail::holdsAt<3, bool>() &&
                  detail::holdsAt<4, signed char>() && detail::holdsAt<5, short>() &&
                  detail::holdsAt<6, int>() && detail::holdsAt<7, std::int64_t>() &&
                  detail::holdsAt<8, unsigned char>() && detail::holdsAt<9, unsigned short>() &&
                  detail::holdsAt<10, unsigned int>() &&
                  detail::holdsAt<11, std::complex<double>>() &&
                  detail::holdsAt<12, std::complex<float>>() &&
                  detail::holdsAt<13, kaArray_tag*>() &&
                  detail::holdsAt<14, Norvane::String::String*>() &&
                  detail::holdsAt<15, Norvane::orro::OrroObject*>(),
              "the alternatives of Parameter are out of their stored order");
static_assert(sizeof(std::uint64_t) == 8 && sizeof(std::int64_t) == 8);

}  // namespace Norvane::orro

namespace Norvane::builtin {
using orro::noOutputIndex;
using orro::Parameter;
using orro::ParameterAlternative;
using orro::parameterIndexOf;
using orro::ParameterList;
using orro::parameterTypeCount;
using orro::ParameterTypes;
}  // namespace Norvane::builtin
