#include <fl/diag.hpp>

#include <cxxabi.h>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace foundation::core::diag {

void terminate(std::string_view text, std::string_view sourcePath, int line,
               std::string_view signature) noexcept {
    // stdio rather than iostreams: this runs in arbitrary states, possibly during static
    // destruction, and must not throw.
    std::fprintf(stderr, "Fatal error: %.*s\n  at %.*s:%d\n  in %.*s\n",
                 static_cast<int>(text.size()), text.data(), static_cast<int>(sourcePath.size()),
                 sourcePath.data(), line, static_cast<int>(signature.size()), signature.data());
    std::fflush(stderr);
    std::abort();
}

namespace detail {

std::string demangle_typeid_name(const char* mangledName, bool decorated) {
    if (mangledName == nullptr) {
        throw std::invalid_argument("cannot demangle a null type name");
    }
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> readable(
        abi::__cxa_demangle(mangledName, nullptr, nullptr, &status), std::free);
    if (status != 0 || !readable) {
        // Callers quote what() as the name that was found, so it is the input and nothing else.
        throw std::invalid_argument(mangledName);
    }
    std::string name(readable.get());
    if (decorated) {
        name += decoratedSuffix;
    }
    return name;
}

}  // namespace detail
}  // namespace foundation::core::diag

namespace {
std::atomic<bool>& diagTerminateSwitch() {
    static std::atomic<bool> stop{true};
    return stop;
}
}  // namespace

bool fl_diag_terminate() noexcept {
    return diagTerminateSwitch().load(std::memory_order_relaxed);
}

bool fl_set_diag_terminate(bool stop) noexcept {
    return diagTerminateSwitch().exchange(stop, std::memory_order_relaxed);
}
