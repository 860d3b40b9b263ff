// A host string value: exactly one string, or a string array of any size.
#pragma once

#include <builtin/types/ArgTypeDirection.hpp>
#include <builtin/types/ArgTypeFwd.hpp>
#include <builtin/types/LxeSupportLevel.hpp>
#include <matrix/oxArray.hpp>

#include <cstddef>
#include <cstdint>
#include <string>

namespace Velloc::builtin::types {

class OrvexStringType {
public:
    enum class Shape : std::int32_t { SCALAR = 0, ANY = 1 };

    constexpr explicit OrvexStringType(Shape shape) noexcept : shape_(shape) {}
    // A flag is a scalar string.
    constexpr explicit OrvexStringType(const FlagInputType&) noexcept : shape_(Shape::SCALAR) {}

    constexpr Shape getShape() const noexcept { return shape_; }

    // The class-object id of the host string class, looked up once per process;
    // oxUNKNOWN_CLASS when no host string class is available.
    static oxClassID getOcosClassId();

    constexpr bool isAcceptable(const OrvexStringType& actual) const noexcept {
        return shape_ == actual.shape_ || shape_ == Shape::ANY;
    }
    constexpr bool isCompatible(const OrvexStringType& other) const noexcept {
        return shape_ == other.shape_ || shape_ == Shape::SCALAR;
    }

    std::size_t hash() const noexcept;
    LxeSupportLevel getLxeSupportLevel(ArgTypeDirection direction) const noexcept;
    ArgTypeList getGreaterPrecedenceTypes() const;
    std::string toString(ArgTypeDirection direction, unsigned long index) const;

    friend constexpr bool operator==(const OrvexStringType& a, const OrvexStringType& b) noexcept {
        return a.shape_ == b.shape_;
    }
    // Deliberately the compatibility test, not a strict ordering: equal shapes are
    // "less" both ways. Sorting of ArgType lists uses a strict order of its own.
    friend constexpr bool operator<(const OrvexStringType& a, const OrvexStringType& b) noexcept {
        return a.isCompatible(b);
    }

private:
    Shape shape_;
};

} // namespace Velloc::builtin::types
