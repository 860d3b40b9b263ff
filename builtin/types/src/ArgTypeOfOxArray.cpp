#include <builtin/types/ArgTypeOfOxArray.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace Velloc::builtin::types {

namespace {

using Shape = OxArrayTypes::Shape;
using Density = OxArrayTypes::Density;
using Complexity = OxArrayTypes::Complexity;

struct ShapeOfArray {
    Shape shape;
    std::uint64_t numDims;
};

// The host keeps at least two dimensions and drops trailing singletons beyond the
// second, so more than two dimensions make an N-d array.
ShapeOfArray classifyShape(matrix::Dims dims) noexcept {
    if (dims.size() > 2) {
        const bool empty = std::find(dims.begin(), dims.end(), 0) != dims.end();
        return empty ? ShapeOfArray{Shape::EMPTY, 0} : ShapeOfArray{Shape::ND, dims.size()};
    }
    const std::size_t rows = dims[0];
    const std::size_t cols = dims[1];
    if (rows == 1 && cols == 1) {
        return {Shape::SCALAR, 0};
    }
    if (rows == 0 || cols == 0) {
        if (rows == 1) {
            return {Shape::EMPTY_ROW, 0};
        }
        return {cols == 1 ? Shape::EMPTY_COL : Shape::EMPTY, 0};
    }
    if (rows == 1) {
        return {Shape::ROW, 1};
    }
    return cols == 1 ? ShapeOfArray{Shape::COLUMN, 1} : ShapeOfArray{Shape::TWO_D, 2};
}

ArgType describe(const oxArray* array, oxClassID id, Density density, Complexity complexity) {
    const ShapeOfArray shape = classifyShape(matrix::getDimensions(array));
    return OxArrayTypes(id, shape.shape, density, complexity, shape.numDims);
}

// Which classes yield a descriptor, by storage. Every full array of a real class does,
// containers, function handles and class-object arrays included: variants may declare
// them. Complex storage exists only for the numeric classes, sparse storage only for
// double and logical, complex sparse only for double. Unknown, void and opaque arrays
// (and any class a storage does not support) are unsupported: no variant can take them.
ArgType classifyFullReal(const oxArray* array, oxClassID id) {
    switch (std::min(id, oxFIRST_OBJECT_CLASS)) {
    case oxCELL_CLASS: case oxSTRUCT_CLASS: case oxLOGICAL_CLASS: case oxCHAR_CLASS:
    case oxDOUBLE_CLASS: case oxSINGLE_CLASS: case oxINT8_CLASS: case oxUINT8_CLASS:
    case oxINT16_CLASS: case oxUINT16_CLASS: case oxINT32_CLASS: case oxUINT32_CLASS:
    case oxINT64_CLASS: case oxUINT64_CLASS: case oxFUNCTION_CLASS: case oxFIRST_OBJECT_CLASS:
        return describe(array, id, Density::FULL, Complexity::NOT_COMPLEX);
    default:
        return UnsupportedArgType{};
    }
}

ArgType classifyFullComplex(const oxArray* array, oxClassID id) {
    switch (id) {
    case oxDOUBLE_CLASS: case oxSINGLE_CLASS: case oxINT8_CLASS: case oxUINT8_CLASS:
    case oxINT16_CLASS: case oxUINT16_CLASS: case oxINT32_CLASS: case oxUINT32_CLASS:
    case oxINT64_CLASS: case oxUINT64_CLASS:
        return describe(array, id, Density::FULL, Complexity::COMPLEX);
    default:
        return UnsupportedArgType{};
    }
}

ArgType classifySparseReal(const oxArray* array, oxClassID id) {
    if (id == oxDOUBLE_CLASS || id == oxLOGICAL_CLASS) {
        return describe(array, id, Density::SPARSE, Complexity::NOT_COMPLEX);
    }
    return UnsupportedArgType{};
}

ArgType classifySparseComplex(const oxArray* array, oxClassID id) {
    if (id == oxDOUBLE_CLASS) {
        return describe(array, id, Density::SPARSE, Complexity::COMPLEX);
    }
    return UnsupportedArgType{};
}

} // namespace

ArgType getArgTypeOfOxArray(const oxArray* array) noexcept {
    if (array == nullptr) {
        return UnsupportedArgType{};
    }
    try {
        matrix::rejectUnsupportedShape(array);
        const oxClassID id = matrix::getClassID(array);
        matrix::rejectUnsupportedClassId(id);
        const bool complex = matrix::isComplex(array);
        if (matrix::isSparse(array)) {
            return complex ? classifySparseComplex(array, id) : classifySparseReal(array, id);
        }
        return complex ? classifyFullComplex(array, id) : classifyFullReal(array, id);
    } catch (...) {
        return UnsupportedArgType{};
    }
}

} // namespace Velloc::builtin::types
