// What the library keeps behind the public fields of an array, and the helpers that build
// records. Internal to the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <typeinfo>
#include <vector>

#include <ka/ka.hpp>

namespace ka::detail {

struct DataBlock;

enum class Kind : unsigned char { numeric, sparse, cell, structure, function, object };

// State that only some kinds of array need, kept out of the record to keep scalars small.
struct Extra {
    Dims hiddenDims;  // dimensions held back while the opaque mark is set
    std::vector<std::size_t> columnStarts, rowIndices;  // sparse
    std::vector<std::string> fieldNames;                // struct
    std::string name;                                   // function name or object class name
    kaClassID objectClass = kaUNKNOWN_CLASS;
    std::shared_ptr<void> payload;
    const std::type_info* payloadType = nullptr;
};

// Elements of up to this many bytes live in the record itself: every real or complex scalar.
inline constexpr std::size_t inlineBytes = 16;
inline constexpr std::size_t dataAlignment = 64;

// A record is followed, in the same allocation, by a 64-byte aligned buffer of inlineBytes.
// Placing it by hand keeps the record on the fast path of malloc; an over-aligned type would
// cost a memalign for every scalar.
struct ArrayRecord final : kaArray_tag {
    ArrayRecord(kaClassID stored, Kind k) : kaArray_tag{}, kind(k) {
        storedClass = stored;
        refCount = 1;
        data = inlineData();
    }

    std::byte* inlineData() const {
        const auto end = reinterpret_cast<std::uintptr_t>(this) + sizeof(ArrayRecord);
        return reinterpret_cast<std::byte*>((end + dataAlignment - 1) & ~(dataAlignment - 1));
    }

    Kind kind;
    DataBlock* block = nullptr;             // owned share of a heap data block, if any
    std::size_t heldCount = 0;              // element arrays a cell or struct owns, from data
    std::unique_ptr<std::size_t[]> ndDims;  // dimension list of an N-d array
    std::unique_ptr<Extra> extra;

    Extra& ensureExtra();
};

inline ArrayRecord& record(kaArray_tag* a) {
    return static_cast<ArrayRecord&>(*a);
}
inline const ArrayRecord& record(const kaArray_tag* a) {
    return static_cast<const ArrayRecord&>(*a);
}

// A new record with one reference, counted as live.
ArrayPtr newRecord(kaClassID stored, Kind kind);

// Sets the dimension words (and the 2-D flag) from a list, after dropping trailing singleton
// dimensions beyond the second. Returns the number of elements; throws
// std::bad_array_new_length if it overflows.
std::size_t setDimensions(ArrayRecord& r, std::span<const std::size_t> dims);

// Gives the record room for `bytes` of data: its inline buffer or a fresh data block.
void allocateData(ArrayRecord& r, std::size_t bytes);

// bytes = count * size, or std::bad_array_new_length.
std::size_t checkedProduct(std::size_t count, std::size_t size);

bool isNumericClass(kaClassID id);
const char* kindName(kaClassID id);

// The arrays a cell or struct holds: numel entries for a cell, numel * fields for a struct,
// each null or owning one reference.
std::span<kaArray_tag*> heldArrays(const kaArray_tag* a);

std::string toUtf8(std::u16string_view text);
std::u16string toUtf16(std::string_view text);

}  // namespace ka::detail
