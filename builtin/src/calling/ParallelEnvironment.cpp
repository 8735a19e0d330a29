// The collecting environment of a lifted call. Workers take the lock only when they report; the
// parent is called only from the destructor, on the calling thread, after the loop has joined,
// which is why the parents' own implementations need no locks.
#include <builtin/calling/ParallelEnvironment.hpp>

#include <utility>

namespace Norvane::builtin::builtinreg::detail {

ParallelEnvironment::ParallelEnvironment(IOrroBuiltinEnvironment* const parent,
                                         bool* const pendingOut)
    : parent_(parent), pendingOut_(pendingOut) {}

ParallelEnvironment::~ParallelEnvironment() {
    IOrroBuiltinAccessors* const accessors =
        parent_ != nullptr ? parent_->GetOrroBuiltinAccessors() : nullptr;
    if (accessors != nullptr) {
        handOver(*accessors);
    }
}

// The stored exception is rethrown so that it is current in a handler when the parent takes
// it: that is the only way SetInternalPendingException receives an exception. Anything the
// parent throws on the way takes the same road, and what was not yet passed is dropped.
void ParallelEnvironment::handOver(IOrroBuiltinAccessors& accessors) noexcept {
    std::vector<std::u16string> warnings;
    std::exception_ptr exception;
    try {
        {
            const std::lock_guard lock(mutex_);
            warnings = std::move(warnings_);
            exception = exception_;
        }
        if (pendingOut_ != nullptr) {
            *pendingOut_ = !warnings.empty() || exception != nullptr;
        }
        for (const std::u16string& warning : warnings) {
            accessors.AddWarningMessage(warning);
        }
        if (exception) {
            std::rethrow_exception(exception);
        }
    } catch (...) {
        try {
            accessors.SetInternalPendingException();
        } catch (...) {
            // A parent that cannot even take its pending exception has nowhere left to report to.
        }
    }
}

IOrroBuiltinAccessors* ParallelEnvironment::GetOrroBuiltinAccessors() {
    return this;
}

void ParallelEnvironment::AddWarningMessage(const std::u16string& message) {
    const std::lock_guard lock(mutex_);
    warnings_.push_back(message);
}

void ParallelEnvironment::SetInternalPendingException() {
    std::exception_ptr current = std::current_exception();
    const std::lock_guard lock(mutex_);
    if (!exception_) {
        exception_ = std::move(current);
    }
}

bool ParallelEnvironment::containsException() const {
    const std::lock_guard lock(mutex_);
    return exception_ != nullptr;
}

}  // namespace Norvane::builtin::builtinreg::detail
