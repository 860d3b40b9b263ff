#include "ArrayHeader.hpp"

#include "ClassTraits.hpp"
#include "DataBlocks.hpp"
#include "HeaderBlocks.hpp"

#include <algorithm>
#include <limits>
#include <new>

namespace matrix::detail {
namespace {

std::size_t storedDimensionCount(Dims dimensions) {
    std::size_t count = dimensions.size();
    while (count > 2 && dimensions[count - 1] == 1) --count;
    return std::max<std::size_t>(count, 2);
}

} // namespace

void throwNullHandle(const char* function) {
    throw std::logic_error(std::string(function) + ": null oxArray handle");
}

bool multiplyDimensions(Dims dimensions, std::size_t& product) {
    product = 1;
    for (const std::size_t extent : dimensions) {
        if (__builtin_mul_overflow(product, extent, &product)) return false;
    }
    return true;
}

std::string dimensionsText(Dims dimensions) {
    std::string text;
    for (const std::size_t extent : dimensions) {
        if (!text.empty()) text += 'x';
        text += std::to_string(extent);
    }
    return text;
}

ShapeError overflowError(Dims dimensions) {
    return ShapeError("matrix: dimensions " + dimensionsText(dimensions) + " exceed the addressable element count");
}

std::size_t dataBytes(const oxArray& array) {
    if (array.data == nullptr) return 0;
    const std::size_t complexFactor = (array.flags.load(std::memory_order_relaxed) & flag::COMPLEX) == flag::COMPLEX ? 2 : 1;
    return array.numberOfElements * realElementSize(array.classId) * complexFactor;
}

oxArray* allocateArray(Dims dimensions, oxClassID classId, std::uint32_t flags, std::size_t dataBytes) {
    const std::size_t count = storedDimensionCount(dimensions);
    if (count > std::numeric_limits<std::uint32_t>::max()) {
        throw ShapeError("matrix: " + std::to_string(count) + " dimensions cannot be represented");
    }
    if (dataBytes > std::numeric_limits<std::size_t>::max() - DATA_ALIGNMENT) {
        throw ShapeError("matrix: data of " + std::to_string(dataBytes) + " bytes cannot be allocated");
    }
    std::unique_ptr<std::size_t[]> separateDimensions(count > INLINE_DIMENSIONS ? new std::size_t[count] : nullptr);
    oxArray* array = newHeader();
    array->classId = classId;
    array->referenceCount.store(1, std::memory_order_relaxed);
    array->numberOfDimensions = static_cast<std::uint32_t>(count);
    array->dimensions = separateDimensions ? separateDimensions.release() : array->inlineDimensions;
    array->data = array->inlineData;
    array->extras = nullptr;
    std::size_t elements = 1;
    bool overflows = false;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t extent = i < dimensions.size() ? dimensions[i] : 1;
        array->dimensions[i] = extent;
        overflows |= __builtin_mul_overflow(elements, extent, &elements);
    }
    array->numberOfElements = overflows ? std::numeric_limits<std::size_t>::max() : elements;
    if (count == 2) flags |= flag::TWO_DIMENSIONAL;
    array->flags.store(flags, std::memory_order_relaxed);
    array->glance.store(glanceOf(*array), std::memory_order_relaxed);
    if (dataBytes > INLINE_DATA_BYTES) {
        const std::size_t rounded = (dataBytes + DATA_ALIGNMENT - 1) / DATA_ALIGNMENT * DATA_ALIGNMENT;
        try {
            array->data = allocateData(rounded, DATA_ALIGNMENT);
        } catch (...) {
            if (array->dimensions != array->inlineDimensions) delete[] array->dimensions;
            deleteHeader(array);
            throw;
        }
    }
    return array;
}

void freeArrayWithBlocks(oxArray* array) {
    const bool ownsSeparateData = array->data != nullptr && array->data != array->inlineData &&
                                  (array->extras == nullptr || !array->extras->dataOwner);
    if (ownsSeparateData) freeData(array->data);
    if (array->dimensions != array->inlineDimensions) delete[] array->dimensions;
    delete array->extras;
    deleteHeader(array);
}

void freeArray(oxArray* array) { freeArrayBlocks(array); }

void completeOpaqueDimensions(const oxArray& constArray) {
    // The handle is never created const; completion is the one change a query makes.
    auto& array = const_cast<oxArray&>(constArray);
    std::call_once(array.extras->dimensionsCompleted, [&array] {
        const std::vector<std::size_t>& pending = array.extras->pendingDimensions;
        std::copy(pending.begin(), pending.end(), array.dimensions);
        array.numberOfDimensions = static_cast<std::uint32_t>(pending.size());
        std::size_t elements = 0;
        array.numberOfElements = multiplyDimensions(pending, elements) ? elements : std::numeric_limits<std::size_t>::max();
        array.glance.store(glanceOf(array), std::memory_order_release);
        array.flags.fetch_and(~flag::OPAQUE_DIMENSIONS, std::memory_order_release);
    });
}

} // namespace matrix::detail
