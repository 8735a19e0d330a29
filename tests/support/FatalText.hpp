// Patterns for death tests: a text as an extended regular expression that matches exactly it, and
// the whole report of foundation::core::diag::terminate for a text and a source path.
#pragma once

#include <string>

namespace testsupport {

inline std::string literal(const std::string& text) {
    std::string out;
    for (const char c : text) {
        if (std::string("\\^$.|?*+()[]{}").find(c) != std::string::npos) out += '\\';
        out += c;
    }
    return out;
}

// What terminate writes for `text` at `sourcePath`, from its first line up to the signature.
inline std::string fatalReport(const std::string& text, const std::string& sourcePath) {
    return literal("Fatal error: " + text + "\n  at " + sourcePath + ":") + "[0-9]+\n  in ";
}

}  // namespace testsupport
