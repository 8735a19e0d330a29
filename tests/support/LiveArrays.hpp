// The fixture of a test that creates arrays: it fails the test if the library's live-array count
// differs at the end from the start (a leak, or a double release).
#pragma once

#include <gtest/gtest.h>

#include <cstddef>

#include <ka/runtime.hpp>

namespace testsupport {

class LiveArrayTest : public ::testing::Test {
protected:
    void SetUp() override { start_ = ka::liveArrayCount(); }
    void TearDown() override {
        EXPECT_EQ(ka::liveArrayCount(), start_) << "the test left arrays alive";
    }
    // Arrays created since the start and not destroyed (negative: destroyed too many).
    long long alive() const {
        return static_cast<long long>(ka::liveArrayCount()) - static_cast<long long>(start_);
    }

private:
    std::size_t start_ = 0;
};

}  // namespace testsupport
