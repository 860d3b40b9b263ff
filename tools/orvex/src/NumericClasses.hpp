// The classes whose arrays hold numeric data, their element types and their names.
#pragma once

#include <matrix/oxArray.hpp>

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>

namespace orvex::detail {

constexpr bool isIntegerClass(oxClassID id) { return id >= oxINT8_CLASS && id <= oxUINT64_CLASS; }

// Classes whose data is a contiguous block of elements of the type visitNumericClass names.
constexpr bool holdsElements(oxClassID id) {
    return id == oxLOGICAL_CLASS || id == oxCHAR_CLASS || (id >= oxDOUBLE_CLASS && id <= oxUINT64_CLASS);
}

// Calls f(std::type_identity<T>{}) with T the element type of the class.
template <class F>
decltype(auto) visitNumericClass(oxClassID id, F&& f) {
    switch (id) {
    case oxLOGICAL_CLASS: return f(std::type_identity<bool>{});
    case oxCHAR_CLASS: return f(std::type_identity<char16_t>{});
    case oxDOUBLE_CLASS: return f(std::type_identity<double>{});
    case oxSINGLE_CLASS: return f(std::type_identity<float>{});
    case oxINT8_CLASS: return f(std::type_identity<std::int8_t>{});
    case oxUINT8_CLASS: return f(std::type_identity<std::uint8_t>{});
    case oxINT16_CLASS: return f(std::type_identity<std::int16_t>{});
    case oxUINT16_CLASS: return f(std::type_identity<std::uint16_t>{});
    case oxINT32_CLASS: return f(std::type_identity<std::int32_t>{});
    case oxUINT32_CLASS: return f(std::type_identity<std::uint32_t>{});
    case oxINT64_CLASS: return f(std::type_identity<std::int64_t>{});
    case oxUINT64_CLASS: return f(std::type_identity<std::uint64_t>{});
    default: throw std::logic_error("orvex: class " + std::to_string(id) + " holds no numeric elements");
    }
}

// The language's name of a class below the object classes: "double", "cell", ...
std::string_view builtinClassName(oxClassID id);

// The class a cast function of that name converts to: int8, ..., single, double, logical.
std::optional<oxClassID> castClass(std::string_view name);

} // namespace orvex::detail
