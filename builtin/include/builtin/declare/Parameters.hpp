// What each C++ parameter type of a native function means to a declaration: how many ArgTypes
// it stands for and the getter of them, the Parameter alternative in which a value of it
// arrives, and how the entry turns that Parameter into the C++ value (and a result back).
//
// Declarable parameter types:
//   numbers       double, float, bool, the <cstdint> integers, std::complex<double>,
//                 std::complex<float>: unboxed, passed as they are
//   char16_t      one character, unboxed (alternative 9)
//   arrays        kaArray_tag* (any array; the function owns the reference it is given),
//                 const kaArray_tag* (any array, borrowed for the call), and the views of
//                 Arrays.hpp (Row<T>, Matrix<T>, Array<T>, Sparse<T>, ...); the open ones
//                 (any array, Array<T>) are relaxed whatever the declaration says
//   strings       std::u16string, std::string, std::u16string_view: a scalar string, a char
//                 row or an empty char array, always relaxed (a 1-by-1 char is a string too);
//                 ScalarString: a scalar string only
// Results: the numbers and char16_t, kaArray_tag* (a new reference, handed on), ka::ArrayPtr,
// std::u16string and std::string (returned as a string), or void.
//
// Parameters may also be taken by const reference (const std::string&, const double&). Any other
// type stops the build with one error, at UndeclarableParameter<position, T> (position from 1)
// or UndeclarableResult<T>, which name it.
#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include <boost/container/small_vector.hpp>
#include <boost/mpl/contains.hpp>
#include <boost/variant/get.hpp>

#include <ka/ka.hpp>

#include <builtin/calling/Parameter.hpp>
#include <builtin/declare/Arrays.hpp>
#include <builtin/types/NativeArgTypes.hpp>
#include <builtin/types/StringTraits.hpp>

