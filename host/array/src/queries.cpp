#include "ArrayHeader.hpp"
#include "ClassTraits.hpp"

namespace matrix {
namespace {

std::uint32_t flagsOf(const oxArray* a, const char* function) {
    return detail::checkedArray(a, function).flags.load(std::memory_order_relaxed);
}

bool allSet(std::uint32_t flags, std::uint32_t bits) { return (flags & bits) == bits; }

const oxArray& withDimensions(const oxArray* a, const char* function) {
    const oxArray& array = detail::checkedArray(a, function);
    detail::ensureDimensions(array);
    return array;
}

} // namespace

oxClassID getClassID(const oxArray* a) { return detail::checkedArray(a, "matrix::getClassID").classId; }

std::size_t getNumberOfDimensions(const oxArray* a) {
    return withDimensions(a, "matrix::getNumberOfDimensions").numberOfDimensions;
}

Dims getDimensions(const oxArray* a) {
    const oxArray& array = withDimensions(a, "matrix::getDimensions");
    return {array.dimensions, array.numberOfDimensions};
}

std::size_t getNumberOfElements(const oxArray* a) {
    return withDimensions(a, "matrix::getNumberOfElements").numberOfElements;
}

bool isEmpty(const oxArray* a) { return withDimensions(a, "matrix::isEmpty").numberOfElements == 0; }

bool isScalar(const oxArray* a) { return withDimensions(a, "matrix::isScalar").numberOfElements == 1; }

bool isComplex(const oxArray* a) { return allSet(flagsOf(a, "matrix::isComplex"), detail::flag::COMPLEX); }

bool isSparse(const oxArray* a) { return allSet(flagsOf(a, "matrix::isSparse"), detail::flag::SPARSE); }

bool isSharedData(const oxArray* a) { return allSet(flagsOf(a, "matrix::isSharedData"), detail::flag::SHARED_DATA); }

bool isTemporary(const oxArray* a) { return allSet(flagsOf(a, "matrix::isTemporary"), detail::flag::TEMPORARY); }

bool isTwoDimensional(const oxArray* a) {
    const oxArray& array = withDimensions(a, "matrix::isTwoDimensional");
    return allSet(array.flags.load(std::memory_order_relaxed), detail::flag::TWO_DIMENSIONAL);
}

bool isOrdinaryStorage(const oxArray* a) {
    return !allSet(flagsOf(a, "matrix::isOrdinaryStorage"), detail::flag::FOREIGN_STORAGE);
}

bool hasOpaqueDimensions(const oxArray* a) {
    return allSet(flagsOf(a, "matrix::hasOpaqueDimensions"), detail::flag::OPAQUE_DIMENSIONS);
}

void completeDimensions(const oxArray* a) { withDimensions(a, "matrix::completeDimensions"); }

std::size_t getElementSize(oxClassID classId) { return detail::realElementSize(classId); }

std::uint32_t getReferenceCount(const oxArray* a) {
    return detail::checkedArray(a, "matrix::getReferenceCount").referenceCount.load(std::memory_order_relaxed);
}

void* getData(oxArray* a) { return detail::checkedArray(a, "matrix::getData").data; }

const void* getData(const oxArray* a) { return detail::checkedArray(a, "matrix::getData").data; }

} // namespace matrix
