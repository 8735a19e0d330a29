// Process-wide services of the array library: the count of live arrays (tests assert that
// nothing leaked), the holds the library keeps in the second count, and where warnings go:
// to the innermost ThreadWarningScope of the thread, else to the process's handler.
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include <ka/array.hpp>

namespace ka {

// Arrays created and not yet destroyed, in this process.
std::size_t liveArrayCount();

// A hold such as a workspace variable keeps on an array: raises the second count, so that
// releasing the last counted reference leaves the array alive. unpin lowers it again and
// destroys the array if no count is left.
void pin(kaArray_tag* array);
void unpin(kaArray_tag* array);

// Installs the receiver of matrix::handleWarning and returns the previous one. An empty
// function restores the default, which writes "Warning: " and the text to stderr.
using WarningHandler = std::function<void(const std::u16string&)>;
WarningHandler setWarningHandler(WarningHandler handler);

// What matrix::handleWarning does with a warning: the innermost scope below, else the handler.
void deliverWarning(const std::u16string& text);

// Takes the warnings that matrix::handleWarning issues on the calling thread, ahead of the
// process's handler, for the life of the object: the capture of one call. Scopes nest, the
// innermost takes them; end them in the reverse order of their making, on their thread.
class ThreadWarningScope {
public:
    explicit ThreadWarningScope(WarningHandler handler);
    ThreadWarningScope(const ThreadWarningScope&) = delete;
    ThreadWarningScope& operator=(const ThreadWarningScope&) = delete;
    ~ThreadWarningScope();

private:
    friend void deliverWarning(const std::u16string& text);
    WarningHandler handler_;
    ThreadWarningScope* outer_;
};

}  // namespace ka
