// Passing each warning text on once.
#include <builtin/calling/DistinctWarnings.hpp>

#include <algorithm>

namespace Norvane::builtin::builtinreg::detail {

DistinctWarnings::~DistinctWarnings() = default;

// The text is passed on under the lock too, so that the order of first arrival is the order in
// which the next environment gets them.
void DistinctWarnings::AddWarningMessage(const std::u16string& message) {
    const std::lock_guard lock(mutex_);
    if (std::find(seen_.begin(), seen_.end(), message) != seen_.end()) {
        return;
    }
    seen_.push_back(message);
    if (next_ != nullptr) {
        next_->AddWarningMessage(message);
    }
}

void DistinctWarnings::SetInternalPendingException() {
    if (next_ != nullptr) {
        next_->SetInternalPendingException();
    }
}

}  // namespace Norvane::builtin::builtinreg::detail
