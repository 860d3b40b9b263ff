#include <builtin/types/ArgType.hpp>
#include <builtin/types/OxArrayTypes.hpp>

#include <cstdint>
#include <span>

namespace Velloc::builtin::types {

namespace {

using Shape = OxArrayTypes::Shape;
using Complexity = OxArrayTypes::Complexity;

// The fixed shapes below each relaxed shape whose declarations take precedence over it,
// from the most specific on. TWO_D and ND take every shape they accept.
std::span<const Shape> lowerShapes(Shape shape) noexcept {
    static constexpr Shape belowEmpty[] = {Shape::EMPTY_ROW, Shape::EMPTY_COL};
    static constexpr Shape belowRow[] = {Shape::EMPTY_ROW, Shape::SCALAR};
    static constexpr Shape belowColumn[] = {Shape::EMPTY_COL, Shape::SCALAR};
    static constexpr Shape belowVector[] = {Shape::SCALAR, Shape::ROW, Shape::COLUMN};
    static constexpr Shape belowTwoD[] = {Shape::EMPTY_ROW, Shape::EMPTY_COL, Shape::EMPTY,
                                          Shape::SCALAR,    Shape::ROW,       Shape::COLUMN,
                                          Shape::VECTOR,    Shape::TWO_D};
    switch (shape) {
    case Shape::EMPTY: return belowEmpty;
    case Shape::ROW: return belowRow;
    case Shape::COLUMN: return belowColumn;
    case Shape::VECTOR: return belowVector;
    case Shape::TWO_D: return std::span(belowTwoD).first(7);
    case Shape::ND: return belowTwoD;
    default: return {};
    }
}

// Beyond this many dimensions, lower N-d declarations are not listed.
constexpr std::uint64_t maxListedNumDims = 5;

OxArrayTypes withShape(OxArrayTypes type, Shape shape, std::uint64_t numDims) noexcept {
    type.setShape(shape, numDims);
    return type;
}

// A real or complex numeric-scalar class is best taken unboxed; anything else as a
// relaxed 1-by-1 array.
ArgType scalarForm(const OxArrayTypes& type) {
    const Complexity complexity = type.getComplexity();
    const bool knownComplexity = complexity == Complexity::NOT_COMPLEX ||
                                 complexity == Complexity::COMPLEX ||
                                 complexity == Complexity::UNKNOWN;
    if (isNumericScalarClass(type.getElement()) && knownComplexity) {
        return NumericScalarTypes(type.getElement(), complexity == Complexity::COMPLEX
                                                         ? NumericScalarTypes::Complexity::COMPLEX
                                                         : NumericScalarTypes::Complexity::NOT_COMPLEX);
    }
    return withShape(type, Shape::SCALAR, 0);
}

} // namespace

ArgTypeList OxArrayTypes::getGreaterPrecedenceTypes() const {
    if (tolerance_ != SignatureTolerance::RELAXED) {
        return {};
    }
    ArgTypeList types;
    for (const Shape lower : lowerShapes(shape_)) {
        if (lower == Shape::SCALAR) {
            types.push_back(scalarForm(*this));
        } else {
            types.push_back(withShape(*this, lower, *numericDimension(lower)));
        }
    }
    if (shape_ == Shape::ND) {
        for (std::uint64_t numDims = 3; numDims < numDims_ && numDims <= maxListedNumDims;
             ++numDims) {
            types.push_back(withShape(*this, Shape::ND, numDims));
        }
    }
    return types;
}

} // namespace Velloc::builtin::types
