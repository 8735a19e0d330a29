// The array record. Only the leading fields below are public; the library keeps more state
// behind them. Arrays are made and destroyed by the library alone (see create.hpp and
// do_create_uninitnumeric): never construct or copy a kaArray_tag yourself, except as a
// stand-alone record for reading its fields.
#pragma once

#include <cstddef>
#include <cstdint>

#include <ka/class_id.hpp>

namespace matrix::flags {
inline constexpr std::uint32_t sparse = 0x10u;
// Complex needs both bits; either one alone leaves the array real.
inline constexpr std::uint32_t complexLow = 0x80u;
inline constexpr std::uint32_t complexHigh = 0x800u;
inline constexpr std::uint32_t complex = complexLow | complexHigh;
// The dimension words are stale until _complete_opaque_dimensions has run.
inline constexpr std::uint32_t opaqueDimensions = 0x100u;
// A mark the interpreter sets on temporaries; taking a reference clears it.
inline constexpr std::uint32_t temporary = 0x200u;
// The data block may be used by another array too; is_data_shared_impl decides.
inline constexpr std::uint32_t mayShareData = 0x1000u;
// Dimensions live in the record itself as rows and columns.
inline constexpr std::uint32_t twoD = 0x80000u;
}  // namespace matrix::flags

// The two dimension words: rows and columns of a 2-D array, or the list of an N-d one.
union kaDimensionData {
    std::size_t shape[2];
    struct {
        const std::size_t* list;
        std::size_t count;
    } nd;
};

struct kaArray_tag {
    std::int32_t storedClass;  // kaClassID, or above kaFUNCTION_CLASS: ask for the class
    std::uint32_t refCount;    // first count: references held by callers
    std::int32_t pinCount;     // second count: holds kept by the library (see ka::pin)
    std::uint32_t flags;       // matrix::flags
    kaDimensionData dims;
    void* data;  // elements; complex ones interleave real and imaginary parts

    // The class id of an array whose stored class is above kaFUNCTION_CLASS.
    kaClassID _get_class_id_non_trivial() const;
    // Fills in the dimension words and clears matrix::flags::opaqueDimensions.
    void _complete_opaque_dimensions() const;
    // True while another array uses the same data block.
    bool is_data_shared_impl() const;
};

typedef kaArray_tag kaArray;

static_assert(sizeof(std::size_t) == 8 && sizeof(void*) == 8, "dimension words are 64-bit");
