// Declaring a builtin from native functions, one line each:
//
//   declare::Builtin plus("plus");
//   plus.def<&addDoubles>(declare::pure, declare::elementwise)  // double f(double, double)
//       .def(&joinStrings, declare::pure);                      // std::u16string f(...)
//   declare::Builtin size("size");
//   size.fallback(&sizeOfArrays, declare::pure);                // an array function
//   declare::DeclaredBuiltin done(std::move(plus));             // lists and BuiltinFcn
//
// A function is a pointer, a function named as a template argument, a lambda without captures
// or a functor; the last three are known at compile time, so element-wise loops call them inline.
// From the C++ type of each function the templates here work out, at compile time, the possible
// ArgTypes of each parameter (Parameters.hpp), the calling convention (Signature.hpp) and the
// typed entry: the library's wrapper for up to two inputs that are Parameter alternatives, a
// lifted entry for an element-wise kernel (LiftedEntry.hpp), and otherwise an entry of the
// module's own that converts (Entries.hpp). A result of several outputs adds a default
// implementation (Outputs.hpp). Everything else is ordinary code in the library.
#pragma once

#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <builtin/calling/ElementWise.hpp>
#include <builtin/calling/InlineCWrappers.hpp>
#include <builtin/calling/LiftKernels.hpp>
#include <builtin/calling/LiftedEntry.hpp>
#include <builtin/config.hpp>
#include <builtin/declare/Callables.hpp>
#include <builtin/declare/Entries.hpp>
#include <builtin/declare/Objects.hpp>
#include <builtin/declare/Options.hpp>
#include <builtin/declare/Outputs.hpp>
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
    std::string mistake;  // what makes the declaration impossible, if anything
    // A function of several outputs: the entry of calls that ask for more than one, and the
    // builtin's table of such functions, which its variants join.
    MultiEntry severalOutputsEntry = nullptr;
    MultiOutputs* severalOutputs = nullptr;
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
    } else if constexpr (isTuple<T>) {
        return outputGetter<std::remove_cvref_t<std::tuple_element_t<0, T>>>();
    } else {
        return ParameterTraits<T>::getter;
    }
}

// The possible types of an input of a kernel lifted over three or four inputs: the unboxed number,
// or an array of it in any shape. Such a kernel is not element-wise as the search knows it (that
// takes at most two arrays); its variants take arrays outright and its entry broadcasts them.
template <class T>
const types::ArgType& scalarOrAnyShape(std::size_t index) {
    return index == 0 ? types::getNativeArgType<T, types::NativeShape::SCALAR>(0)
                      : types::getAnyShapeArgType<T>(index - 1);
}

// Whether the kernel can be lifted: one to four unboxed numbers or characters by value, a number
// out.
template <class T>
constexpr bool liftedNumber() {
    if constexpr (std::is_void_v<T>) {
        return false;
    } else {
        return isNumericAlternative<T>();
    }
}
template <class Output, class... Inputs>
constexpr bool liftable() {
    return sizeof...(Inputs) >= 1 && sizeof...(Inputs) <= 4 && liftedNumber<Output>() &&
           ((liftedNumber<Inputs>() || std::is_same_v<Inputs, char16_t>)&&...);
}

// Stored: the plain function pointer type that the descriptor's nativeEntry holds, which the
// entries call by its own convention.
template <class Stored, class Inputs = typename Signature<Stored>::Inputs>
struct Declared;

template <class Stored, class... Inputs>
struct Declared<Stored, TypeList<Inputs...>> {
    using S = Signature<Stored>;
    using Output = typename S::Output;
    static constexpr bool liftable = detail::liftable<Output, Inputs...>();
    // Over one or two inputs the search lifts the kernel itself (isElementWise); over more the
    // variants take arrays.
    static constexpr bool searchLifts = sizeof...(Inputs) <= 2;

