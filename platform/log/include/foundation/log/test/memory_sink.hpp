// Test helpers: a sink that keeps the logger's records in memory, and a scoped channel mask.
//
//   foundation::log::test::scoped_channel_mask mask("builtin2::BuiltinFcn", 2);
//   foundation::log::test::memory_sink sink("builtin2::BuiltinFcn");
//   ... code under test ...
//   EXPECT_EQ(sink.texts(), (std::vector<std::string>{"..."}));
//
// A memory_sink attaches itself to the Boost.Log core when made and detaches when destroyed.
// It takes only records of diagnostic loggers (optionally of one channel); while any memory_sink
// is attached, the stderr sink stays quiet so that test output is not flooded. Records may
// arrive from any thread.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace foundation::log::test {

struct captured_record {
    std::string channel;
    std::uint32_t severity = 0;
    unsigned indent = 0;
    std::string text;
    std::string sourcePath;  // trace records only
    int line = 0;            // trace records only

    friend bool operator==(const captured_record&, const captured_record&) = default;
};

class memory_sink {
public:
    // Takes the records of every channel, or of `channel` alone when it is not empty.
    explicit memory_sink(std::string channel = {});
    memory_sink(const memory_sink&) = delete;
    memory_sink& operator=(const memory_sink&) = delete;
    ~memory_sink();

    std::vector<captured_record> records() const;
    std::vector<std::string> texts() const;
    std::size_t size() const;
    void clear();

private:
    struct impl;
    std::unique_ptr<impl> impl_;
};

// Sets a channel's mask for the life of the object, then puts the previous mask back.
class scoped_channel_mask {
public:
    scoped_channel_mask(std::string channel, std::uint32_t mask);
    scoped_channel_mask(const scoped_channel_mask&) = delete;
    scoped_channel_mask& operator=(const scoped_channel_mask&) = delete;
    ~scoped_channel_mask();

private:
    std::string channel_;
    std::uint32_t previous_;
};

}  // namespace foundation::log::test
