// Fatal diagnostics: the one way a broken invariant ends the process, and the switch that lets
// tests and tools ask a conditional check to carry on instead.
//
// Use `terminate` for faults of the program or of a module's declarations, never for bad input
// or bad calls (those throw).
#pragma once

#include <string>
#include <string_view>

namespace foundation::core::diag {

// Writes the text, the source path, the line and the function signature to stderr, then aborts.
[[noreturn]] void terminate(std::string_view text, std::string_view sourcePath, int line,
                            std::string_view signature) noexcept;

namespace detail {

// The readable form of a mangled type name (`typeid(T).name()`). With `decorated` the name
// reads as the platform names a type's run-time type record: the readable name followed by
// decoratedSuffix, e.g. "ns::Widget 'RTTI Type Descriptor'".
// Throws std::invalid_argument for a name that is not a mangled type name; its what() is that
// name, exactly as given.
std::string demangle_typeid_name(const char* mangledName, bool decorated);

// What the decorated form appends: 23 characters, starting with a blank.
inline constexpr std::string_view decoratedSuffix = " 'RTTI Type Descriptor'";

}  // namespace detail
}  // namespace foundation::core::diag

// Asked by conditional fatal checks once their condition has failed: true (the default) means
// stop; false lets the caller go on. Process-wide.
bool fl_diag_terminate() noexcept;

// Sets the answer of fl_diag_terminate for the whole process; returns the previous answer.
bool fl_set_diag_terminate(bool stop) noexcept;
