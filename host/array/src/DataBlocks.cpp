// Large data blocks: a huge-page-aligned allocation of a whole number of huge pages,
// advised for transparent huge pages, so that a fresh 80 MB output faults in 39 pages
// instead of 19 532. Blocks given back wait in a cache bounded in bytes, newest reused
// first; under AddressSanitizer a cached block is poisoned, so writes after it was given
// back, or through a second owner, are reported.
#include "DataBlocks.hpp"

#include <foundation/core/diag/terminate.hpp>
#include <matrix/DataBlocks.hpp>

#include <sanitizer/asan_interface.h>
#include <sys/mman.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <mutex>
#include <new>
#include <optional>
#include <unordered_map>
#include <vector>

namespace matrix::detail {
namespace {

struct Block {
    void* data;
    std::size_t capacity;
};

std::size_t limitFromEnvironment() {
    const char* text = std::getenv("ORVEX_BLOCK_CACHE_BYTES");
    if (text == nullptr || *text == '\0') return DEFAULT_BLOCK_CACHE_BYTES;
    std::size_t value = 0;
    const char* end = text + std::strlen(text);
    const auto [last, error] = std::from_chars(text, end, value);
    return error == std::errc{} && last == end ? value : DEFAULT_BLOCK_CACHE_BYTES;
}

void releaseToSystem(const Block& block) noexcept {
    ASAN_UNPOISON_MEMORY_REGION(block.data, block.capacity);
    ::operator delete(block.data, std::align_val_t{HUGE_PAGE_BYTES});
}

class LargeBlocks {
public:
    void* allocate(std::size_t bytes) {
        if (bytes > std::numeric_limits<std::size_t>::max() - HUGE_PAGE_BYTES) throw std::bad_alloc();
        const std::size_t capacity = (bytes + HUGE_PAGE_BYTES - 1) / HUGE_PAGE_BYTES * HUGE_PAGE_BYTES;
        if (void* cached = takeCached(capacity)) return cached;
        void* data = ::operator new(capacity, std::align_val_t{HUGE_PAGE_BYTES});
        // Where the kernel has no transparent huge pages the block keeps small pages.
        madvise(data, capacity, MADV_HUGEPAGE);
        try {
            const std::lock_guard lock(mutex_);
            live_.emplace(data, capacity);
            ++statistics_.blocksAllocated;
        } catch (...) {
            ::operator delete(data, std::align_val_t{HUGE_PAGE_BYTES});
            throw;
        }
        return data;
    }

    // data is huge-page aligned, so it can only be a large block (allocateData never starts
    // a small one there): one that is not live was given back before, whether it now waits
    // in the cache or went back to the system, or never came from here.
    void release(void* data) noexcept {
        Block block{data, 0};
        {
            const std::lock_guard lock(mutex_);
            const auto found = live_.find(data);
            if (found == live_.end()) {
                foundation::core::diag::terminate("matrix: a data block was given back twice", __FILE__, __LINE__,
                                                  __PRETTY_FUNCTION__);
            }
            block.capacity = found->second;
            live_.erase(found);
        }
        // Oldest blocks make room; each goes back to the system with the lock released.
        while (const std::optional<Block> oldest = takeOldestUnlessRoomFor(block.capacity)) {
            releaseToSystem(*oldest);
        }
        if (!cache(block)) releaseToSystem(block);
    }

    void setLimit(std::size_t bytes) {
        {
            const std::lock_guard lock(mutex_);
            limit_ = bytes;
        }
        while (const std::optional<Block> oldest = takeOldestUnlessRoomFor(0)) {
            releaseToSystem(*oldest);
        }
        const std::lock_guard lock(mutex_);
        statistics_.peakCachedBytes = cachedBytes_;
    }

