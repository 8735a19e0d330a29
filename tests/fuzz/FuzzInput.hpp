// What the fuzz targets share: the bytes of one input read as a stream of small decisions, and
// the stop for a broken property. Every read succeeds; past the end of the input it gives
// zeros, so that any input, however short, decodes to something, and a short input decodes to
// the simplest choices.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace fuzz {

class Input {
public:
    Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    bool empty() const { return pos_ >= size_; }

    std::uint8_t byte() { return pos_ < size_ ? data_[pos_++] : 0; }

    bool flag() { return (byte() & 1) != 0; }

    // One of 0 to n - 1, for n up to 256.
    std::size_t below(std::size_t n) { return n == 0 ? 0 : byte() % n; }

    // The next sizeof(T) bytes as a T, zero-padded at the end.
    template <class T>
    T raw() {
        unsigned char bytes[sizeof(T)] = {};
        const std::size_t n = std::min(sizeof(T), size_ - std::min(pos_, size_));
        if (n > 0) std::memcpy(bytes, data_ + pos_, n);
        pos_ += n;
        T value;
        std::memcpy(&value, bytes, sizeof(T));
        return value;
    }

    // What is left, all of it.
    std::string_view rest() {
        const std::size_t from = std::min(pos_, size_);
        pos_ = size_;
        return {reinterpret_cast<const char*>(data_) + from, size_ - from};
    }

private:
    const std::uint8_t* data_;
    std::size_t size_;
    std::size_t pos_ = 0;
};

// A property of the code under test does not hold: say which, and stop as a crash does, so
// that the fuzzer keeps the input.
[[noreturn]] inline void fail(const std::string& what) {
    std::fprintf(stderr, "fuzz: %s\n", what.c_str());
    std::fflush(stderr);
    std::abort();
}

}  // namespace fuzz
