// How a native function is called and how it reports failure. The number travels in every
// function descriptor; the typed wrappers switch on it for each call.
//
//   Direct                R fn(a...)                        void fn(a...)
//   DirectWithDescriptor  R fn(a..., desc)                  void fn(a..., desc)
//   CanThrow              bool fn(a..., R* out, env, desc)  bool fn(a..., nullptr, env, desc)
//   CanThrowOrroInternal  reserved to the engine's own functions; never reaches this library
//
// Under CanThrow the bool result is the pending flag: true means "look into the environment".
// NativeFunction names these signatures for templates that declare or call native functions.
#pragma once

#include <builtin/config.hpp>

#include <cstdint>
#include <type_traits>

namespace Norvane::orro {

struct OrroFunctionDescriptor;
class IOrroBuiltinEnvironment;

// 32 bits. Values above CanThrowOrroInternal may arrive from outside and are not errors of
// their own: a wrapper calls nothing for them.
enum class JIT_CALLING_CONVENTION : std::uint32_t {
    Direct = 0,
    DirectWithDescriptor = 1,
    CanThrow = 2,
    CanThrowOrroInternal = 3,
};

namespace detail {

template <JIT_CALLING_CONVENTION Convention, class R, class... A>
struct NativeFunction;

template <class R, class... A>
struct NativeFunction<JIT_CALLING_CONVENTION::Direct, R, A...> {
    using type = R (*)(A...);
};

template <class R, class... A>
struct NativeFunction<JIT_CALLING_CONVENTION::DirectWithDescriptor, R, A...> {
    using type = R (*)(A..., OrroFunctionDescriptor*);
};

// The out argument exists also without an output; it is then a null pointer.
template <class R, class... A>
struct NativeFunction<JIT_CALLING_CONVENTION::CanThrow, R, A...> {
    using Out = std::conditional_t<std::is_void_v<R>, void*, R*>;
    using type = bool (*)(A..., Out, IOrroBuiltinEnvironment*, OrroFunctionDescriptor*);
};

}  // namespace detail

// The native signature of a function with output R (void for none) and inputs A... under
// Convention.
template <JIT_CALLING_CONVENTION Convention, class R, class... A>
using NativeFunction = typename detail::NativeFunction<Convention, R, A...>::type;

}  // namespace Norvane::orro

namespace Norvane::builtin {
using orro::JIT_CALLING_CONVENTION;
}  // namespace Norvane::builtin

namespace Norvane::builtin::builtinreg::detail {

// Stops the process: a convention that no code of this library can call reached it. Value 3
// is the engine's own convention; any other names the number in the message.
[[noreturn]] BUILTIN_API void terminateUnexpectedCallingConvention(JIT_CALLING_CONVENTION value);

}  // namespace Norvane::builtin::builtinreg::detail
