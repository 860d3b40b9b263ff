#include "DataBlocks.hpp"

#include <matrix/DataBlocks.hpp>
#include <matrix/oxArray.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <limits>
#include <new>
#include <thread>
#include <vector>

namespace {

using matrix::ArrayPtr;

constexpr std::size_t MIB = std::size_t{1} << 20;

ArrayPtr doublesOfBytes(std::size_t bytes) {
    const std::size_t dims[] = {bytes / sizeof(double), 1};
    return ArrayPtr(matrix::detail::do_create_uninitnumeric(dims, oxDOUBLE_CLASS, oxREAL));
}

bool hugePageAligned(const void* data) { return reinterpret_cast<std::uintptr_t>(data) % matrix::HUGE_PAGE_BYTES == 0; }

// Each case starts from an empty cache with the default limit and leaves it so.
class DataBlocks : public ::testing::Test {
protected:
    void SetUp() override { resetCache(); }
    void TearDown() override { resetCache(); }
    static void resetCache() {
        matrix::setDataBlockCacheLimit(0);
        matrix::setDataBlockCacheLimit(matrix::DEFAULT_BLOCK_CACHE_BYTES);
    }
};

TEST_F(DataBlocks, LargeDataIsHugePageAlignedAndReusedAfterItIsDropped) {
    const std::size_t before = matrix::dataBlockStatistics().cacheHits;
    void* first = nullptr;
    {
        const ArrayPtr array = doublesOfBytes(3 * MIB);
        first = matrix::getData(array.get());
        EXPECT_TRUE(hugePageAligned(first));
        static_cast<double*>(first)[3 * MIB / sizeof(double) - 1] = 1.0; // the whole block is usable
    }
    EXPECT_EQ(matrix::dataBlockStatistics().cachedBytes, 4 * MIB); // whole huge pages
    // A different size within the same huge pages takes the same block.
    const ArrayPtr again = doublesOfBytes(3 * MIB + 4096);
    EXPECT_EQ(matrix::getData(again.get()), first);
    EXPECT_EQ(matrix::dataBlockStatistics().cacheHits, before + 1);
    EXPECT_EQ(matrix::dataBlockStatistics().cachedBytes, 0u);

    // Data below the threshold keeps the ordinary allocator, and copies of large data are large.
    const ArrayPtr small = doublesOfBytes(64 * 1024);
    const ArrayPtr copy(matrix::duplicateArray(again.get()));
    EXPECT_TRUE(hugePageAligned(matrix::getData(copy.get())));
    EXPECT_EQ(matrix::dataBlockStatistics().liveBlocks, 2u);
}

TEST_F(DataBlocks, TheCacheNeverHoldsMoreThanItsLimit) {
    constexpr std::size_t limit = 10 * MIB;
    matrix::setDataBlockCacheLimit(limit);
    {
        // Larger than the limit: given back to the system at once.
        const ArrayPtr huge = doublesOfBytes(12 * MIB);
    }
    EXPECT_EQ(matrix::dataBlockStatistics().cachedBlocks, 0u);

    std::vector<std::thread> threads;
    std::atomic<bool> overLimit{false};
    for (std::size_t t = 0; t < 4; ++t) {
        threads.emplace_back([t, &overLimit] {
            for (std::size_t i = 0; i < 40; ++i) {
                const std::size_t bytes = (2 + (i * 3 + t) % 7) * MIB; // 2 to 8 MiB, capacities 2 to 8 MiB
                doublesOfBytes(bytes).reset();
                if (matrix::dataBlockStatistics().cachedBytes > limit) overLimit = true;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    const matrix::DataBlockStatistics statistics = matrix::dataBlockStatistics();
    EXPECT_FALSE(overLimit);
    EXPECT_LE(statistics.peakCachedBytes, limit);
    EXPECT_GT(statistics.cachedBytes, 0u);
    EXPECT_EQ(statistics.liveBlocks, 0u);

    // Lowering the limit gives back what no longer fits; 0 keeps nothing.
    matrix::setDataBlockCacheLimit(4 * MIB);
    EXPECT_LE(matrix::dataBlockStatistics().cachedBytes, 4 * MIB);
    matrix::setDataBlockCacheLimit(0);
    doublesOfBytes(2 * MIB).reset();
    EXPECT_EQ(matrix::dataBlockStatistics().cachedBytes, 0u);
    EXPECT_EQ(matrix::dataBlockStatistics().peakCachedBytes, 0u);
}

TEST_F(DataBlocks, ASizeWhoseHugePagesCannotBeCountedIsRefused) {
    EXPECT_THROW(matrix::detail::allocateData(std::numeric_limits<std::size_t>::max() - 100, 64), std::bad_alloc);
    EXPECT_EQ(matrix::dataBlockStatistics().liveBlocks, 0u);
}

TEST_F(DataBlocks, ABlockGivenBackTwiceEndsTheProcess) {
    void* block = matrix::detail::allocateData(2 * MIB, 64);
    matrix::detail::freeData(block);
    EXPECT_DEATH(matrix::detail::freeData(block), "a data block was given back twice");
}

// The second return is caught wherever the first one put the block: not only while it waits
// in the cache, but also when the cache is off, when the block was evicted since, and when
// it was too large for the cache, each of which gave it back to the system.
TEST_F(DataBlocks, ABlockGivenBackTwiceEndsTheProcessAfterItLeftTheCache) {
    matrix::setDataBlockCacheLimit(0);
    void* uncached = matrix::detail::allocateData(2 * MIB, 64);
    matrix::detail::freeData(uncached);
    EXPECT_EQ(matrix::dataBlockStatistics().cachedBlocks, 0u);
    EXPECT_DEATH(matrix::detail::freeData(uncached), "a data block was given back twice");

    matrix::setDataBlockCacheLimit(2 * MIB);
    void* evicted = matrix::detail::allocateData(2 * MIB, 64);
    void* evicting = matrix::detail::allocateData(2 * MIB, 64);
    matrix::detail::freeData(evicted);
    matrix::detail::freeData(evicting); // takes the only room: the older block goes to the system
    EXPECT_EQ(matrix::dataBlockStatistics().cachedBlocks, 1u);
    EXPECT_DEATH(matrix::detail::freeData(evicted), "a data block was given back twice");

    void* tooLarge = matrix::detail::allocateData(4 * MIB, 64);
    matrix::detail::freeData(tooLarge);
    EXPECT_DEATH(matrix::detail::freeData(tooLarge), "a data block was given back twice");
}

// Only large blocks start on a huge page boundary, which is how a return tells them apart.
TEST_F(DataBlocks, SmallBlocksNeverStartOnAHugePageBoundary) {
    std::vector<void*> blocks;
    for (std::size_t bytes = 64; bytes < matrix::LARGE_BLOCK_BYTES; bytes = bytes * 3 / 2 + 64) {
        for (int i = 0; i < 8; ++i) blocks.push_back(matrix::detail::allocateData(bytes, 64));
    }
    for (void* block : blocks) {
        EXPECT_FALSE(hugePageAligned(block));
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 64, 0u);
        matrix::detail::freeData(block);
    }
}

#if defined(__SANITIZE_ADDRESS__)
TEST_F(DataBlocks, AWriteAfterTheBlockWentBackIsReported) {
    double* stale = nullptr;
    {
        const ArrayPtr array = doublesOfBytes(2 * MIB);
        stale = matrix::getTypedData<double>(array.get());
    }
    EXPECT_DEATH(stale[100] = 1.0, "use-after-poison");
}
#endif

} // namespace
