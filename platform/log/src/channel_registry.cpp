#include "channel_registry.hpp"

#include <cstdio>
#include <cstdlib>

namespace foundation::log {
namespace detail {

const boost::log::attribute_name& channelName() {
    static const boost::log::attribute_name name("Channel");
    return name;
}
const boost::log::attribute_name& severityName() {
    static const boost::log::attribute_name name("Severity");
    return name;
}
const boost::log::attribute_name& indentName() {
    static const boost::log::attribute_name name("Indent");
    return name;
}
const boost::log::attribute_name& sourcePathName() {
    static const boost::log::attribute_name name("SourcePath");
    return name;
}
const boost::log::attribute_name& sourceLineName() {
    static const boost::log::attribute_name name("SourceLine");
    return name;
}

channel_registry& channel_registry::instance() {
    static channel_registry* const registry = new channel_registry();
    return *registry;
}

channel_state& channel_registry::state(std::string_view channel) {
    channel_state* found = nullptr;
    {
        std::lock_guard lock(mutex_);
        found = &findOrAddLocked(channel);
    }
    // Checked on every lookup, not only when the channel is new, so that a failure to add the
    // sink is retried by the next logger rather than lost.
    if (found->mask.load(std::memory_order_relaxed) != 0) ensureConsoleSink();
    return *found;
}

void channel_registry::setMask(std::string_view channel, std::uint32_t mask) {
    {
        std::lock_guard lock(mutex_);
        findOrAddLocked(channel).mask.store(mask, std::memory_order_relaxed);
    }
    if (mask != 0) ensureConsoleSink();
}

channel_state& channel_registry::findOrAddLocked(std::string_view channel) {
    if (auto it = channels_.find(channel); it != channels_.end()) return *it->second;
    std::uint32_t mask = 0;
    if (const char* setting = std::getenv(mask_variable)) {
        std::vector<std::string> problems;
        mask = maskFromSetting(setting, channel, &problems);
        reportProblemsLocked(setting, problems);
    }
    auto state = std::make_unique<channel_state>();
    state->mask.store(mask, std::memory_order_relaxed);
    return *channels_.emplace(std::string(channel), std::move(state)).first->second;
}

void channel_registry::reportProblemsLocked(std::string_view setting,
                                            const std::vector<std::string>& problems) {
    if (problems.empty() || setting == reportedSetting_) return;
    reportedSetting_.assign(setting);
    for (const std::string& problem : problems)
        std::fprintf(stderr, "%s: ignored %s\n", mask_variable, problem.c_str());
}

}  // namespace detail

void setChannelMask(std::string_view channel, std::uint32_t mask) {
    detail::channel_registry::instance().setMask(channel, mask);
}

std::uint32_t channelMask(std::string_view channel) {
    return detail::channel_registry::instance().state(channel).mask.load(std::memory_order_relaxed);
}

}  // namespace foundation::log
