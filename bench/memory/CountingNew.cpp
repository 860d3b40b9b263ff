// The replaceable operator new and delete of the whole process. The plain and the aligned
// single-object forms count and allocate; the standard library's array and nothrow forms
// call them. Every delete frees with free().
#include "CountingNew.hpp"

#include <atomic>
#include <cstdlib>
#include <new>

namespace allocation_counts {
namespace {

std::atomic<std::size_t> allocations{0};
std::atomic<std::size_t> largeAllocations{0};
std::atomic<std::size_t> largeBytes{0};

void count(std::size_t size) noexcept {
    allocations.fetch_add(1, std::memory_order_relaxed);
    if (size >= LARGE_BYTES) {
        largeAllocations.fetch_add(1, std::memory_order_relaxed);
        largeBytes.fetch_add(size, std::memory_order_relaxed);
    }
}

} // namespace

Totals totals() noexcept {
    return {allocations.load(std::memory_order_relaxed), largeAllocations.load(std::memory_order_relaxed),
            largeBytes.load(std::memory_order_relaxed)};
}

} // namespace allocation_counts

void* operator new(std::size_t size) {
    allocation_counts::count(size);
    if (void* memory = std::malloc(size == 0 ? 1 : size)) {
        return memory;
    }
    throw std::bad_alloc();
}

void* operator new(std::size_t size, std::align_val_t alignment) {
    allocation_counts::count(size);
    const auto align = static_cast<std::size_t>(alignment);
    // aligned_alloc takes only whole multiples of the alignment.
    const std::size_t rounded = (size == 0 ? align : (size + align - 1) / align * align);
    if (void* memory = std::aligned_alloc(align, rounded)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept { std::free(memory); }

void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }

void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
