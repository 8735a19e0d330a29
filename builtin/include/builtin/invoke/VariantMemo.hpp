// VariantMemo: the member of a BuiltinFcn through which invoke remembers, for each list and
// combination of argument types, which variant took the call (or that none did), so that a
// repeated call goes straight to it. The table behind it lies in the library
// (src/invoke/VariantMemoTable.hpp); it is made at the first call that can be remembered, has a
// fixed number of entries and is read without locks by any number of threads.
//
// A copy starts empty: the table belongs to one object, and its source may be in use.
#pragma once

#include <atomic>

#include <builtin/config.hpp>

namespace Norvane::builtin::detail {

class VariantMemoTable;

class BUILTIN_API VariantMemo {
public:
    VariantMemo() noexcept = default;
    VariantMemo(const VariantMemo&) noexcept {}
    VariantMemo& operator=(const VariantMemo&) = delete;
    ~VariantMemo();

    // The table, or null while nothing has been remembered.
    const VariantMemoTable* table() const noexcept {
        return table_.load(std::memory_order_acquire);
    }

    // The table, made by the first caller; null if memory for it cannot be had, in which case
    // nothing is remembered.
    VariantMemoTable* obtain() const noexcept;

private:
    mutable std::atomic<VariantMemoTable*> table_{nullptr};
};

}  // namespace Norvane::builtin::detail
