// Heap blocks of element data. A block is counted by the arrays that use it, so that
// shared-data copies can point at one block. Data is 64-byte aligned; blocks of 4 MiB and
// more are mapped on their own and advised to use transparent huge pages, which cuts the page
// faults of touching a fresh large output by a factor of about 500.
#pragma once

#include <cstddef>

namespace ka::detail {

struct DataBlock {
    std::size_t users;
    std::size_t mappedBytes;  // 0 for a block from the C heap
    void* heapStart;          // what the C heap gave, which the header may stand behind
};

// Throws std::bad_alloc.
DataBlock* allocateBlock(std::size_t bytes);
void* blockData(DataBlock* block);
// Drops one user; frees the block with the last one.
void releaseBlock(DataBlock* block) noexcept;

inline constexpr std::size_t hugePageThreshold = std::size_t{4} << 20;

}  // namespace ka::detail
