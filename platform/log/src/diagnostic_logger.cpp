#include <foundation/log/diagnostic_logger.hpp>

#include "channel_registry.hpp"

#include <boost/log/attributes/constant.hpp>

#include <algorithm>
#include <vector>

namespace foundation::log {
namespace {

// Indents of the loggers that have an open trace on this thread. Traces are rare and shallow,
// so a short list beats a map; a logger leaves the list when its indent is back to zero.
struct indent_entry {
    const void* logger;
    unsigned depth;
};
thread_local std::vector<indent_entry> threadIndents;

indent_entry* findIndent(const void* logger) noexcept {
    const auto it = std::find_if(threadIndents.begin(), threadIndents.end(),
                                 [logger](const indent_entry& e) { return e.logger == logger; });
    return it == threadIndents.end() ? nullptr : &*it;
}

}  // namespace

template <class CharT>
basic_diagnostic_logger<CharT>::basic_diagnostic_logger(std::basic_string_view<CharT> channel)
    : channel_(channel),
      state_(&detail::channel_registry::instance().state(channel_)),
      core_(boost::log::core::get()),
      channelAttr_(boost::log::attributes::constant<string_type>(channel_)) {}

template <class CharT>
basic_diagnostic_logger<CharT>::~basic_diagnostic_logger() = default;

template <class CharT>
unsigned basic_diagnostic_logger<CharT>::indent() const noexcept {
    const indent_entry* entry = findIndent(this);
    return entry == nullptr ? 0 : entry->depth;
}

template <class CharT>
void basic_diagnostic_logger<CharT>::raiseIndent() const {
    if (indent_entry* entry = findIndent(this))
        ++entry->depth;
    else
        threadIndents.push_back({this, 1});
}

template <class CharT>
void basic_diagnostic_logger<CharT>::lowerIndent() const noexcept {
    indent_entry* entry = findIndent(this);
    if (entry == nullptr) return;
    if (--entry->depth == 0) {
        *entry = threadIndents.back();
        threadIndents.pop_back();
    }
}

template class basic_diagnostic_logger<char>;

}  // namespace foundation::log
