// What dispatch reads from a run-time host array, packed in 32 bits: class, complexity,
// density, shape category and dimension count. Equal keys give equal argument types, so
// a key both classifies an input and serves as its part of a dispatch cache key.
#pragma once

#include <builtin/types/ArgTypeFwd.hpp>
#include <builtin/types/OxArrayTypes.hpp>
#include <matrix/oxArray.hpp>

#include <cstdint>
#include <limits>

namespace Velloc::builtin::types {

class InputKey {
public:
    using Shape = OxArrayTypes::Shape;

    // The key of an input that no variant can take as an array of its class: a null
    // handle, or anything the host rejects.
    constexpr InputKey() noexcept = default;

    // Reads a few header fields for the common two-dimensional array; the rest goes
    // through the general classification. Never throws and never allocates. The flags come
    // first: while the dimensions are opaque, another thread may be completing them, and
    // the dimension fields may be read only once the flag is seen clear (the completion
    // clears it with release order after writing them).
    static InputKey of(const oxArray* array) noexcept {
        if (array == nullptr) {
            return {};
        }
        const std::uint32_t flags = array->flags.load(std::memory_order_acquire);
        if ((flags & matrix::detail::flag::OPAQUE_DIMENSIONS) != 0 || array->numberOfDimensions != 2 ||
            array->classId < 0 || array->classId > matrix::MAX_CLASS_ID ||
            array->numberOfElements == std::numeric_limits<std::size_t>::max()) [[unlikely]] {
            return ofGeneral(array);
        }
        return ofMatrix(array->classId, flags, array->dimensions[0], array->dimensions[1]);
    }

    // The key of a full 1-by-1 array of the class, real or complex.
    static constexpr InputKey ofScalar(oxClassID classId, bool complex) noexcept {
        return {classId, complex ? matrix::detail::flag::COMPLEX : 0u, Shape::SCALAR, 0};
    }

    // The argument type the key stands for: a strict OxArrayTypes, or UnsupportedArgType
    // for a class or storage that no variant can take.
    ArgType argType() const;

    constexpr bool isSupported() const noexcept { return (bits_ & SUPPORTED) != 0; }
    constexpr oxClassID classId() const noexcept { return static_cast<oxClassID>(bits_ & CLASS_MASK); }
    constexpr bool isComplex() const noexcept { return (bits_ & COMPLEX) != 0; }
    constexpr bool isSparse() const noexcept { return (bits_ & SPARSE) != 0; }
    constexpr Shape shape() const noexcept { return static_cast<Shape>((bits_ >> SHAPE_SHIFT) & 0xf); }
    constexpr std::uint32_t numDims() const noexcept { return (bits_ >> DIMS_SHIFT) & 0x3f; }
    // A full 1-by-1 array, which travels as its value where a scalar is declared.
    constexpr bool isFullScalar() const noexcept {
        return isSupported() && !isSparse() && shape() == Shape::SCALAR;
    }
    constexpr std::uint32_t bits() const noexcept { return bits_; }

    friend constexpr bool operator==(InputKey, InputKey) noexcept = default;

private:
    static constexpr std::uint32_t CLASS_MASK = 0xffff;
    static constexpr std::uint32_t COMPLEX = 1u << 16;
    static constexpr std::uint32_t SPARSE = 1u << 17;
    static constexpr unsigned SHAPE_SHIFT = 18;
    static constexpr unsigned DIMS_SHIFT = 22;
    static constexpr std::uint32_t SUPPORTED = 1u << 31;

    constexpr InputKey(oxClassID classId, std::uint32_t flags, Shape shape, std::uint32_t numDims) noexcept
        : bits_(static_cast<std::uint32_t>(classId) | SUPPORTED |
                ((flags & matrix::detail::flag::COMPLEX) == matrix::detail::flag::COMPLEX ? COMPLEX : 0) |
                ((flags & matrix::detail::flag::SPARSE) != 0 ? SPARSE : 0) |
                (static_cast<std::uint32_t>(shape) << SHAPE_SHIFT) | (numDims << DIMS_SHIFT)) {}

    static constexpr InputKey ofMatrix(oxClassID classId, std::uint32_t flags, std::size_t rows,
                                       std::size_t cols) noexcept {
        if (rows == 1 && cols == 1) {
            return {classId, flags, Shape::SCALAR, 0};
        }
        if (rows == 0 || cols == 0) {
            return {classId, flags, rows == 1 ? Shape::EMPTY_ROW : (cols == 1 ? Shape::EMPTY_COL : Shape::EMPTY), 0};
        }
        if (rows == 1 || cols == 1) {
            return {classId, flags, rows == 1 ? Shape::ROW : Shape::COLUMN, 1};
        }
        return {classId, flags, Shape::TWO_D, 2};
    }

    // Arrays of more dimensions, opaque dimensions, and whatever the host rejects.
    static InputKey ofGeneral(const oxArray* array) noexcept;

    std::uint32_t bits_ = 0;
};

} // namespace Velloc::builtin::types
