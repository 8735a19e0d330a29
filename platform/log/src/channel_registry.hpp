// The process-wide table of channels and their masks, and the names of the record attributes.
// Internal to the logging library.
#pragma once

#include <foundation/log/diagnostic_logger.hpp>

#include <boost/log/attributes/attribute_name.hpp>

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace foundation::log::detail {

// Attribute names are looked up in Boost.Log's name table once, not per record.
const boost::log::attribute_name& channelName();
const boost::log::attribute_name& severityName();
const boost::log::attribute_name& indentName();
const boost::log::attribute_name& sourcePathName();
const boost::log::attribute_name& sourceLineName();

class channel_registry {
public:
    // Never destroyed: loggers in the static storage of any library may be used, and destroyed,
    // after every other static of this one.
    static channel_registry& instance();

    // The state of `channel`, made on first sight with its mask from the environment.
    channel_state& state(std::string_view channel);
    void setMask(std::string_view channel, std::uint32_t mask);

    void memorySinkAttached() noexcept { memorySinks_.fetch_add(1); }
    void memorySinkDetached() noexcept { memorySinks_.fetch_sub(1); }
    bool anyMemorySink() const noexcept { return memorySinks_.load() > 0; }

private:
    channel_registry() = default;
    channel_state& findOrAddLocked(std::string_view channel);
    void reportProblemsLocked(std::string_view setting, const std::vector<std::string>& problems);

    std::mutex mutex_;
    std::map<std::string, std::unique_ptr<channel_state>, std::less<>> channels_;
    std::string reportedSetting_;  // malformed settings are reported once per distinct text
    std::atomic<int> memorySinks_{0};
};

// Adds the stderr sink to the core, once per process.
void ensureConsoleSink();

}  // namespace foundation::log::detail
