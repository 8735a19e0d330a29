#include <foundation/log/test/memory_sink.hpp>

#include "channel_registry.hpp"

#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/expressions/message.hpp>
#include <boost/log/sinks/basic_sink_backend.hpp>
#include <boost/log/sinks/sync_frontend.hpp>
#include <boost/make_shared.hpp>

namespace foundation::log::test {
namespace {

namespace logging = boost::log;

template <class T>
T valueOr(const logging::attribute_name& name, const logging::record_view& record, T fallback) {
    const auto value = logging::extract<T>(name, record);
    return value ? value.get() : fallback;
}

class memory_backend
    : public logging::sinks::basic_sink_backend<logging::sinks::synchronized_feeding> {
public:
    void consume(const logging::record_view& record) {
        captured_record captured;
        captured.channel = valueOr<std::string>(detail::channelName(), record, {});
        captured.severity = valueOr<std::uint32_t>(detail::severityName(), record, 0);
        captured.indent = valueOr<unsigned>(detail::indentName(), record, 0);
        if (auto message = record[logging::expressions::smessage]) captured.text = message.get();
        captured.sourcePath = valueOr<std::string>(detail::sourcePathName(), record, {});
        captured.line = valueOr<int>(detail::sourceLineName(), record, 0);
        records.push_back(std::move(captured));
    }

    std::vector<captured_record> records;  // guarded by the frontend's lock
};

using memory_frontend = logging::sinks::synchronous_sink<memory_backend>;

}  // namespace

struct memory_sink::impl {
    boost::shared_ptr<memory_frontend> sink;
};

memory_sink::memory_sink(std::string channel) : impl_(std::make_unique<impl>()) {
    impl_->sink = boost::make_shared<memory_frontend>();
    impl_->sink->set_filter(
        [channel = std::move(channel)](const logging::attribute_value_set& values) {
            const auto found = logging::extract<std::string>(detail::channelName(), values);
            return found && logging::extract<std::uint32_t>(detail::severityName(), values) &&
                   (channel.empty() || found.get() == channel);
        });
    detail::channel_registry::instance().memorySinkAttached();
    logging::core::get()->add_sink(impl_->sink);
}

memory_sink::~memory_sink() {
    logging::core::get()->remove_sink(impl_->sink);
    detail::channel_registry::instance().memorySinkDetached();
}

std::vector<captured_record> memory_sink::records() const {
    return impl_->sink->locked_backend()->records;
}

std::vector<std::string> memory_sink::texts() const {
    std::vector<std::string> texts;
    for (captured_record& record : records()) texts.push_back(std::move(record.text));
    return texts;
}

std::size_t memory_sink::size() const {
    return impl_->sink->locked_backend()->records.size();
}

void memory_sink::clear() {
    impl_->sink->locked_backend()->records.clear();
}

scoped_channel_mask::scoped_channel_mask(std::string channel, std::uint32_t mask)
    : channel_(std::move(channel)), previous_(channelMask(channel_)) {
    setChannelMask(channel_, mask);
}

scoped_channel_mask::~scoped_channel_mask() {
    setChannelMask(channel_, previous_);
}

}  // namespace foundation::log::test