    static builtinreg::ArgTypes signatures(types::SignatureTolerance tolerance) {
        builtinreg::ArgTypes made =
            builtinreg::getArgTypes(tolerance, {ParameterTraits<Inputs>::count...},
                                    {ParameterTraits<Inputs>::getter...}, outputGetter<Output>());
        relaxOpenParameters(made, {alwaysRelaxed<Inputs>()...});
        return made;
    }

    static builtinreg::ArgTypes liftedSignatures(types::SignatureTolerance tolerance) {
        if constexpr (searchLifts) {
            return signatures(tolerance);
        } else {
            builtinreg::ArgTypes made =
                builtinreg::getArgTypes(tolerance, {(void(sizeof(Inputs)), std::size_t{2})...},
                                        {&scalarOrAnyShape<Inputs>...}, outputGetter<Output>());
            relaxOpenParameters(made, {(void(sizeof(Inputs)), true)...});
            return made;
        }
    }

    // The library's wrapper where the types pass as they are, by value, else the module's own
    // entry.
    static TypedEntry plainEntry() {
        if constexpr (sizeof...(Inputs) <= 2 && !S::takesReferences &&
                      (passesAsItIs<Inputs>() && ...) && passesAsItIs<Output>()) {
            return builtinreg::detail::getExportedInlineCWrapperFcn(
                nullptr, parameterIndexOf<Output>, parameterIndexOf<Inputs>...);
        } else {
            return ConvertingEntry<Stored, Output, TypeList<Inputs...>>::entry;
        }
    }
};

// A function given by pointer, known at run time: stored as it is, or behind its reporting
// function if it warns through warn(). Its lifted entry calls it through the pointer.
template <class Fn, bool Warns,
          bool Reporting = Warns&& Signature<Fn>::convention != JIT_CALLING_CONVENTION::CanThrow>
struct PointerDeclaration {
    using Stored = std::conditional_t<Reporting, typename ReportingOf<Fn>::Form, Fn>;
    static Stored stored(Fn fn) {
        if constexpr (Reporting) {
            return &ReportingOf<Fn>::call;
        } else {
            return fn;
        }
    }
    template <class Block, class Output, class... Inputs>
    static TypedEntry liftedEntry(TypeList<Inputs...>) {
        static_assert(std::is_void_v<Block>,
                      "a block kernel goes with a kernel known at compile time: def<&f>(...), a "
                      "lambda or a functor");
        return &builtinreg::detail::liftedEntry<
            builtinreg::detail::PointerKernel<Output, true, Inputs...>>;
    }
};

// A callable type, known at compile time: stored as its native function of the same form, or
// behind its reporting function if it warns through warn(). Its lifted entry calls it inline.
template <class F, bool Warns,
          bool Reporting = Warns&& Signature<F>::convention != JIT_CALLING_CONVENTION::CanThrow>
struct CallableDeclaration {
    using Stored = std::conditional_t<Reporting, typename ReportingOf<F>::Form,
                                      typename Signature<F>::Function>;
    static Stored stored(F) {
        if constexpr (Reporting) {
            return &ReportingOf<F>::call;
        } else {
            return &NativeOf<F>::call;
        }
    }
    template <class Block, class Output, class... Inputs>
    static TypedEntry liftedEntry(TypeList<Inputs...>) {
        return &builtinreg::detail::liftedEntry<builtinreg::detail::InlineKernel<
            F, Signature<F>::convention, Reporting, Block, Output, Inputs...>>;
    }
};

template <class Fn, bool Warns>
using DeclarationOf = std::conditional_t<isFunctionPointer<Fn>, PointerDeclaration<Fn, Warns>,
                                         CallableDeclaration<Fn, Warns>>;

// The block kernel among the options, or void.
template <class... Option>
struct BlockOf {
    using type = void;
};
template <class B, class... Rest>
struct BlockOf<option::Block<B>, Rest...> {
    using type = B;
};
template <class First, class... Rest>
struct BlockOf<First, Rest...> : BlockOf<Rest...> {};

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

