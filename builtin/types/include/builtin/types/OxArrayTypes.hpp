// The declared or actual type of a value that travels as a host array: element class,
// shape, density, complexity and the strictness with which a declaration is matched.
#pragma once

#include <builtin/types/ArgTypeDirection.hpp>
#include <builtin/types/ArgTypeFwd.hpp>
#include <builtin/types/LxeSupportLevel.hpp>
#include <builtin/types/NumericScalarTypes.hpp>
#include <builtin/types/OxClassId.hpp>
#include <builtin/types/SignatureTolerance.hpp>
#include <matrix/oxArray.hpp>

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <limits>
#include <optional>
#include <string>
#include <utility>

namespace Velloc::builtin::types {

class OxArrayTypes {
public:
    // UNKNOWN means any shape; ND carries its dimension count in numDims.
    enum class Shape : std::int32_t {
        UNKNOWN = 0, EMPTY_ROW = 1, EMPTY_COL = 2, EMPTY = 3, SCALAR = 4,
        ROW = 5, COLUMN = 6, VECTOR = 7, TWO_D = 8, ND = 9,
    };
    enum class Density : std::int32_t { UNKNOWN = 0, FULL = 1, SPARSE = 2 };
    enum class Complexity : std::int32_t { UNKNOWN = 0, NOT_COMPLEX = 1, COMPLEX = 2 };

    // A dimension count that is not fixed.
    static constexpr std::uint64_t ANY_NUM_DIMS = std::numeric_limits<std::uint64_t>::max();

    constexpr OxArrayTypes(oxClassID element, Shape shape, Density density,
                           Complexity complexity, std::uint64_t numDims) noexcept
        : element_(element), shape_(shape), density_(density), complexity_(complexity),
          numDims_(numDims) {}

    // Views of the other alternatives as host arrays, for declarations that take them
    // as arrays: objects are arrays of their class, strings and flags of the string class.
    explicit OxArrayTypes(const LxeObjectPlaceTypes& object);
    explicit OxArrayTypes(const LxeObjectTypes& object);
    explicit OxArrayTypes(const OrvexStringType& string);
    explicit OxArrayTypes(const FlagInputType& flag);

    // Any class, shape, density and complexity: how an unsupported type is viewed.
    static constexpr OxArrayTypes fullyOpen() noexcept {
        return {oxUNKNOWN_CLASS, Shape::UNKNOWN, Density::UNKNOWN, Complexity::UNKNOWN,
                ANY_NUM_DIMS};
    }
    // A full 1-by-1 array of the scalar's class and complexity.
    static constexpr OxArrayTypes fromScalar(const NumericScalarTypes& scalar) noexcept {
        return {scalar.getElement(), Shape::SCALAR, Density::FULL,
                scalar.isComplex() ? Complexity::COMPLEX : Complexity::NOT_COMPLEX, 0};
    }

    constexpr oxClassID getElement() const noexcept { return element_; }
    constexpr void setElement(oxClassID element) noexcept { element_ = element; }
    constexpr Density getDensity() const noexcept { return density_; }
    constexpr void setDensity(Density density) noexcept { density_ = density; }
    constexpr Complexity getComplexity() const noexcept { return complexity_; }
    constexpr void setComplexity(Complexity complexity) noexcept { complexity_ = complexity; }
    constexpr SignatureTolerance getSignatureTolerance() const noexcept { return tolerance_; }
    constexpr void setSignatureTolerance(SignatureTolerance tolerance) noexcept {
        tolerance_ = tolerance;
    }
    constexpr std::pair<Shape, std::uint64_t> getShape() const noexcept {
        return {shape_, numDims_};
    }
    constexpr void setShape(Shape shape, std::uint64_t numDims) noexcept {
        shape_ = shape;
        numDims_ = numDims;
    }
    // The dimension count that goes with a fixed shape: 0 for the empties and the
    // scalar, 1 for vectors, 2 for TWO_D; none for UNKNOWN, ND and unknown values.
    static constexpr std::optional<std::uint64_t> numericDimension(Shape shape) noexcept {
        switch (shape) {
        case Shape::EMPTY_ROW:
        case Shape::EMPTY_COL:
        case Shape::EMPTY:
        case Shape::SCALAR: return 0;
        case Shape::ROW:
        case Shape::COLUMN:
        case Shape::VECTOR: return 1;
        case Shape::TWO_D: return 2;
        default: return std::nullopt;
        }
    }
    // Derives numDims from the shape; throws std::invalid_argument for UNKNOWN, ND and
    // values outside the enumeration, leaving the object unchanged.
    void setShape(Shape shape);

