#include "data_block.hpp"

#include <sys/mman.h>

#include <cstdint>
#include <cstdlib>
#include <new>

#include "array_record.hpp"

namespace ka::detail {
namespace {

// The block header takes one alignment unit, so the data after it stays 64-byte aligned.
constexpr std::size_t headerBytes = dataAlignment;
constexpr std::size_t hugePage = std::size_t{2} << 20;

std::size_t roundUp(std::size_t n, std::size_t unit) {
    return (n + unit - 1) / unit * unit;
}

// Maps a region aligned to a huge page, so that every 2 MiB of it can be backed by one.
void* mapHugeAligned(std::size_t bytes) {
    const std::size_t slack = hugePage;
    void* base =
        mmap(nullptr, bytes + slack, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (base == MAP_FAILED) throw std::bad_alloc();
    const auto start = reinterpret_cast<std::uintptr_t>(base);
    const std::uintptr_t aligned = roundUp(start, hugePage);
    if (aligned > start) munmap(base, aligned - start);
    const std::size_t tail = start + slack - aligned;
    if (tail > 0) munmap(reinterpret_cast<void*>(aligned + bytes), tail);
    void* region = reinterpret_cast<void*>(aligned);
    // Advice only: without huge pages the block still works, just with more page faults.
    madvise(region, bytes, MADV_HUGEPAGE);
    return region;
}

}  // namespace

DataBlock* allocateBlock(std::size_t bytes) {
    if (bytes > SIZE_MAX - hugePage - headerBytes) throw std::bad_array_new_length();
    const std::size_t total = headerBytes + bytes;
    void* memory = nullptr;
    std::size_t mapped = 0;
    if (total >= hugePageThreshold) {
        mapped = roundUp(total, hugePage);
        memory = mapHugeAligned(mapped);
        return new (memory) DataBlock{1, mapped, nullptr};
    }
    // malloc aligned by hand rather than aligned_alloc: small blocks then come from the
    // thread's cache of recently freed chunks, which aligned allocations bypass, and a fresh
    // 100-element output costs a fifth of what it did.
    void* const heap = std::malloc(total + dataAlignment - 1);
    if (heap == nullptr) throw std::bad_alloc();
    memory =
        reinterpret_cast<void*>(roundUp(reinterpret_cast<std::uintptr_t>(heap), dataAlignment));
    return new (memory) DataBlock{1, 0, heap};
}

void* blockData(DataBlock* block) {
    return reinterpret_cast<std::byte*>(block) + headerBytes;
}

void releaseBlock(DataBlock* block) noexcept {
    if (block == nullptr || --block->users > 0) return;
    if (block->mappedBytes > 0) {
        munmap(block, block->mappedBytes);
    } else {
        std::free(block->heapStart);
    }
}

}  // namespace ka::detail
