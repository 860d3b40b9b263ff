// What only the array library sees of an array: the extras of non-numeric arrays and
// the allocation of headers (the header itself is matrix/oxArrayLayout.hpp).
#pragma once

#include "HeaderBlocks.hpp"

#include <matrix/oxArray.hpp>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace matrix::detail {

struct ArrayExtras {
    std::vector<ArrayPtr> cells;          // cell arrays: one owned element per cell (null = empty)
    std::vector<std::string> fieldNames;  // struct arrays
    std::string functionName;             // function handles
    std::shared_ptr<void> payload;        // class-object arrays
    ArrayPtr dataOwner;                   // arrays that share another array's data
    std::vector<std::size_t> pendingDimensions; // opaque dimensions, until completed
    std::once_flag dimensionsCompleted;
};


// The glance word of the header's fields (matrix/oxArrayLayout.hpp), or zero.
inline std::uint32_t glanceOf(const oxArray& array) noexcept {
    if (array.numberOfDimensions != 2 || array.classId < 0 || array.classId > MAX_CLASS_ID ||
        array.numberOfElements == std::numeric_limits<std::size_t>::max()) {
        return 0;
    }
    return glance::ofMatrix(static_cast<std::uint32_t>(array.classId), array.flags.load(std::memory_order_relaxed),
                            array.dimensions[0], array.dimensions[1]);
}

// The header of a new array: reference count 1, no marks, dimensions stored with
// trailing singletons beyond the second dropped (fewer than two are padded with 1),
// room for `dataBytes` of data, inline when small. Throws ShapeError when `dataBytes`
// cannot be represented.
oxArray* allocateArray(Dims dimensions, oxClassID classId, std::uint32_t flags, std::size_t dataBytes);
// A rows-by-cols array whose data fits in the header block: one allocation, and none of
// the general path's checks, which such an array cannot fail. The caller has checked that
// the class holds numeric data, and the size.
inline oxArray* allocateInlineMatrix(oxClassID classId, std::uint32_t flags, std::size_t rows, std::size_t cols) {
    oxArray* array = newHeader();
    array->classId = classId;
    array->flags.store(flags | flag::TWO_DIMENSIONAL, std::memory_order_relaxed);
    array->referenceCount.store(1, std::memory_order_relaxed);
    array->numberOfDimensions = 2;
    array->numberOfElements = rows * cols;
    array->dimensions = array->inlineDimensions;
    array->inlineDimensions[0] = rows;
    array->inlineDimensions[1] = cols;
    array->data = array->inlineData;
    array->extras = nullptr;
    array->glance.store(glance::ofMatrix(static_cast<std::uint32_t>(classId), flags, rows, cols),
                        std::memory_order_relaxed);
    return array;
}

inline oxArray* allocateScalar(oxClassID classId, std::uint32_t flags) {
    return allocateInlineMatrix(classId, flags, 1, 1);
}

// Frees an array with data or dimensions of its own blocks, or extras.
void freeArrayWithBlocks(oxArray* array);

// What freeArray does, with its common case inline: an array that lives wholly in its
// header block (most results) goes back to the thread's list without a call.
inline void freeArrayBlocks(oxArray* array) {
    if (array->extras == nullptr && array->data == array->inlineData &&
        array->dimensions == array->inlineDimensions) [[likely]] {
        deleteHeader(array);
        return;
    }
    freeArrayWithBlocks(array);
}

// Stores the element count of the dimensions in `product`; false when it overflows.
bool multiplyDimensions(Dims dimensions, std::size_t& product);
std::string dimensionsText(Dims dimensions);
// The error for dimensions whose element count (or data size) cannot be represented.
ShapeError overflowError(Dims dimensions);
// Bytes of the array's own numeric, logical or char data; 0 for arrays without data.
std::size_t dataBytes(const oxArray& array);

} // namespace matrix::detail
