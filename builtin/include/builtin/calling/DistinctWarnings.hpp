// DistinctWarnings: an environment in front of another that passes each warning text on once.
// A kernel lifted over a million elements that warns for each negative input would otherwise
// bury the caller under a million copies of one warning; through this, a call delivers each
// distinct text once, in the order of first arrival. Errors pass through untouched.
//
// Safe from any thread, like the ParallelEnvironment it usually stands in front of: the lock is
// taken only when a kernel warns.
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include <builtin/calling/OrroBuiltinEnvironment.hpp>
#include <builtin/config.hpp>

namespace Norvane::builtin::builtinreg::detail {

class BUILTIN_API DistinctWarnings final : public IOrroBuiltinEnvironment,
                                           public IOrroBuiltinAccessors {
public:
    // `next` is not owned and must outlive this; it may be null (reports are dropped).
    explicit DistinctWarnings(IOrroBuiltinAccessors* next) : next_(next) {}
    DistinctWarnings(const DistinctWarnings&) = delete;
    DistinctWarnings& operator=(const DistinctWarnings&) = delete;
    ~DistinctWarnings() override;

    IOrroBuiltinAccessors* GetOrroBuiltinAccessors() override { return this; }
    void AddWarningMessage(const std::u16string& message) override;
    void SetInternalPendingException() override;

private:
    IOrroBuiltinAccessors* const next_;
    std::mutex mutex_;
    std::vector<std::u16string> seen_;
};

}  // namespace Norvane::builtin::builtinreg::detail
