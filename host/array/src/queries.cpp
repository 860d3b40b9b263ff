#include "ArrayHeader.hpp"
#include "ClassTraits.hpp"

// The queries not read inline (matrix/oxArrayLayout.hpp has the others).
namespace matrix {
namespace {

std::uint32_t flagsOf(const oxArray* a, const char* function) {
    return detail::checkedArray(a, function).flags.load(std::memory_order_relaxed);
}

bool allSet(std::uint32_t flags, std::uint32_t bits) { return (flags & bits) == bits; }

} // namespace

bool isSharedData(const oxArray* a) { return allSet(flagsOf(a, "matrix::isSharedData"), detail::flag::SHARED_DATA); }

bool isTemporary(const oxArray* a) { return allSet(flagsOf(a, "matrix::isTemporary"), detail::flag::TEMPORARY); }

bool isTwoDimensional(const oxArray* a) {
    const oxArray& array = detail::withDimensions(a, "matrix::isTwoDimensional");
    return allSet(array.flags.load(std::memory_order_relaxed), detail::flag::TWO_DIMENSIONAL);
}

bool isOrdinaryStorage(const oxArray* a) {
    return !allSet(flagsOf(a, "matrix::isOrdinaryStorage"), detail::flag::FOREIGN_STORAGE);
}

bool hasOpaqueDimensions(const oxArray* a) {
    return allSet(flagsOf(a, "matrix::hasOpaqueDimensions"), detail::flag::OPAQUE_DIMENSIONS);
}

void completeDimensions(const oxArray* a) { detail::withDimensions(a, "matrix::completeDimensions"); }

std::size_t getElementSize(oxClassID classId) { return detail::realElementSize(classId); }

std::uint32_t getReferenceCount(const oxArray* a) {
    const oxArray& array = detail::checkedArray(a, "matrix::getReferenceCount");
    return array.referenceCount.load(std::memory_order_relaxed) + array.callHolds.load(std::memory_order_relaxed) -
           array.droppedDuringCalls.load(std::memory_order_relaxed);
}

} // namespace matrix