    // The unboxed scalar this declaration could stand for. The shape is deliberately not
    // consulted: the scalar form of a row of doubles is still a double.
    constexpr std::optional<NumericScalarTypes> asScalar() const noexcept {
        if (density_ != Density::FULL || complexity_ == Complexity::UNKNOWN ||
            !isNumericScalarClass(element_)) {
            return std::nullopt;
        }
        return NumericScalarTypes(element_, complexity_ == Complexity::COMPLEX
                                                ? NumericScalarTypes::Complexity::COMPLEX
                                                : NumericScalarTypes::Complexity::NOT_COMPLEX);
    }

    // May a value of type `actual` be passed where this declaration stands?
    constexpr bool isAcceptable(const OxArrayTypes& actual) const noexcept {
        switch (tolerance_) {
        case SignatureTolerance::STRICT:
            return acceptsStrictly(actual);
        case SignatureTolerance::RELAXED:
            return acceptsRelaxed(actual);
        }
        return false;
    }

    // Could dispatch not tell the two declarations apart? numDims and tolerance aside.
    constexpr bool isCompatible(const OxArrayTypes& other) const noexcept {
        return element_ == other.element_ && shape_ == other.shape_ &&
               density_ == other.density_ && complexity_ == other.complexity_;
    }

    std::size_t hash() const noexcept;
    LxeSupportLevel getLxeSupportLevel(ArgTypeDirection direction) const;
    ArgTypeList getGreaterPrecedenceTypes() const;

    // The type as a signature expression; placeholders carry the argument's index.
    std::string toString(ArgTypeDirection direction, unsigned long index) const;

    // Open (zero) class, density, complexity and shape sort after every specific value.
    friend bool operator<(const OxArrayTypes& a, const OxArrayTypes& b) noexcept;
    friend constexpr bool operator==(const OxArrayTypes&, const OxArrayTypes&) noexcept = default;

    // "OxArrayTypes: oxDOUBLE_CLASS SCALAR FULL NOT_COMPLEX STRICT"
    friend std::ostream& operator<<(std::ostream& os, const OxArrayTypes& type);

private:
    static constexpr std::uint32_t shapeBit(Shape shape) noexcept {
        const auto value = static_cast<std::uint32_t>(shape);
        return value < 32 ? std::uint32_t{1} << value : 0;
    }
    static constexpr bool isEmptyShape(Shape shape) noexcept {
        return shape == Shape::EMPTY_ROW || shape == Shape::EMPTY_COL || shape == Shape::EMPTY;
    }
    // The actual shapes a relaxed declaration of each fixed shape accepts. VECTOR leaves
    // out VECTOR and EMPTY: a run-time value is a row, a column or one of the empties.
    static constexpr std::uint32_t relaxedAcceptedShapes(Shape declared) noexcept {
        using enum Shape;
        switch (declared) {
        case EMPTY_ROW: return shapeBit(EMPTY_ROW);
        case EMPTY_COL: return shapeBit(EMPTY_COL);
        case EMPTY: return shapeBit(EMPTY_ROW) | shapeBit(EMPTY_COL) | shapeBit(EMPTY);
        case SCALAR: return shapeBit(SCALAR);
        case ROW: return shapeBit(EMPTY_ROW) | shapeBit(SCALAR) | shapeBit(ROW);
        case COLUMN: return shapeBit(EMPTY_COL) | shapeBit(SCALAR) | shapeBit(COLUMN);
        case VECTOR:
            return shapeBit(EMPTY_ROW) | shapeBit(EMPTY_COL) | shapeBit(SCALAR) |
                   shapeBit(ROW) | shapeBit(COLUMN);
        case TWO_D: return (shapeBit(ND) - 1) & ~shapeBit(UNKNOWN);
        default: return 0;
        }
    }

    constexpr bool acceptsStrictly(const OxArrayTypes& actual) const noexcept {
        return element_ == actual.element_ && complexity_ == actual.complexity_ &&
               density_ == actual.density_ && numDims_ == actual.numDims_ &&
               (shape_ == actual.shape_ || (shape_ == Shape::EMPTY && isEmptyShape(actual.shape_)));
    }
    constexpr bool acceptsRelaxed(const OxArrayTypes& actual) const noexcept {
        return (element_ == oxUNKNOWN_CLASS || element_ == actual.element_) &&
               (complexity_ == Complexity::UNKNOWN || complexity_ == actual.complexity_) &&
               (density_ == Density::UNKNOWN || density_ == actual.density_) &&
               acceptsShapeRelaxed(actual);
    }
    constexpr bool acceptsShapeRelaxed(const OxArrayTypes& actual) const noexcept {
        if (shape_ == Shape::UNKNOWN) {
            return true;
        }
        if (shape_ == Shape::ND) {
            return actual.numDims_ <= numDims_;
        }
        return (relaxedAcceptedShapes(shape_) & shapeBit(actual.shape_)) != 0;
    }

    oxClassID element_;
    Shape shape_;
    Density density_;
    Complexity complexity_;
    std::uint64_t numDims_;
    SignatureTolerance tolerance_ = SignatureTolerance::STRICT;
};

} // namespace Velloc::builtin::types
