// The cells of the acceptance matrix (declared type, actual type), one overload per
// cell that can say yes; every other pair falls to the catch-all and is rejected.
// Kept inline: dispatch tests every argument of every candidate variant with these.
#pragma once

#include <builtin/types/FlagInputType.hpp>
#include <builtin/types/LxeObjectPlaceTypes.hpp>
#include <builtin/types/LxeObjectTypes.hpp>
#include <builtin/types/NumericScalarTypes.hpp>
#include <builtin/types/OrvexStringType.hpp>
#include <builtin/types/OxArrayTypes.hpp>
#include <builtin/types/UnsupportedArgType.hpp>

namespace Velloc::builtin::types::detail {

// Any alternative seen as a host array, for declarations that take host arrays.
constexpr OxArrayTypes viewAsOxArray(const UnsupportedArgType&) noexcept {
    return OxArrayTypes::fullyOpen();
}
constexpr OxArrayTypes viewAsOxArray(const NumericScalarTypes& scalar) noexcept {
    return OxArrayTypes::fromScalar(scalar);
}
constexpr const OxArrayTypes& viewAsOxArray(const OxArrayTypes& array) noexcept { return array; }
template <class Other>
OxArrayTypes viewAsOxArray(const Other& other) {
    return OxArrayTypes(other);
}

template <class Declared, class Actual>
constexpr bool accepts(const Declared&, const Actual&) noexcept {
    return false;
}
constexpr bool accepts(const UnsupportedArgType&, const UnsupportedArgType&) noexcept {
    return true;
}
inline bool accepts(const FlagInputType& declared, const FlagInputType& actual) noexcept {
    return declared == actual;
}
constexpr bool accepts(const NumericScalarTypes& declared,
                       const NumericScalarTypes& actual) noexcept {
    return declared == actual;
}
constexpr bool accepts(const OrvexStringType& declared, const FlagInputType& actual) noexcept {
    return declared.isAcceptable(OrvexStringType(actual));
}
constexpr bool accepts(const OrvexStringType& declared, const OrvexStringType& actual) noexcept {
    return declared.isAcceptable(actual);
}
constexpr bool accepts(const LxeObjectPlaceTypes& declared,
                       const LxeObjectPlaceTypes& actual) noexcept {
    return declared == actual;
}
constexpr bool accepts(const LxeObjectTypes& declared, const FlagInputType& actual) noexcept {
    return declared == LxeObjectTypes(actual);
}
constexpr bool accepts(const LxeObjectTypes& declared, const OrvexStringType& actual) noexcept {
    return declared == LxeObjectTypes(actual);
}
constexpr bool accepts(const LxeObjectTypes& declared, const LxeObjectTypes& actual) noexcept {
    return declared == actual;
}
constexpr bool accepts(const OxArrayTypes& declared, const OxArrayTypes& actual) noexcept {
    return declared.isAcceptable(actual);
}
// Only a relaxed declaration looks at other alternatives, through their array view.
template <class Actual>
bool accepts(const OxArrayTypes& declared, const Actual& actual) {
    return declared.getSignatureTolerance() == SignatureTolerance::RELAXED &&
           declared.isAcceptable(viewAsOxArray(actual));
}

} // namespace Velloc::builtin::types::detail
