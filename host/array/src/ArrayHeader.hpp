// What only the array library sees of an array: the extras of non-numeric arrays and
// the allocation of headers (the header itself is matrix/oxArrayLayout.hpp).
#pragma once

#include "HeaderBlocks.hpp"

#include <matrix/oxArray.hpp>

#include <atomic>
#include <cstddef>
#include <cstdint>
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


// The header of a new array: reference count 1, no marks, dimensions stored with
// trailing singletons beyond the second dropped (fewer than two are padded with 1),
// room for `dataBytes` of data, inline when small. Throws ShapeError when `dataBytes`
// cannot be represented.
oxArray* allocateArray(Dims dimensions, oxClassID classId, std::uint32_t flags, std::size_t dataBytes);
// A 1-by-1 array with its element in the header block: one allocation, and none of the
// general path's checks, which a scalar cannot fail.
inline oxArray* allocateScalar(oxClassID classId, std::uint32_t flags) {
    oxArray* array = newHeader();
    array->classId = classId;
    array->flags.store(flags | flag::TWO_DIMENSIONAL, std::memory_order_relaxed);
    array->referenceCount.store(1, std::memory_order_relaxed);
    array->numberOfDimensions = 2;
    array->numberOfElements = 1;
    array->dimensions = array->inlineDimensions;
    array->inlineDimensions[0] = 1;
    array->inlineDimensions[1] = 1;
    array->data = array->inlineData;
    array->extras = nullptr;
    return array;
}

// Stores the element count of the dimensions in `product`; false when it overflows.
bool multiplyDimensions(Dims dimensions, std::size_t& product);
std::string dimensionsText(Dims dimensions);
// The error for dimensions whose element count (or data size) cannot be represented.
ShapeError overflowError(Dims dimensions);
// Bytes of the array's own numeric, logical or char data; 0 for arrays without data.
std::size_t dataBytes(const oxArray& array);

} // namespace matrix::detail
