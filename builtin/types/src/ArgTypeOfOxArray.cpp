#include <builtin/types/ArgTypeOfOxArray.hpp>
#include <builtin/types/InputKey.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace Velloc::builtin::types {

namespace {

using Shape = OxArrayTypes::Shape;
using Density = OxArrayTypes::Density;
using Complexity = OxArrayTypes::Complexity;

// Which classes yield a descriptor, by storage. Every full array of a real class does,
// containers, function handles and class-object arrays included: variants may declare
// them. Complex storage exists only for the numeric classes, sparse storage only for
// double and logical, complex sparse only for double. Unknown, void and opaque arrays
// (and any class a storage does not support) are unsupported: no variant can take them.
bool isFullRealClass(oxClassID id) {
    switch (std::min(id, oxFIRST_OBJECT_CLASS)) {
    case oxCELL_CLASS: case oxSTRUCT_CLASS: case oxLOGICAL_CLASS: case oxCHAR_CLASS:
    case oxDOUBLE_CLASS: case oxSINGLE_CLASS: case oxINT8_CLASS: case oxUINT8_CLASS:
    case oxINT16_CLASS: case oxUINT16_CLASS: case oxINT32_CLASS: case oxUINT32_CLASS:
    case oxINT64_CLASS: case oxUINT64_CLASS: case oxFUNCTION_CLASS: case oxFIRST_OBJECT_CLASS:
        return true;
    default:
        return false;
    }
}

bool isFullComplexClass(oxClassID id) { return id >= oxDOUBLE_CLASS && id <= oxUINT64_CLASS; }

bool isStorageSupported(oxClassID id, bool complex, bool sparse) {
    if (sparse) {
        return id == oxDOUBLE_CLASS || (!complex && id == oxLOGICAL_CLASS);
    }
    return complex ? isFullComplexClass(id) : isFullRealClass(id);
}

} // namespace

ArgType InputKey::argType() const {
    if (!isSupported() || !isStorageSupported(classId(), isComplex(), isSparse())) {
        return UnsupportedArgType{};
    }
    return OxArrayTypes(classId(), shape(), isSparse() ? Density::SPARSE : Density::FULL,
                        isComplex() ? Complexity::COMPLEX : Complexity::NOT_COMPLEX, numDims());
}

// The host keeps at least two dimensions and drops trailing singletons beyond the
// second, so more than two dimensions make an N-d array.
InputKey InputKey::ofGeneral(const oxArray* array) noexcept {
    try {
        matrix::rejectUnsupportedShape(array);
        const oxClassID id = matrix::getClassID(array);
        matrix::rejectUnsupportedClassId(id);
        const matrix::Dims dims = matrix::getDimensions(array);
        const std::uint32_t flags = array->flags.load(std::memory_order_acquire);
        if (dims.size() > 2) {
            const bool empty = std::find(dims.begin(), dims.end(), 0) != dims.end();
            return empty ? InputKey(id, flags, Shape::EMPTY, 0)
                         : InputKey(id, flags, Shape::ND, static_cast<std::uint32_t>(dims.size()));
        }
        return ofMatrix(id, flags, dims[0], dims[1]);
    } catch (...) {
        return {};
    }
}

ArgType getArgTypeOfOxArray(const oxArray* array) noexcept { return InputKey::of(array).argType(); }

} // namespace Velloc::builtin::types
