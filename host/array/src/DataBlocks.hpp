// Where array data lives when it does not fit inline in the header.
#pragma once

#include <cstddef>

namespace matrix::detail {

// `bytes` (> 0) of uninitialised data aligned to `alignment` (at least a pointer's size,
// below a huge page); blocks of LARGE_BLOCK_BYTES or more come aligned to a huge page, from
// the cache when it holds one of the same capacity, and only they start on a huge page
// boundary.
void* allocateData(std::size_t bytes, std::size_t alignment);
// Takes back what allocateData gave, whatever its alignment; large blocks go to the cache
// while it has room. A large block given back twice ends the process, whether the first
// time cached it or gave it back to the system (the cache off, the block evicted since, or
// too large for it).
void freeData(void* data) noexcept;

} // namespace matrix::detail
