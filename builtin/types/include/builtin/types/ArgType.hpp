// The argument-type sum and the operations that the rest of the framework uses on it:
// acceptance for dispatch, compatibility and ordering for list cleanup, text forms for
// signatures and diagnostics.
#pragma once

#include <builtin/types/ArgTypeDirection.hpp>
#include <builtin/types/ArgTypeFwd.hpp>
#include <builtin/types/FlagInputType.hpp>
#include <builtin/types/LxeObjectPlaceTypes.hpp>
#include <builtin/types/LxeObjectTypes.hpp>
#include <builtin/types/LxeSupportLevel.hpp>
#include <builtin/types/NumericScalarTypes.hpp>
#include <builtin/types/OrvexStringType.hpp>
#include <builtin/types/OxArrayTypes.hpp>
#include <builtin/types/SignatureTolerance.hpp>
#include <builtin/types/UnsupportedArgType.hpp>
#include <builtin/types/detail/ArgTypeAcceptance.hpp>

#include <cstddef>
#include <iosfwd>
#include <string>
#include <type_traits>
#include <variant>

// Every operation below throws std::bad_variant_access when an operand is valueless.
namespace Velloc::builtin::types {

// May a value of type `actual` be passed where `declared` stands?
inline bool isAcceptable(const ArgType& declared, const ArgType& actual) {
    return std::visit([](const auto& d, const auto& a) { return detail::accepts(d, a); },
                      declared, actual);
}

// As isAcceptable, without conversions across alternatives: the execution engine does
// none.
inline bool isAcceptableToLxe(const ArgType& declared, const ArgType& actual) {
    return std::visit(
        [](const auto& d, const auto& a) {
            if constexpr (std::is_same_v<decltype(d), decltype(a)>) {
                return detail::accepts(d, a);
            } else {
                return false;
            }
        },
        declared, actual);
}

// Could dispatch not tell the two declarations apart? Not symmetric everywhere: an
// object declaration is tested against strings and flags, but not the other way round,
// and a string against a flag, but not a flag against a string.
bool isCompatible(const ArgType& a, const ArgType& b);

// A flag is matched during dispatch but not passed to the developer function.
bool skipDuringInvoke(const ArgType& type);

// The alternative's own text form; empty for an unsupported type.
std::string toString(const ArgType& type, ArgTypeDirection direction, unsigned long index);
// The text form as an input at index 0.
std::ostream& operator<<(std::ostream& os, const ArgType& type);

LxeSupportLevel getLxeSupportLevel(const ArgType& type, ArgTypeDirection direction);

// Sets the tolerance of a host array declaration; other alternatives carry none and are
// left unchanged.
ArgType& setSignatureTolerance(ArgType& type, SignatureTolerance tolerance);

// The declaration widened for element-wise calls: where a full numeric scalar (or an
// array of one) is declared, a relaxed array of any shape of that class stands; every
// other declaration is returned unchanged.
ArgType asElementWiseArrayType(const ArgType& type);

// isAcceptable(asElementWiseArrayType(declared), actual), without building the widened
// declaration: dispatch asks this of every element-wise variant it tries.
bool isAcceptableElementWise(const ArgType& declared, const ArgType& actual);

// More specific declarations that take precedence over this one.
ArgTypeList getGreaterPrecedenceTypes(const ArgType& type);

// A strict weak order for sorting variant lists: by tag, then within the alternative
// (open classes and variants last). Equality is "neither is less".
bool operator<(const ArgType& a, const ArgType& b);
bool operator==(const ArgType& a, const ArgType& b);

// Consistent with operator==; the alternative's own hash combined with the tag.
std::size_t hash(const ArgType& type);

struct ArgTypeHash {
    std::size_t operator()(const ArgType& type) const { return hash(type); }
};

} // namespace Velloc::builtin::types
