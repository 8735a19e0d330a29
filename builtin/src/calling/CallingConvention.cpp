// The fatal end of a calling convention that no code of this library can call.
#include <builtin/calling/CallingConvention.hpp>

#include <fl/diag.hpp>

#include <string>

namespace Norvane::builtin::builtinreg::detail {

namespace {
constexpr const char* sourcePath = "builtin2/interface/builtin/getFunctionDescriptor";
}  // namespace

void terminateUnexpectedCallingConvention(JIT_CALLING_CONVENTION value) {
    if (value == JIT_CALLING_CONVENTION::CanThrowOrroInternal) {
        foundation::core::diag::terminate(
            "CanThrowOrroInternal should not be encountered by builtin2 code", sourcePath, __LINE__,
            __PRETTY_FUNCTION__);
    }
    const std::string text = "unexpected JIT_CALLING_CONVENTION encountered by builtin2 code: " +
                             std::to_string(static_cast<std::uint32_t>(value));
    foundation::core::diag::terminate(text, sourcePath, __LINE__, __PRETTY_FUNCTION__);
}

}  // namespace Norvane::builtin::builtinreg::detail
