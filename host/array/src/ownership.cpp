// References, marks and the refusal of what the host cannot represent.
#include "ArrayHeader.hpp"

namespace matrix {
namespace {

void setMark(oxArray* a, const char* function, std::uint32_t bits, bool set) {
    oxArray& array = detail::checkedArray(a, function);
    if (set) {
        array.flags.fetch_or(bits, std::memory_order_relaxed);
    } else {
        array.flags.fetch_and(~bits, std::memory_order_relaxed);
    }
}

} // namespace

namespace detail {

void settleDroppedDuringCalls(oxArray& array) {
    const std::uint32_t dropped = array.droppedDuringCalls.load(std::memory_order_relaxed);
    array.droppedDuringCalls.store(0, std::memory_order_relaxed);
    if (array.referenceCount.fetch_sub(dropped, std::memory_order_acq_rel) == dropped) {
        freeArray(&array);
    }
}

} // namespace detail

oxArray* addReference(oxArray* a) {
    detail::holdReference(detail::checkedArray(a, "matrix::addReference"));
    return a;
}

void destroyArray(const oxArray* a) {
    if (a == nullptr) return;
    // The handle is never created const; the last reference frees it.
    auto* array = const_cast<oxArray*>(a);
    // A call on this thread holds it: the reference leaves when the call's hold does.
    if (detail::dropWaitsForCalls(*array)) return;
    // A count of 1 means no other holder exists that could add or drop a reference
    // concurrently, so the sole owner frees without a locked decrement.
    if (array->referenceCount.load(std::memory_order_acquire) == 1 ||
        array->referenceCount.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        detail::freeArrayBlocks(array);
    }
}

void setTemporary(oxArray* a, bool temporary) {
    setMark(a, "matrix::setTemporary", detail::flag::TEMPORARY, temporary);
}

void clearTemporary(oxArray* a) { setMark(a, "matrix::clearTemporary", detail::flag::TEMPORARY, false); }

void setForeignStorage(oxArray* a, bool foreign) {
    setMark(a, "matrix::setForeignStorage", detail::flag::FOREIGN_STORAGE, foreign);
}

void rejectUnsupportedShape(const oxArray* a) {
    const oxArray& array = detail::checkedArray(a, "matrix::rejectUnsupportedShape");
    detail::ensureDimensions(array);
    const Dims dims(array.dimensions, array.numberOfDimensions);
    if (dims.size() > MAX_DIMENSIONS) {
        throw ShapeError("matrix: an array of " + std::to_string(dims.size()) + " dimensions exceeds the limit of " +
                         std::to_string(MAX_DIMENSIONS));
    }
    std::size_t elements = 0;
    if (!detail::multiplyDimensions(dims, elements)) {
        throw detail::overflowError(dims);
    }
}

void rejectUnsupportedClassId(oxClassID classId) {
    if (classId < 0 || classId > MAX_CLASS_ID) {
        throw ClassIdError("matrix: class id " + std::to_string(classId) + " is outside 0.." +
                           std::to_string(MAX_CLASS_ID));
    }
}

} // namespace matrix
