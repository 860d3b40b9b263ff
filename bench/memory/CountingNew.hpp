// Counts what this binary and every library it loads allocate through operator new, so
// that a benchmark can tell how many allocations a call makes and how large they are.
#pragma once

#include <cstddef>

namespace allocation_counts {

// An allocation of at least this many bytes is counted as large as well.
inline constexpr std::size_t LARGE_BYTES = std::size_t{1} << 20;

struct Totals {
    std::size_t allocations = 0;
    std::size_t largeAllocations = 0;
    std::size_t largeBytes = 0;
};

// Since the process started, on every thread.
Totals totals() noexcept;

} // namespace allocation_counts
