// The capabilities a builtin declares to the runtime, as a set of 32 bits.
//
// A small value type: it is passed by value in 32 bits, copied freely and compared bit for bit.
// The meaning of each bit belongs to the runtime; this type only stores, tests and prints them.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>

namespace capabilities {

class CapabilityList {
public:
    using Bits = std::uint32_t;

    constexpr CapabilityList() noexcept = default;
    constexpr explicit CapabilityList(Bits bits) noexcept : bits_(bits) {}

    constexpr Bits bits() const noexcept { return bits_; }
    constexpr bool empty() const noexcept { return bits_ == 0; }

    // True when every bit of `mask` is set; an empty mask is always contained.
    constexpr bool test(Bits mask) const noexcept { return (bits_ & mask) == mask; }
    // True when at least one bit of `mask` is set.
    constexpr bool testAny(Bits mask) const noexcept { return (bits_ & mask) != 0; }

    constexpr CapabilityList& set(Bits mask) noexcept {
        bits_ |= mask;
        return *this;
    }
    constexpr CapabilityList& clear(Bits mask) noexcept {
        bits_ &= ~mask;
        return *this;
    }

    friend constexpr bool operator==(CapabilityList, CapabilityList) noexcept = default;

private:
    Bits bits_ = 0;
};

static_assert(sizeof(CapabilityList) == 4, "passed in 32 bits");

// "CapabilityList(0x0000000a)": the bits in fixed-width hexadecimal.
std::string toString(CapabilityList list);
std::ostream& operator<<(std::ostream& out, CapabilityList list);

}  // namespace capabilities
