// The layout behind the opaque oxArray handle. Only the array library sees it.
//
// A numeric, logical or char array whose data fits in INLINE_DATA_BYTES lives in one
// allocation with its header and up to INLINE_DIMENSIONS dimensions; larger data is a
// separate DATA_ALIGNMENT-aligned block so that element-wise loops vectorise over it.
// Queries are plain loads of the fields below; the flags word and the reference count
// are atomic because marks and references change while other threads read.
#pragma once

#include <matrix/oxArray.hpp>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace matrix::detail {

inline constexpr std::size_t INLINE_DIMENSIONS = 4;
inline constexpr std::size_t INLINE_DATA_BYTES = 32;
inline constexpr std::size_t DATA_ALIGNMENT = 64;

// Bits of the flags word.
namespace flag {
inline constexpr std::uint32_t COMPLEX_LOW = 1u << 0;
inline constexpr std::uint32_t COMPLEX_HIGH = 1u << 1;
inline constexpr std::uint32_t COMPLEX = COMPLEX_LOW | COMPLEX_HIGH;
inline constexpr std::uint32_t SPARSE = 1u << 2;
inline constexpr std::uint32_t SHARED_DATA = 1u << 3;
inline constexpr std::uint32_t TEMPORARY = 1u << 4;
inline constexpr std::uint32_t STORAGE_LOW = 1u << 5;
inline constexpr std::uint32_t STORAGE_HIGH = 1u << 6;
inline constexpr std::uint32_t FOREIGN_STORAGE = STORAGE_LOW | STORAGE_HIGH;
inline constexpr std::uint32_t TWO_DIMENSIONAL = 1u << 7;
inline constexpr std::uint32_t OPAQUE_DIMENSIONS = 1u << 8;
} // namespace flag

// What arrays other than plain numeric ones carry besides their header.
struct ArrayExtras {
    std::vector<ArrayPtr> cells;          // cell arrays: one owned element per cell (null = empty)
    std::vector<std::string> fieldNames;  // struct arrays
    std::string functionName;             // function handles
    std::shared_ptr<void> payload;        // class-object arrays
    ArrayPtr dataOwner;                   // arrays that share another array's data
    std::vector<std::size_t> pendingDimensions; // opaque dimensions, until completed
    std::once_flag dimensionsCompleted;
};

} // namespace matrix::detail

struct oxArray {
    oxClassID classId;
    std::atomic<std::uint32_t> flags;
    std::atomic<std::uint32_t> referenceCount;
    std::uint32_t numberOfDimensions;
    std::size_t numberOfElements; // saturates at the largest size_t when the product overflows
    std::size_t* dimensions;      // inlineDimensions, or a separate block for more dimensions
    void* data;                   // inlineData, a separate aligned block, another array's data, or null
    matrix::detail::ArrayExtras* extras; // null for plain numeric, logical and char arrays
    std::size_t inlineDimensions[matrix::detail::INLINE_DIMENSIONS];
    alignas(16) std::byte inlineData[matrix::detail::INLINE_DATA_BYTES];
};

namespace matrix::detail {

[[noreturn]] void throwNullHandle(const char* function);

// Throws std::logic_error naming the function when given a null handle. Inline: every
// query passes through it, and the test must cost no call.
inline const oxArray& checkedArray(const oxArray* array, const char* function) {
    if (array == nullptr) [[unlikely]] {
        throwNullHandle(function);
    }
    return *array;
}
inline oxArray& checkedArray(oxArray* array, const char* function) {
    return const_cast<oxArray&>(checkedArray(static_cast<const oxArray*>(array), function));
}

// The header of a new array: reference count 1, no marks, dimensions stored with
// trailing singletons beyond the second dropped (fewer than two are padded with 1),
// room for `dataBytes` of data, inline when small. Throws ShapeError when `dataBytes`
// cannot be represented.
oxArray* allocateArray(Dims dimensions, oxClassID classId, std::uint32_t flags, std::size_t dataBytes);
// Frees what allocateArray and the creation functions attached.
void freeArray(oxArray* array);

// Stores the element count of the dimensions in `product`; false when it overflows.
bool multiplyDimensions(Dims dimensions, std::size_t& product);
std::string dimensionsText(Dims dimensions);
// The error for dimensions whose element count (or data size) cannot be represented.
ShapeError overflowError(Dims dimensions);
// Bytes of the array's own numeric, logical or char data; 0 for arrays without data.
std::size_t dataBytes(const oxArray& array);

void completeOpaqueDimensions(const oxArray& array);

// Queries that read dimensions call this first: opaque dimensions are materialised
// once, and concurrent callers wait for the first.
inline void ensureDimensions(const oxArray& array) {
    if ((array.flags.load(std::memory_order_acquire) & flag::OPAQUE_DIMENSIONS) != 0) {
        completeOpaqueDimensions(array);
    }
}

} // namespace matrix::detail
