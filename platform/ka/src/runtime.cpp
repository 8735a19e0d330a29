// Second-count holds and the warning channel.
#include <iostream>
#include <mutex>
#include <stdexcept>

#include "array_record.hpp"

namespace {

struct WarningChannel {
    std::mutex mutex;
    ka::WarningHandler handler;
};

WarningChannel& warningChannel() {
    static WarningChannel channel;
    return channel;
}

thread_local ka::ThreadWarningScope* innermostScope = nullptr;

void writeToStderr(const std::u16string& text) {
    std::cerr << "Warning: " << ka::detail::toUtf8(text) << std::endl;
}

}  // namespace

void ka::pin(kaArray_tag* array) {
    ++array->pinCount;
}

void ka::unpin(kaArray_tag* array) {
    if (array->pinCount <= 0) throw std::logic_error("unpin of an array that is not pinned");
    if (--array->pinCount == 0 && array->refCount == 0) matrix::destroyArray(array);
}

ka::WarningHandler ka::setWarningHandler(WarningHandler handler) {
    WarningChannel& channel = warningChannel();
    std::lock_guard lock(channel.mutex);
    std::swap(channel.handler, handler);
    return handler;
}

ka::ThreadWarningScope::ThreadWarningScope(WarningHandler handler)
    : handler_(std::move(handler)), outer_(innermostScope) {
    innermostScope = this;
}

ka::ThreadWarningScope::~ThreadWarningScope() {
    innermostScope = outer_;
}

void ka::deliverWarning(const std::u16string& text) {
    if (ThreadWarningScope* scope = innermostScope; scope != nullptr && scope->handler_) {
        // Outside the scope while its handler runs, so that a warning from the handler goes on.
        innermostScope = scope->outer_;
        struct Restore {
            ThreadWarningScope* scope;
            ~Restore() { innermostScope = scope; }
        } restore{scope};
        scope->handler_(text);
        return;
    }
    ka::WarningHandler handler;
    {
        WarningChannel& channel = warningChannel();
        std::lock_guard lock(channel.mutex);
        handler = channel.handler;
    }
    // Called outside the lock, so that a handler may install another one.
    if (handler) {
        handler(text);
    } else {
        writeToStderr(text);
    }
}

void matrix::handleWarning(const std::u16string& text) {
    ka::deliverWarning(text);
}
