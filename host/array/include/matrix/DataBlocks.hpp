// Large array data: blocks of LARGE_BLOCK_BYTES or more are aligned to HUGE_PAGE_BYTES and
// advised to the kernel for transparent huge pages, and freed ones wait in a small cache
// so that a loop making and dropping temporaries of one size does not fault pages in
// again. The cache holds at most its limit in bytes; ORVEX_BLOCK_CACHE_BYTES sets the
// limit at start-up, and 0 turns the cache off.
#pragma once

#include <cstddef>

namespace matrix {

inline constexpr std::size_t HUGE_PAGE_BYTES = std::size_t{2} << 20;
inline constexpr std::size_t LARGE_BLOCK_BYTES = std::size_t{2} << 20;
inline constexpr std::size_t DEFAULT_BLOCK_CACHE_BYTES = std::size_t{256} << 20;

struct DataBlockStatistics {
    std::size_t blocksAllocated = 0; // taken from the system allocator
    std::size_t cacheHits = 0;       // handed out again from the cache
    std::size_t liveBlocks = 0;
    std::size_t cachedBlocks = 0;
    std::size_t cachedBytes = 0;
    std::size_t peakCachedBytes = 0; // the most the cache ever held
    std::size_t cacheLimit = 0;
};

// Since the process started, on every thread.
DataBlockStatistics dataBlockStatistics();

// Sets the cache's limit in bytes (0 turns it off) and releases what no longer fits.
// The peak is restarted at what the cache then holds.
void setDataBlockCacheLimit(std::size_t bytes);

} // namespace matrix
