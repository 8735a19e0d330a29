// The switch of the memos of all builtins, for tests that make each call with and without them
// and compare. While it is off, invoke neither reads nor fills a memo: every call searches.
// Internal to the library; exported only so that tests can reach it.
#pragma once

#include <builtin/config.hpp>

namespace Norvane::builtin::detail {

BUILTIN_API void setVariantMemoEnabled(bool enabled) noexcept;

}  // namespace Norvane::builtin::detail
