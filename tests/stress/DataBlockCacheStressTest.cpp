// Threads making and dropping large arrays while others run parallel element-wise calls
// whose outputs are large arrays too: every block the cache hands out must belong to one
// array at a time (each thread's own pattern survives until it drops the array), and the
// cache must stay under its limit throughout.
#include <builtin/builtinreg/MakeVariant.hpp>
#include <matrix/DataBlocks.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <thread>
#include <vector>

namespace {

using namespace Velloc::builtin::builtinreg;
using Velloc::builtin::BuiltinFcn;

constexpr std::size_t MIB = std::size_t{1} << 20;
constexpr std::size_t CACHE_LIMIT = 12 * MIB;
// Doubles of a 2.4 MB output: a large block, and far above the parallel threshold.
constexpr std::size_t ELEMENTS = 300'000;
constexpr std::chrono::seconds BUDGET{3};

double plusOf(double a, double b) { return a + b; }

const BuiltinFcn& plusBuiltin() {
    static const BuiltinVariantLists lists{makeVariants<&plusOf>("plus", {.isElementWise = true})};
    static const RegisteredBuiltin builtin("plus", "stress", "", lists, noDefaultImplementation("plus"));
    return builtin;
}

matrix::ArrayPtr column(std::size_t elements, double value) {
    const std::size_t dims[] = {elements, 1};
    matrix::ArrayPtr array(matrix::detail::do_create_uninitnumeric(dims, oxDOUBLE_CLASS, oxREAL));
    double* data = matrix::getTypedData<double>(array.get());
    for (std::size_t i = 0; i < elements; ++i) data[i] = value;
    return array;
}

bool holdsOnly(const oxArray* array, double value) {
    const double* data = matrix::getTypedData<double>(array);
    for (std::size_t i = 0; i < matrix::getNumberOfElements(array); ++i) {
        if (data[i] != value) return false;
    }
    return true;
}

TEST(DataBlockCacheStress, ArraysMadeAndDroppedWhileParallelLoopsRun) {
    matrix::setDataBlockCacheLimit(CACHE_LIMIT);
    const matrix::ArrayPtr a = column(ELEMENTS, 1);
    const matrix::ArrayPtr b = column(ELEMENTS, 2);
    const auto deadline = std::chrono::steady_clock::now() + BUDGET;
    std::atomic<int> faults{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 2; ++t) {
        threads.emplace_back([&, t] {
            for (std::size_t round = 0; std::chrono::steady_clock::now() < deadline; ++round) {
                // 2 to 5 MiB, so blocks of several capacities meet in the cache.
                const double value = 100.0 * t + static_cast<double>(round);
                const matrix::ArrayPtr held = column((2 + round % 4) * MIB / sizeof(double), value);
                std::this_thread::yield();
                if (!holdsOnly(held.get(), value)) ++faults;
                if (matrix::dataBlockStatistics().cachedBytes > CACHE_LIMIT) ++faults;
            }
        });
        threads.emplace_back([&] {
            oxArray* args[] = {a.get(), b.get()};
            while (std::chrono::steady_clock::now() < deadline) {
                oxArray* sum = nullptr;
                plusBuiltin().invoke(1, &sum, 2, args, BuiltinFcn::NoLxe);
                const matrix::ArrayPtr owned(sum);
                if (!holdsOnly(sum, 3)) ++faults;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(faults.load(), 0);
    EXPECT_LE(matrix::dataBlockStatistics().peakCachedBytes, CACHE_LIMIT);
    EXPECT_GT(matrix::dataBlockStatistics().cacheHits, 0u);
    matrix::setDataBlockCacheLimit(matrix::DEFAULT_BLOCK_CACHE_BYTES);
}

} // namespace
