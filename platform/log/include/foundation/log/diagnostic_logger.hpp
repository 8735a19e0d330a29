// The diagnostic logger: a channel name, the channel's severity mask, and records on Boost.Log.
//
//   static foundation::log::basic_diagnostic_logger<char> logger("builtin2::Boxing");
//   FOUNDATION_LOG(logger, 4) << "Developer inputs: " << names;
//
// Nothing is formatted unless the mask has the severity's bit and logging is enabled in the
// Boost.Log core: FOUNDATION_LOG tests both before the stream expression runs, and with either
// off that expression is never evaluated. For text built by a loop, `write(severity, fn)` calls
// `fn(std::ostream&)` under the same condition.
//
// Loggers are cheap to make (a lookup of the channel under a lock) and safe to use from any
// number of threads; a function-local static is the intended home for one. The indent that
// trace scopes raise (trace_scope.hpp) belongs to the logger on the calling thread, so traces
// on two threads do not shift each other's records. Records carry the attributes "Channel"
// (std::string), "Severity" (std::uint32_t), "Indent" (unsigned) and the message.
#pragma once

#include <foundation/log/channel_masks.hpp>

#include <boost/log/attributes/attribute.hpp>
#include <boost/log/core/core.hpp>
#include <boost/log/core/record.hpp>
#include <boost/log/sources/record_ostream.hpp>

#include <atomic>
#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace foundation::log {

namespace detail {
// The state every logger of one channel shares. It lives until the process ends.
struct channel_state {
    std::atomic<std::uint32_t> mask{0};
};
}  // namespace detail

template <class CharT>
class basic_diagnostic_logger;

// One record under construction: opened only when its logger lets the severity through, pushed
// to the core by commit(), dropped unpushed if formatting throws. Used by FOUNDATION_LOG.
class record_pump {
public:
    record_pump(const basic_diagnostic_logger<char>& logger, std::uint32_t severity,
                std::string_view sourcePath = {}, int line = 0);
    record_pump(const record_pump&) = delete;
    record_pump& operator=(const record_pump&) = delete;
    ~record_pump();

    // True while the record is open and not yet pushed.
    explicit operator bool() const noexcept { return stream_.has_value(); }
    std::ostream& stream() noexcept { return stream_->stream(); }
    void commit();

private:
    void open(const basic_diagnostic_logger<char>& logger, std::uint32_t severity,
              std::string_view sourcePath, int line);

    boost::log::record record_;
    std::optional<boost::log::record_ostream> stream_;
};

template <class CharT>
class basic_diagnostic_logger {
    static_assert(std::is_same_v<CharT, char>, "only narrow channels are provided");

public:
    using char_type = CharT;
    using string_type = std::basic_string<CharT>;

    explicit basic_diagnostic_logger(std::basic_string_view<CharT> channel);
    basic_diagnostic_logger(const basic_diagnostic_logger&) = delete;
    basic_diagnostic_logger& operator=(const basic_diagnostic_logger&) = delete;
    ~basic_diagnostic_logger();

    const string_type& channel() const noexcept { return channel_; }
    std::uint32_t severityMask() const noexcept {
        return state_->mask.load(std::memory_order_relaxed);
    }

    // Whether a record of `severity` would be written now. The mask is tested first, so a
    // logger that is off costs the test of a bit.
    bool isEnabled(std::uint32_t severity) const noexcept {
        return (severityMask() & severity) != 0 && core_->get_logging_enabled();
    }

    // Writes one record whose text `fn(std::ostream&)` produces; `fn` runs only if enabled.
    template <class Fn>
    void write(std::uint32_t severity, Fn&& fn) const {
        if (!isEnabled(severity)) return;
        record_pump pump(*this, severity);
        if (pump) {
            std::forward<Fn>(fn)(pump.stream());
            pump.commit();
        }
    }

    // The indent of this logger on the calling thread; records carry it. The indent is kept
    // beside the logger, per thread, which is why raising it does not change the logger.
    unsigned indent() const noexcept;
    void raiseIndent() const;
    void lowerIndent() const noexcept;

    // For record_pump: the channel as a Boost.Log attribute, made once per logger.
    const boost::log::attribute& channelAttribute() const noexcept { return channelAttr_; }

private:
    string_type channel_;
    const detail::channel_state* state_;
    boost::log::core_ptr core_;  // keeps the core alive as long as any logger
    boost::log::attribute channelAttr_;
};

extern template class basic_diagnostic_logger<char>;

using diagnostic_logger = basic_diagnostic_logger<char>;

}  // namespace foundation::log

// FOUNDATION_LOG(logger, severity) << a << b;
// Both arguments are evaluated twice: pass a logger and a plain severity value. The stream
// expression is evaluated only when the logger lets the severity through.
#define FOUNDATION_LOG(logger, severity)                                                \
    if (!(logger).isEnabled(severity)) {                                                \
    } else                                                                              \
        for (::foundation::log::record_pump foundation_log_pump_((logger), (severity)); \
             foundation_log_pump_; foundation_log_pump_.commit())                       \
        foundation_log_pump_.stream()

#include <foundation/log/trace_scope.hpp>
