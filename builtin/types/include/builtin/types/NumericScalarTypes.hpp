// A C++ numeric scalar that a variant takes or returns unboxed.
#pragma once

#include <builtin/types/ArgTypeDirection.hpp>
#include <builtin/types/ArgTypeFwd.hpp>
#include <builtin/types/LxeSupportLevel.hpp>
#include <matrix/oxArray.hpp>

#include <cstddef>
#include <cstdint>
#include <string>

namespace Velloc::builtin::types {

class NumericScalarTypes {
public:
    // Numbered apart from OxArrayTypes::Complexity: 0 is real here, not "either".
    enum class Complexity : std::int32_t { NOT_COMPLEX = 0, COMPLEX = 1 };

    constexpr NumericScalarTypes(oxClassID element, Complexity complexity) noexcept
        : element_(element), complexity_(complexity) {}

    constexpr oxClassID getElement() const noexcept { return element_; }
    constexpr void setElement(oxClassID element) noexcept { element_ = element; }
    constexpr Complexity getComplexity() const noexcept { return complexity_; }
    constexpr void setComplexity(Complexity complexity) noexcept { complexity_ = complexity; }
    constexpr bool isComplex() const noexcept { return complexity_ == Complexity::COMPLEX; }

    std::size_t hash() const noexcept { return static_cast<std::size_t>(element_); }

    LxeSupportLevel getLxeSupportLevel(ArgTypeDirection) const noexcept {
        return isComplex() ? LxeSupportLevel::NO_SUPPORT : LxeSupportLevel::EQUIVALENT_SUPPORT;
    }

    ArgTypeList getGreaterPrecedenceTypes() const;

    // The element's short name; complexity changes only "double" and "single".
    std::string toString() const;

    friend constexpr bool operator<(const NumericScalarTypes& a,
                                    const NumericScalarTypes& b) noexcept {
        if (a.element_ != b.element_) {
            return a.element_ < b.element_;
        }
        return a.complexity_ < b.complexity_;
    }
    friend constexpr bool operator==(const NumericScalarTypes&,
                                     const NumericScalarTypes&) noexcept = default;

private:
    oxClassID element_;
    Complexity complexity_;
};

} // namespace Velloc::builtin::types
