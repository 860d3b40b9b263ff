// Text of single elements, as results print them.
#pragma once

#include <charconv>
#include <cmath>
#include <string>
#include <type_traits>

namespace orvex::detail {

// The shortest text that reads back as the same value, so 0.1 prints as 0.1 in double
// and in single; Inf, -Inf and NaN as the language writes them; true and false.
template <class T>
std::string formatElement(T value) {
    if constexpr (std::is_same_v<T, bool>) {
        return value ? "true" : "false";
    } else {
        if constexpr (std::is_floating_point_v<T>) {
            if (std::isnan(value)) return "NaN";
            if (std::isinf(value)) return value > 0 ? "Inf" : "-Inf";
        }
        char buffer[64];
        const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
        return std::string(buffer, result.ptr);
    }
}

// "3 + 4i" spaced on its own; "3+4i" inside a matrix, where a space separates elements.
template <class T>
std::string formatComplex(T real, T imag, bool spaced) {
    std::string imagText = formatElement(imag);
    const bool negative = imagText.front() == '-';
    if (negative) imagText.erase(0, 1);
    const char* sign = negative ? (spaced ? " - " : "-") : (spaced ? " + " : "+");
    return formatElement(real) + sign + imagText + "i";
}

} // namespace orvex::detail