namespace Norvane::builtin::declare {

// The arrays that an entry holds for the length of one call.
using CallHolders = boost::container::small_vector<
    std::unique_ptr<const kaArray_tag, matrix::detail::kaDestroy_deleter>, 8>;

namespace detail {

template <std::size_t Position, class T>
struct UndeclarableParameter {
    static_assert(Position == 0,
                  "the parameter at this position has a type that no builtin can take: see "
                  "<builtin/declare/Parameters.hpp> for the types that can");
};

template <class T>
struct UndeclarableResult {
    static_assert(sizeof(T) == 0,
                  "this result type is not one that a builtin can give: see "
                  "<builtin/declare/Parameters.hpp> for the types that can");
};

// Takes the array of an argument into the holders (it carries one reference) and returns it.
inline const kaArray_tag* holdArray(const Parameter& argument, CallHolders& holders) {
    const kaArray_tag* array = boost::get<kaArray_tag*>(argument);
    holders.emplace_back(array);
    return array;
}

// The element types whose 1-by-1 arrays classify as unboxed numbers.
template <class T>
constexpr bool isUnboxedNumber =
    std::is_arithmetic_v<T> || std::is_same_v<T, std::complex<double>> ||
    std::is_same_v<T, std::complex<float>>;

// The unboxed numbers that are alternatives of Parameter themselves (char16_t is not: it travels
// as unsigned short).
template <class T>
constexpr bool isNumericAlternative() {
    if constexpr (isUnboxedNumber<T> && !std::is_same_v<T, char16_t> &&
                  boost::mpl::contains<ParameterTypes, T>::value) {
        return parameterIndexOf<T> < parameterIndexOf<kaArray_tag*>;
    } else {
        return false;
    }
}

}  // namespace detail

// A type without traits is not declarable; `def` says so once, naming it (isDeclarableInput).
template <class T, class = void>
struct ParameterTraits {};

// Unboxed numbers: exactly the numeric alternatives of Parameter.
template <class T>
struct ParameterTraits<T, std::enable_if_t<detail::isNumericAlternative<T>()>> {
    using Arrives = T;
    static constexpr std::size_t count = 1;
    static constexpr types::ArgTypeGetter getter =
        &types::getNativeArgType<T, types::NativeShape::SCALAR>;
    static T from(const Parameter& argument, CallHolders&) { return boost::get<T>(argument); }
    static Parameter toParameter(T value) { return Parameter(value); }
};

template <>
struct ParameterTraits<char16_t> {
    using Arrives = unsigned short;
    static constexpr std::size_t count = 1;
    static constexpr types::ArgTypeGetter getter =
        &types::getNativeArgType<char16_t, types::NativeShape::SCALAR>;
    static char16_t from(const Parameter& argument, CallHolders&) {
        return static_cast<char16_t>(boost::get<unsigned short>(argument));
    }
    static Parameter toParameter(char16_t value) {
        return Parameter(static_cast<unsigned short>(value));
    }
};

template <>
struct ParameterTraits<kaArray_tag*> {
    using Arrives = kaArray_tag*;
    static constexpr std::size_t count = 1;
    static constexpr bool alwaysRelaxed = true;
    static constexpr types::ArgTypeGetter getter = &types::anyArrayArgType;
    static kaArray_tag* from(const Parameter& argument, CallHolders& holders) {
        return const_cast<kaArray_tag*>(detail::holdArray(argument, holders));
    }
    // Once every argument is converted, the function gets a reference of its own; the holders
    // give back the argument's.
    static void handOver(kaArray_tag* array) { matrix::takeReference(array); }
    static Parameter toParameter(kaArray_tag* value) { return Parameter(value); }
};

template <>
struct ParameterTraits<const kaArray_tag*> {
    using Arrives = kaArray_tag*;
    static constexpr std::size_t count = 1;
    static constexpr bool alwaysRelaxed = true;
    static constexpr types::ArgTypeGetter getter = &types::anyArrayArgType;
    static const kaArray_tag* from(const Parameter& argument, CallHolders& holders) {
        return detail::holdArray(argument, holders);
    }
};

template <>
struct ParameterTraits<ka::ArrayPtr> {
    static constexpr types::ArgTypeGetter getter = &types::anyArrayArgType;
    static Parameter toParameter(ka::ArrayPtr value) { return Parameter(value.release()); }
};

template <class T, types::NativeShape Shape>
struct ParameterTraits<ArrayView<T, Shape>> {
    static_assert(Shape != types::NativeShape::SCALAR || !detail::isUnboxedNumber<T>,
                  "a 1-by-1 array of a number arrives unboxed: declare the number itself");
    using Arrives = kaArray_tag*;
    static constexpr std::size_t count = 1;
    static constexpr types::ArgTypeGetter getter = &types::getNativeArgType<T, Shape>;
    static ArrayView<T, Shape> from(const Parameter& argument, CallHolders& holders) {
        return ArrayView<T, Shape>(detail::holdArray(argument, holders));
    }
};

template <class T>
struct ParameterTraits<Array<T>> {
    using Arrives = kaArray_tag*;
    static constexpr std::size_t count = 1;
    static constexpr bool alwaysRelaxed = true;
    static constexpr types::ArgTypeGetter getter = &types::getAnyShapeArgType<T>;
    static Array<T> from(const Parameter& argument, CallHolders& holders) {
        return Array<T>(detail::holdArray(argument, holders));
    }
};

template <class T>
struct ParameterTraits<Sparse<T>> {
    using Arrives = kaArray_tag*;
    static constexpr std::size_t count = 1;
    static constexpr types::ArgTypeGetter getter =
        &types::getNativeArgType<T, types::NativeShape::SPARSE>;
    static Sparse<T> from(const Parameter& argument, CallHolders& holders) {
        return Sparse<T>(detail::holdArray(argument, holders));
    }
};

// The string family. The array moves into the holders, which the string traits expect.
template <class S>
struct ParameterTraits<
    S, std::enable_if_t<std::is_same_v<S, std::u16string> || std::is_same_v<S, std::string> ||
                        std::is_same_v<S, std::u16string_view>>> {
    using Arrives = kaArray_tag*;
    static constexpr std::size_t count = types::nativeStringArgTypeCount;
    // A live scalar string is a flag or a string type, which only a relaxed array type takes.
    static constexpr bool alwaysRelaxed = true;
    static constexpr types::ArgTypeGetter getter = &types::nativeStringArgType;
    static S from(const Parameter& argument, CallHolders& holders) {
        return types::TypeTraitsImpl<S>()(boost::get<kaArray_tag*>(argument), holders);
    }
    static Parameter toParameter(S value) {
        static_assert(!std::is_same_v<S, std::u16string_view>, "a view cannot be a result");
        return Parameter(types::TypeTraitsImpl<S>()(std::move(value)));
    }
};

// One string of the language's string class, not a char array: the text as a view for the call.
struct ScalarString {
    std::u16string_view text;
};

template <>
struct ParameterTraits<ScalarString> {
    using Arrives = kaArray_tag*;
    static constexpr std::size_t count = 1;
    static const types::ArgType& getArgType(std::size_t index) {
        if (index != 0) types::detail::throwInvalidSubscript();
        return types::TypeTraitsImpl<
            const types::detail::ScalarKeldorStringPlaceholder*>::getArgType();
    }
    static constexpr types::ArgTypeGetter getter = &getArgType;
    static ScalarString from(const Parameter& argument, CallHolders& holders) {
        return {types::TypeTraitsImpl<std::u16string_view>()(boost::get<kaArray_tag*>(argument),
                                                             holders)};
    }
};

// Whether a parameter of type T can be declared, and a result of type T given.
template <class T>
constexpr bool isDeclarableInput() {
    return requires(const Parameter& argument, CallHolders& holders) {
        ParameterTraits<T>::count;
        ParameterTraits<T>::getter;
        ParameterTraits<T>::from(argument, holders);
    };
}
template <class T>
constexpr bool isDeclarableResult() {
    return std::is_void_v<T> || std::is_same_v<T, kaArray_tag*> || requires(T value) {
        ParameterTraits<T>::toParameter(std::move(value));
    };
}

// Whether the type stands for arrays of open shape, which only a relaxed type can take: such a
// parameter is relaxed whatever its declaration's tolerance.
template <class T>
constexpr bool alwaysRelaxed() {
    if constexpr (requires { ParameterTraits<T>::alwaysRelaxed; }) {
        return ParameterTraits<T>::alwaysRelaxed;
    } else {
        return false;
    }
}

// What happens to a converted argument just before the call; for most types nothing.
template <class T>
void handOver(T& value) {
    if constexpr (requires { ParameterTraits<T>::handOver(value); })
        ParameterTraits<T>::handOver(value);
}

// Whether T reaches a wrapper of the library's family as it is: it is the alternative itself.
template <class T>
constexpr bool passesAsItIs() {
    if constexpr (std::is_void_v<T>) {
        return true;
    } else if constexpr (requires { typename ParameterTraits<T>::Arrives; }) {
        return std::is_same_v<typename ParameterTraits<T>::Arrives, T>;
    } else {
        return false;
    }
}

}  // namespace Norvane::builtin::declare
