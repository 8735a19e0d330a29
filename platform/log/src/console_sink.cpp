// The stderr sink, added once the first mask is turned on. Without a sink of our own, Boost.Log
// would fall back to its default sink and print records in its own format on std::clog.
#include "channel_registry.hpp"

#include <boost/core/null_deleter.hpp>
#include <boost/log/attributes/value_extraction.hpp>
#include <boost/log/expressions/message.hpp>
#include <boost/log/sinks/sync_frontend.hpp>
#include <boost/log/sinks/text_ostream_backend.hpp>
#include <boost/log/utility/formatting_ostream.hpp>
#include <boost/make_shared.hpp>

#include <iostream>
#include <mutex>

namespace foundation::log::detail {
namespace {

namespace logging = boost::log;

bool isForConsole(const logging::attribute_value_set& values) {
    if (channel_registry::instance().anyMemorySink()) return false;
    return logging::extract<std::string>(channelName(), values) &&
           logging::extract<std::uint32_t>(severityName(), values);
}

void formatForConsole(const logging::record_view& record, logging::formatting_ostream& out) {
    out << logging::extract<std::string>(channelName(), record) << " ["
        << logging::extract<std::uint32_t>(severityName(), record) << "] ";
    const unsigned indent = logging::extract_or_default<unsigned>(indentName(), record, 0u);
    for (unsigned i = 0; i < indent; ++i) out << "  ";
    out << record[logging::expressions::smessage];
    if (auto path = logging::extract<std::string>(sourcePathName(), record))
        out << " (" << path << ':' << logging::extract<int>(sourceLineName(), record) << ')';
}

void addConsoleSink() {
    using backend_type = logging::sinks::text_ostream_backend;
    auto backend = boost::make_shared<backend_type>();
    backend->add_stream(boost::shared_ptr<std::ostream>(&std::cerr, boost::null_deleter()));
    backend->auto_flush(true);
    auto sink = boost::make_shared<logging::sinks::synchronous_sink<backend_type>>(backend);
    sink->set_filter(&isForConsole);
    sink->set_formatter(&formatForConsole);
    logging::core::get()->add_sink(sink);
}

}  // namespace

void ensureConsoleSink() {
    static std::once_flag once;
    std::call_once(once, addConsoleSink);
}

}  // namespace foundation::log::detail
