// Declaring a builtin from native functions, one line each:
//
//   declare::Builtin plus("plus");
//   plus.def(&addDoubles, declare::pure, declare::elementwise)   // double f(double, double)
//       .def(&joinStrings, declare::pure);                        // std::u16string f(...)
//   declare::Builtin size("size");
//   size.fallback(&sizeOfArrays, declare::pure);                  // an array function
//   declare::DeclaredBuiltin done(std::move(plus));               // lists and BuiltinFcn
//
// From the C++ type of each function the templates here work out, at compile time, the possible
// ArgTypes of each parameter (Parameters.hpp), the calling convention (Signature.hpp) and the
// typed entry: the library's wrapper for up to two inputs that are Parameter alternatives, the
// lifted entry for an element-wise kernel, and otherwise an entry of the module's own that
// converts (Entries.hpp). Everything else is ordinary code in the library.
#pragma once

#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <builtin/calling/ElementWise.hpp>
#include <builtin/calling/InlineCWrappers.hpp>
#include <builtin/config.hpp>
#include <builtin/declare/Entries.hpp>
#include <builtin/declare/Objects.hpp>
#include <builtin/declare/Options.hpp>
#include <builtin/declare/Parameters.hpp>
#include <builtin/declare/Signature.hpp>
#include <builtin/invoke/BuiltinFcn.hpp>
#include <builtin/variants/ArgTypes.hpp>
#include <builtin/variants/BuiltinVariantLists.hpp>

namespace Norvane::builtin::declare {

namespace detail {

// The engine-only variants of one boxing declaration: their entry and their inputs.
struct BoxingRecord {
    TypedEntry entry;
    std::vector<ArgType> inputs;
};

// One native function, made plain for the library.
struct FunctionRecord {
    void* developerFunction;
    OrroFunctionDescriptor descriptor;
    BuiltinVariant::IsElementWise elementWise;
    builtinreg::ArgTypes signatures;
    std::vector<BoxingRecord> boxing;
};

template <class Fn, class... B>
void addBoxingOf(std::vector<BoxingRecord>& records, const option::Boxed<B...>&) {
    using S = Signature<Fn>;
    records.push_back(
        {BoxingEntry<Fn, typename S::Output, typename S::Inputs, TypeList<B...>>::entry,
         {ParameterTraits<B>::getter(0)...}});
}

// Sets the tolerance RELAXED at the positions marked open, in every signature.
BUILTIN_API void relaxOpenParameters(builtinreg::ArgTypes& signatures,
                                     std::initializer_list<bool> open);

template <class T>
constexpr types::ArgTypeGetter outputGetter() {
    if constexpr (std::is_void_v<T>) {
        return nullptr;
    } else if constexpr (std::is_same_v<T, kaArray_tag*> || std::is_same_v<T, ka::ArrayPtr>) {
        return &types::plainArrayArgType;
    } else {
        return ParameterTraits<T>::getter;
    }
}

template <class Fn, class Inputs>
struct Declared;

template <class Fn, class... Inputs>
struct Declared<Fn, TypeList<Inputs...>> {
    using S = Signature<Fn>;
    using Output = typename S::Output;

    static builtinreg::ArgTypes signatures(types::SignatureTolerance tolerance) {
        builtinreg::ArgTypes made =
            builtinreg::getArgTypes(tolerance, {ParameterTraits<Inputs>::count...},
                                    {ParameterTraits<Inputs>::getter...}, outputGetter<Output>());
        relaxOpenParameters(made, {alwaysRelaxed<Inputs>()...});
        return made;
    }

    // The library's wrapper where the types pass as they are, by value, else the module's own
    // entry.
    static TypedEntry plainEntry() {
        if constexpr (sizeof...(Inputs) <= 2 && !S::takesReferences &&
                      (passesAsItIs<Inputs>() && ...) && passesAsItIs<Output>()) {
            return builtinreg::detail::getExportedInlineCWrapperFcn(
                nullptr, parameterIndexOf<Output>, parameterIndexOf<Inputs>...);
        } else {
            return ConvertingEntry<Fn, Output, TypeList<Inputs...>>::entry;
        }
    }