// Adds the variants of one native function to those of the builtin `name` (and to its table of
// functions of several outputs, for such a function). Throws std::invalid_argument for a
// declaration that the function's form cannot keep.
BUILTIN_API void addFunction(std::vector<BuiltinVariant>& variants, const std::string& name,
                             FunctionRecord&& record, const Options& options);

// The default variant of an array function, wrapped in the guards of its declarations.
BUILTIN_API BuiltinVariant defaultVariantOf(BuiltinFcn::ArrayFunction function,
                                            const std::string& name, const Options& options);

}  // namespace detail

class BUILTIN_API Builtin {
public:
    explicit Builtin(std::string name);

    // Declares one native function with its options (Options.hpp): a pointer to a function, or
    // a lambda without captures or a functor, which element-wise loops can call inline.
    template <class Fn, class... Option>
    Builtin& def(Fn fn, const Option&... options) {
        static_assert(detail::isFunctionPointer<Fn> || detail::isStatelessCallable<Fn>,
                      "def takes a pointer to a function, a lambda without captures or a "
                      "functor without state");
        if constexpr (detail::Declarable<Fn>::value) {
            declareFunction(fn, options...);
        } else {
            // One error that names the type; nothing else of the declaration is compiled.
            detail::Declarable<Fn>::refuse();
        }
        return *this;
    }

    // The same for a function named as a template argument, known at compile time:
    // def<&f>(pure, elementwise).
    template <auto Fn, class... Option>
    Builtin& def(const Option&... options) {
        return def(Function<Fn>(), options...);
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
        constexpr bool lifted = (std::is_same_v<Option, option::ElementWise> || ...);
        constexpr bool reports = (std::is_same_v<Option, option::Warns> || ...) ||
                                 (std::is_same_v<Option, option::Throws> || ...);
        using Declaration = detail::DeclarationOf<Fn, reports>;
        using Stored = typename Declaration::Stored;
        using D = detail::Declared<Stored>;
        using Block = typename detail::BlockOf<Option...>::type;
        static_assert(std::is_void_v<Block> || lifted, "a block kernel needs elementwise");
        Options declared;
        (options.applyTo(declared), ...);
        if constexpr (reports && Signature<Fn>::convention != JIT_CALLING_CONVENTION::CanThrow) {
            // Behind its reporting function, a function reports what it was declared to.
            declared.warns = declared.warns.value_or(false);
            declared.errors = declared.errors.value_or(false);
        }
        const Stored stored = Declaration::stored(fn);
        detail::FunctionRecord record{
            detail::developerFunctionOf(fn, stored),
            {nullptr, reinterpret_cast<NativeEntry>(stored), Signature<Stored>::convention},
            BuiltinVariant::IsElementWise::NO,
            {},
            {},
            {}};
        if constexpr (!lifted) {
            record.descriptor.typedEntry = D::plainEntry();
            record.signatures = D::signatures(declared.tolerance);
        } else if constexpr (D::liftable) {
            record.descriptor.typedEntry =
                Declaration::template liftedEntry<Block, typename D::Output>(
                    typename Signature<Stored>::Inputs());
            record.signatures = D::liftedSignatures(declared.tolerance);
            if constexpr (D::searchLifts) {
                record.elementWise = BuiltinVariant::IsElementWise::YES;
            }
        } else {
            record.mistake =
                "elementwise takes a function of one to four numbers that returns a number, "
                "each by value";
        }
        (addBoxingIf<Stored>(record.boxing, options), ...);
        if constexpr (detail::isTuple<typename D::Output>) {
            record.severalOutputsEntry = &detail::MultiOutputEntry<Fn, typename D::Output>::call;
            record.severalOutputs = &severalOutputs();
        }
        detail::addFunction(variants_, name_, std::move(record), declared);
    }

    MultiOutputs& severalOutputs();

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
    std::shared_ptr<MultiOutputs> severalOutputs_;  // made by the first function of several
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
    std::shared_ptr<MultiOutputs> severalOutputs_;  // which the default variant refers to
    std::unique_ptr<BuiltinFcn> function_;
};

}  // namespace Norvane::builtin::declare