    DataBlockStatistics statistics() {
        const std::lock_guard lock(mutex_);
        DataBlockStatistics result = statistics_;
        result.liveBlocks = live_.size();
        result.cachedBlocks = cached_.size();
        result.cachedBytes = cachedBytes_;
        result.cacheLimit = limit_;
        return result;
    }

private:
    void* takeCached(std::size_t capacity) {
        const std::lock_guard lock(mutex_);
        // Newest first: its pages are the likeliest to be in the processor's caches.
        const auto found = std::find_if(cached_.rbegin(), cached_.rend(),
                                        [capacity](const Block& b) { return b.capacity == capacity; });
        if (found == cached_.rend()) return nullptr;
        const Block block = *found;
        live_.emplace(block.data, block.capacity);
        cached_.erase(std::next(found).base());
        cachedBytes_ -= block.capacity;
        ++statistics_.cacheHits;
        ASAN_UNPOISON_MEMORY_REGION(block.data, block.capacity);
        return block.data;
    }

    // The oldest cached block while the cache has no room for `capacity` more bytes.
    std::optional<Block> takeOldestUnlessRoomFor(std::size_t capacity) {
        const std::lock_guard lock(mutex_);
        if (cached_.empty() || capacity > limit_ || cachedBytes_ + capacity <= limit_) return std::nullopt;
        const Block oldest = cached_.front();
        cached_.erase(cached_.begin());
        cachedBytes_ -= oldest.capacity;
        return oldest;
    }

    // False when the block does not fit (another thread filled the room, or the list
    // cannot grow): the caller gives it back to the system.
    bool cache(const Block& block) noexcept {
        const std::lock_guard lock(mutex_);
        if (cachedBytes_ + block.capacity > limit_) return false;
        try {
            cached_.push_back(block);
        } catch (const std::bad_alloc&) {
            return false;
        }
        ASAN_POISON_MEMORY_REGION(block.data, block.capacity);
        cachedBytes_ += block.capacity;
        statistics_.peakCachedBytes = std::max(statistics_.peakCachedBytes, cachedBytes_);
        return true;
    }

    std::mutex mutex_;
    std::size_t limit_ = limitFromEnvironment();
    std::unordered_map<void*, std::size_t> live_;
    std::vector<Block> cached_; // oldest first
    std::size_t cachedBytes_ = 0;
    DataBlockStatistics statistics_;
};

// Never destroyed: arrays held by other static objects are freed after this file's
// statics would be.
LargeBlocks& largeBlocks() {
    static auto* const blocks = new LargeBlocks;
    return *blocks;
}

bool hugePageAligned(std::uintptr_t address) { return address % HUGE_PAGE_BYTES == 0; }

} // namespace

// Other blocks are aligned within a malloc'ed block a little larger, whose address is kept
// just before the data. The allocator's own aligned allocation would split off the unused
// head and tail as small free chunks, and every later free of a block of 64 KiB or more
// would then stop to merge them (about 4% of a 1e4-element call). Their data never starts
// on a huge page boundary, so that freeData tells a large block by its address alone, and
// a large block given back twice is caught however long ago it left the cache.
void* allocateData(std::size_t bytes, std::size_t alignment) {
    if (bytes >= LARGE_BLOCK_BYTES) return largeBlocks().allocate(bytes);
    void* block = std::malloc(bytes + alignment);
    if (block == nullptr) throw std::bad_alloc();
    // At least one pointer's room before the data: malloc aligns to more than a pointer.
    std::uintptr_t data = (reinterpret_cast<std::uintptr_t>(block) + alignment) & ~(alignment - 1);
    if (hugePageAligned(data)) [[unlikely]] {
        // Rare: one more alignment's room, and the data one alignment further on.
        std::free(block);
        block = std::malloc(bytes + 2 * alignment);
        if (block == nullptr) throw std::bad_alloc();
        data = (reinterpret_cast<std::uintptr_t>(block) + alignment) & ~(alignment - 1);
        if (hugePageAligned(data)) data += alignment;
    }
    reinterpret_cast<void**>(data)[-1] = block;
    return reinterpret_cast<void*>(data);
}

void freeData(void* data) noexcept {
    // Only a large block starts on a huge page boundary; the others skip the lock.
    if (hugePageAligned(reinterpret_cast<std::uintptr_t>(data))) {
        largeBlocks().release(data);
        return;
    }
    std::free(static_cast<void**>(data)[-1]);
}

} // namespace matrix::detail

namespace matrix {

DataBlockStatistics dataBlockStatistics() { return detail::largeBlocks().statistics(); }

void setDataBlockCacheLimit(std::size_t bytes) { detail::largeBlocks().setLimit(bytes); }

} // namespace matrix
