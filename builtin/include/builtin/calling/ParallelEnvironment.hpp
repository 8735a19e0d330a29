// ParallelEnvironment: the reporting environment of one lifted element-wise call. Kernels may
// report to it from any worker thread; it collects their warnings and the first exception
// under a lock, and when it is destroyed, back on the calling thread, it hands everything to
// the environment of the caller: the warnings in order of arrival, then the exception, and
// sets the caller's pending flag to whether anything was handed over.
//
// The caller's environment is meant for one thread; this one stands between it and the
// workers. It lives on the stack of the lifted entry and is used whether the loop happens to
// run in parallel or not, so a kernel always sees one kind of environment inside a lifted call.
// A kernel must not keep it beyond its own call.
#pragma once

#include <exception>
#include <mutex>
#include <string>
#include <vector>

#include <builtin/calling/OrroBuiltinEnvironment.hpp>
#include <builtin/config.hpp>

namespace Norvane::builtin::builtinreg::detail {

class BUILTIN_API ParallelEnvironment : public IOrroBuiltinEnvironment,
                                        public IOrroBuiltinAccessors {
public:
    // Neither pointer is owned; either may be null. *pendingOut is not touched here.
    ParallelEnvironment(IOrroBuiltinEnvironment* const parent, bool* const pendingOut);
    ParallelEnvironment(const ParallelEnvironment&) = delete;
    ParallelEnvironment& operator=(const ParallelEnvironment&) = delete;

    // Hands the reports over to the parent's accessors and sets *pendingOut to whether the parent
    // got anything. With no parent, or a parent without accessors, the reports are dropped and
    // *pendingOut is left alone. Never throws: a failure of the parent while it takes the
    // warnings reaches it as its pending exception instead, and the rest is dropped.
    ~ParallelEnvironment() override;

    // This object itself; never null, takes no lock.
    IOrroBuiltinAccessors* GetOrroBuiltinAccessors() override;
    // Safe from any thread.
    void AddWarningMessage(const std::u16string& message) override;
    // Call it inside a catch handler, from any thread. The first exception reported is kept; later
    // ones are dropped.
    void SetInternalPendingException() override;

    // Whether an exception has been reported so far.
    bool containsException() const;

private:
    void handOver(IOrroBuiltinAccessors& accessors) noexcept;

    IOrroBuiltinEnvironment* const parent_;
    bool* const pendingOut_;
    mutable std::mutex mutex_;  // guards warnings_ and exception_, and nothing else
    std::vector<std::u16string> warnings_;
    std::exception_ptr exception_;
};

}  // namespace Norvane::builtin::builtinreg::detail
