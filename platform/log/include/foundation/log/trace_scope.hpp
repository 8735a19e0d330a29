// A traced function: a record when it is entered, one when it is left, and the records in
// between indented one level deeper.
//
//   trace_scope trace(logger(), __PRETTY_FUNCTION__, "builtin2/interface/builtin/BuiltinFcn",
//   __LINE__);
//
// The scope is active only if the logger lets the entry severity through when it is made (by
// convention 32 for entry and 64 for exit). Then it writes the function as a record at the
// entry severity and raises the logger's indent on this thread; when it ends it lowers the
// indent and writes the function at the exit severity, followed by " [throw]" if the scope is
// left by an exception. An inactive scope does nothing at all. Entry and exit records also
// carry the attributes "SourcePath" (std::string) and "SourceLine" (int).
#pragma once

#include <foundation/log/diagnostic_logger.hpp>

#include <cstdint>
#include <string>
#include <string_view>

namespace foundation::log {

inline constexpr std::uint32_t trace_entry_severity = 32;
inline constexpr std::uint32_t trace_exit_severity = 64;

class trace_scope {
public:
    trace_scope(const basic_diagnostic_logger<char>& logger, std::string_view function,
                std::string_view sourcePath = {}, int line = 0,
                std::uint32_t entrySeverity = trace_entry_severity,
                std::uint32_t exitSeverity = trace_exit_severity) {
        if (logger.isEnabled(entrySeverity))
            enter(logger, function, sourcePath, line, entrySeverity, exitSeverity);
    }
    trace_scope(const trace_scope&) = delete;
    trace_scope& operator=(const trace_scope&) = delete;
    ~trace_scope() {
        if (logger_ != nullptr) leave();
    }

    bool active() const noexcept { return logger_ != nullptr; }

private:
    void enter(const basic_diagnostic_logger<char>& logger, std::string_view function,
               std::string_view sourcePath, int line, std::uint32_t entrySeverity,
               std::uint32_t exitSeverity);
    void leave() noexcept;

    const basic_diagnostic_logger<char>* logger_ = nullptr;
    std::string function_;
    std::string sourcePath_;
    int line_ = 0;
    std::uint32_t exitSeverity_ = 0;
    int uncaughtAtEntry_ = 0;
};

}  // namespace foundation::log
