// What dispatch reads from a run-time host array, packed in 32 bits: class, complexity,
// density, shape category and dimension count. Equal keys give equal argument types, so
// a key both classifies an input and serves as its part of a dispatch cache key.
#pragma once

#include <builtin/types/ArgTypeFwd.hpp>
#include <builtin/types/OxArrayTypes.hpp>
#include <matrix/oxArrayLayout.hpp>

#include <cstdint>

namespace Velloc::builtin::types {

class InputKey {
public:
    using Shape = OxArrayTypes::Shape;

    // The key of an input that no variant can take as an array of its class: a null
    // handle, or anything the host rejects.
    constexpr InputKey() noexcept = default;

    // One load for an array the array library tells at a glance, which is every array of
    // two dimensions; the rest goes through the general classification. Never throws and
    // never allocates. The glance word of opaque dimensions is zero until their completion
    // publishes it (with release order, after the dimensions), so a word read here never
    // stands for dimensions still being written.
    static InputKey of(const oxArray* array) noexcept {
        if (array == nullptr) {
            return {};
        }
        if (const std::uint32_t word = array->glance.load(std::memory_order_acquire); word != 0) [[likely]] {
            return InputKey(word);
        }
        return ofGeneral(array);
    }

    // The key of a full 1-by-1 array of the class, real or complex.
    static constexpr InputKey ofScalar(oxClassID classId, bool complex) noexcept {
        return {classId, complex ? matrix::detail::flag::COMPLEX : 0u, Shape::SCALAR, 0};
    }

    // The argument type the key stands for: a strict OxArrayTypes, or UnsupportedArgType
    // for a class or storage that no variant can take.
    ArgType argType() const;

    constexpr bool isSupported() const noexcept { return (bits_ & SUPPORTED) != 0; }
    // Whether the key's shape is one of the empty ones.
    static constexpr bool isEmpty(std::uint32_t bits) noexcept {
        const auto shape = static_cast<Shape>((bits >> SHAPE_SHIFT) & 0xf);
        return shape == Shape::EMPTY_ROW || shape == Shape::EMPTY_COL || shape == Shape::EMPTY;
    }
    // Not zero unless the key's shape is SCALAR: or-ed over keys, whether any is not.
    static constexpr std::uint32_t notScalarBits(std::uint32_t bits) noexcept {
        return (bits ^ (static_cast<std::uint32_t>(Shape::SCALAR) << SHAPE_SHIFT)) & (0xfu << SHAPE_SHIFT);
    }
    // Whether keys whose bits, and-ed together, give common are all supported.
    static constexpr bool allSupported(std::uint32_t common) noexcept { return (common & SUPPORTED) != 0; }
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
    // The key's class, complexity and storage without its shape: equal for the elements
    // of arrays of any shape.
    static constexpr std::uint32_t elementBits(std::uint32_t bits) noexcept {
        return bits & ~((0xfu << SHAPE_SHIFT) | (0x3fu << DIMS_SHIFT));
    }

    friend constexpr bool operator==(InputKey, InputKey) noexcept = default;

private:
    // The key is the array library's glance word; dispatch extends it to arrays of more
    // dimensions with the ND category.
    static constexpr std::uint32_t CLASS_MASK = matrix::detail::glance::CLASS_MASK;
    static constexpr std::uint32_t COMPLEX = matrix::detail::glance::COMPLEX;
    static constexpr std::uint32_t SPARSE = matrix::detail::glance::SPARSE;
    static constexpr unsigned SHAPE_SHIFT = matrix::detail::glance::SHAPE_SHIFT;
    static constexpr unsigned DIMS_SHIFT = matrix::detail::glance::DIMS_SHIFT;
    static constexpr std::uint32_t SUPPORTED = matrix::detail::glance::KNOWN;
    static_assert(static_cast<std::uint32_t>(Shape::EMPTY_ROW) == matrix::detail::glance::EMPTY_ROW &&
                  static_cast<std::uint32_t>(Shape::EMPTY_COL) == matrix::detail::glance::EMPTY_COLUMN &&
                  static_cast<std::uint32_t>(Shape::EMPTY) == matrix::detail::glance::EMPTY &&
                  static_cast<std::uint32_t>(Shape::SCALAR) == matrix::detail::glance::SCALAR &&
                  static_cast<std::uint32_t>(Shape::ROW) == matrix::detail::glance::ROW &&
                  static_cast<std::uint32_t>(Shape::COLUMN) == matrix::detail::glance::COLUMN &&
                  static_cast<std::uint32_t>(Shape::TWO_D) == matrix::detail::glance::MATRIX);

    explicit constexpr InputKey(std::uint32_t bits) noexcept : bits_(bits) {}
    constexpr InputKey(oxClassID classId, std::uint32_t flags, Shape shape, std::uint32_t numDims) noexcept
        : bits_(matrix::detail::glance::word(static_cast<std::uint32_t>(classId), flags,
                                             static_cast<std::uint32_t>(shape), numDims)) {}

    static constexpr InputKey ofMatrix(oxClassID classId, std::uint32_t flags, std::size_t rows,
                                       std::size_t cols) noexcept {
        return InputKey(matrix::detail::glance::ofMatrix(static_cast<std::uint32_t>(classId), flags, rows, cols));
    }

    // Arrays of more dimensions, opaque dimensions, and whatever the host rejects.
    static InputKey ofGeneral(const oxArray* array) noexcept;

    std::uint32_t bits_ = 0;
};

} // namespace Velloc::builtin::types
