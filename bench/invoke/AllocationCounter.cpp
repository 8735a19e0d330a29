#include "AllocationCounter.hpp"

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* pointer, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

std::atomic<std::uint64_t> newCount{0};
std::atomic<std::uint64_t> mallocCount{0};

void countMalloc() {
    mallocCount.fetch_add(1, std::memory_order_relaxed);
}

void* allocateForNew(std::size_t size, std::size_t alignment) {
    newCount.fetch_add(1, std::memory_order_relaxed);
    void* memory = alignment <= alignof(std::max_align_t) ? __libc_malloc(size == 0 ? 1 : size)
                                                          : __libc_memalign(alignment, size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

}  // namespace

namespace allocations {

Counts now() {
    return {newCount.load(std::memory_order_relaxed), mallocCount.load(std::memory_order_relaxed)};
}

}  // namespace allocations

// --- the C allocation functions, for the whole process ---------------------------------------

extern "C" {

void* malloc(std::size_t size) {
    countMalloc();
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
    countMalloc();
    return __libc_calloc(count, size);
}

void* realloc(void* pointer, std::size_t size) {
    countMalloc();
    return __libc_realloc(pointer, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    countMalloc();
    return __libc_memalign(alignment, size);
}

int posix_memalign(void** out, std::size_t alignment, std::size_t size) {
    countMalloc();
    void* memory = __libc_memalign(alignment, size);
    if (memory == nullptr) {
        return 12;  // ENOMEM
    }
    *out = memory;
    return 0;
}

}  // extern "C"

// --- the global operator new and delete ------------------------------------------------------

void* operator new(std::size_t size) {
    return allocateForNew(size, 0);
}
void* operator new[](std::size_t size) {
    return allocateForNew(size, 0);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return allocateForNew(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
    return allocateForNew(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return allocateForNew(size, 0);
    } catch (...) {
        return nullptr;
    }
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return allocateForNew(size, 0);
    } catch (...) {
        return nullptr;
    }
}

void operator delete(void* pointer) noexcept {
    std::free(pointer);
}
void operator delete[](void* pointer) noexcept {
    std::free(pointer);
}
void operator delete(void* pointer, std::size_t) noexcept {
    std::free(pointer);
}
void operator delete[](void* pointer, std::size_t) noexcept {
    std::free(pointer);
}
void operator delete(void* pointer, std::align_val_t) noexcept {
    std::free(pointer);
}
void operator delete[](void* pointer, std::align_val_t) noexcept {
    std::free(pointer);
}
void operator delete(void* pointer, std::size_t, std::align_val_t) noexcept {
    std::free(pointer);
}
void operator delete[](void* pointer, std::size_t, std::align_val_t) noexcept {
    std::free(pointer);
}
