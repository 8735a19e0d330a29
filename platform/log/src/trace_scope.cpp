#include <foundation/log/trace_scope.hpp>

#include <exception>

namespace foundation::log {

void trace_scope::enter(const basic_diagnostic_logger<char>& logger, std::string_view function,
                        std::string_view sourcePath, int line, std::uint32_t entrySeverity,
                        std::uint32_t exitSeverity) {
    function_.assign(function);
    sourcePath_.assign(sourcePath);
    line_ = line;
    exitSeverity_ = exitSeverity;
    {
        record_pump pump(logger, entrySeverity, sourcePath_, line_);
        if (pump) {
            pump.stream() << function_;
            pump.commit();
        }
    }
    logger.raiseIndent();
    // Set last: if anything above throws, the scope stays inactive and its destructor is quiet.
    uncaughtAtEntry_ = std::uncaught_exceptions();
    logger_ = &logger;
}

void trace_scope::leave() noexcept {
    const bool byException = std::uncaught_exceptions() > uncaughtAtEntry_;
    logger_->lowerIndent();
    try {
        record_pump pump(*logger_, exitSeverity_, sourcePath_, line_);
        if (pump) {
            pump.stream() << function_;
            if (byException) pump.stream() << " [throw]";
            pump.commit();
        }
    } catch (...) {
        // A destructor may run during unwinding: losing the exit record is the lesser harm.
    }
}

}  // namespace foundation::log
