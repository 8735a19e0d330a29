#include <foundation/log/diagnostic_logger.hpp>

#include "channel_registry.hpp"

#include <boost/log/attributes/attribute_set.hpp>
#include <boost/log/attributes/constant.hpp>

namespace foundation::log {

record_pump::record_pump(const basic_diagnostic_logger<char>& logger, std::uint32_t severity,
                         std::string_view sourcePath, int line) {
    if (logger.isEnabled(severity)) open(logger, severity, sourcePath, line);
}

record_pump::~record_pump() {
    stream_.reset();
}

void record_pump::open(const basic_diagnostic_logger<char>& logger, std::uint32_t severity,
                       std::string_view sourcePath, int line) {
    namespace attrs = boost::log::attributes;
    boost::log::attribute_set attributes;
    attributes.insert(detail::channelName(), logger.channelAttribute());
    attributes.insert(detail::severityName(), attrs::constant<std::uint32_t>(severity));
    attributes.insert(detail::indentName(), attrs::constant<unsigned>(logger.indent()));
    if (!sourcePath.empty()) {
        attributes.insert(detail::sourcePathName(),
                          attrs::constant<std::string>(std::string(sourcePath)));
        attributes.insert(detail::sourceLineName(), attrs::constant<int>(line));
    }
    // The core may still decline the record (no sink wants it); then nothing is formatted.
    record_ = boost::log::core::get()->open_record(attributes);
    if (record_) stream_.emplace(record_);
}

void record_pump::commit() {
    stream_->flush();
    stream_.reset();
    boost::log::core::get()->push_record(std::move(record_));
}

}  // namespace foundation::log