    static TypedEntry liftedEntry() {
        static_assert(
            sizeof...(Inputs) >= 1 && sizeof...(Inputs) <= 2 &&
                (std::is_same_v<Inputs, Output> && ...) && detail::isUnboxedNumber<Output> &&
                !std::is_same_v<Output, char16_t>,
            "an element-wise kernel is T f(T) or T f(T, T) with T one of the unboxed numbers");
        static_assert(!S::takesReferences, "an element-wise kernel takes its numbers by value");
        return builtinreg::detail::getElementWiseEntry(nullptr, parameterIndexOf<Output>,
                                                       parameterIndexOf<Inputs>...);
    }
};

// The first type of the function that cannot be declared, named by the one error of the build:
// the inputs from the first (position 1), then the result.
template <std::size_t Position, class... Inputs>
struct FirstUndeclarable;
template <std::size_t Position>
struct FirstUndeclarable<Position> {
    static constexpr bool found = false;
};
template <std::size_t Position, class T, class... Rest>
struct FirstUndeclarable<Position, T, Rest...> {
    static constexpr bool found =
        !isDeclarableInput<T>() || FirstUndeclarable<Position + 1, Rest...>::found;
    static void refuse() {
        if constexpr (!isDeclarableInput<T>()) {
            (void)sizeof(UndeclarableParameter<Position, T>);
        } else {
            FirstUndeclarable<Position + 1, Rest...>::refuse();
        }
    }
};

template <class Fn, class Inputs = typename Signature<Fn>::Inputs>
struct Declarable;
template <class Fn, class... Inputs>
struct Declarable<Fn, TypeList<Inputs...>> {
    using Output = typename Signature<Fn>::Output;
    static constexpr bool value =
        !FirstUndeclarable<1, Inputs...>::found && isDeclarableResult<Output>();
    static void refuse() {
        if constexpr (FirstUndeclarable<1, Inputs...>::found) {
            FirstUndeclarable<1, Inputs...>::refuse();
        } else {
            (void)sizeof(UndeclarableResult<Output>);
        }
    }
};

template <class D, bool Lifted>
TypedEntry entryOf() {
    if constexpr (Lifted) {
        return D::liftedEntry();
    } else {
        return D::plainEntry();
    }
}

// Adds the variants of one native function to those of the builtin `name`. Throws
// std::invalid_argument for a declaration that the function's form cannot keep.
BUILTIN_API void addFunction(std::vector<BuiltinVariant>& variants, const std::string& name,
                             FunctionRecord&& record, const Options& options);

// The default variant of an array function, wrapped in the guards of its declarations.
BUILTIN_API BuiltinVariant defaultVariantOf(BuiltinFcn::ArrayFunction function,
                                            const std::string& name, const Options& options);

}  // namespace detail

class BUILTIN_API Builtin {
public:
    explicit Builtin(std::string name);

    // Declares one native function with its options (Options.hpp).
    template <class Fn, class... Option>
    Builtin& def(Fn fn, const Option&... options) {
        static_assert(std::is_pointer_v<Fn> && std::is_function_v<std::remove_pointer_t<Fn>>,
                      "def takes a pointer to a native function");
        if constexpr (detail::Declarable<Fn>::value) {
            declareFunction(fn, options...);
        } else {
            // One error that names the type; nothing else of the declaration is compiled.
            detail::Declarable<Fn>::refuse();
        }
        return *this;
    }

    // The array function that takes the calls no declared function takes.
    template <class... Option>
    Builtin& fallback(BuiltinFcn::ArrayFunction function, const Option&... options) {
        Options declared;
        (options.applyTo(declared), ...);
        defaultVariant_ = detail::defaultVariantOf(function, name_, declared);
        return *this;
    }

    const std::string& name() const { return name_; }

private:
    template <class Fn, class... Option>
    void declareFunction(Fn fn, const Option&... options) {
        using D = detail::Declared<Fn, typename Signature<Fn>::Inputs>;
        constexpr bool lifted = (std::is_same_v<Option, option::ElementWise> || ...);
        Options declared;
        (options.applyTo(declared), ...);
        detail::FunctionRecord record{
            reinterpret_cast<void*>(fn),
            {detail::entryOf<D, lifted>(), reinterpret_cast<NativeEntry>(fn),
             Signature<Fn>::convention},
            lifted ? BuiltinVariant::IsElementWise::YES : BuiltinVariant::IsElementWise::NO,
            D::signatures(declared.tolerance),
            {}};
        (addBoxingIf<Fn>(record.boxing, options), ...);
        detail::addFunction(variants_, name_, std::move(record), declared);
    }

    template <class Fn, class Option>
    static void addBoxingIf(std::vector<detail::BoxingRecord>& records, const Option& option) {
        if constexpr (requires { detail::addBoxingOf<Fn>(records, option); }) {
            detail::addBoxingOf<Fn>(records, option);
        }
    }

    friend class DeclaredBuiltin;
    std::string name_;
    std::vector<BuiltinVariant> variants_;
    BuiltinVariant defaultVariant_;
};

// A declared builtin: its search lists and the BuiltinFcn over them, which lives as long as this.
class BUILTIN_API DeclaredBuiltin {
public:
    explicit DeclaredBuiltin(Builtin&& builtin);
    DeclaredBuiltin(const DeclaredBuiltin&) = delete;
    DeclaredBuiltin& operator=(const DeclaredBuiltin&) = delete;
    ~DeclaredBuiltin();

    const std::string& name() const { return function_->getName(); }
    const BuiltinFcn& function() const { return *function_; }
    const builtinreg::BuiltinVariantLists& lists() const { return lists_; }

private:
    builtinreg::BuiltinVariantLists lists_;
    std::unique_ptr<BuiltinFcn> function_;
};

}  // namespace Norvane::builtin::declare
