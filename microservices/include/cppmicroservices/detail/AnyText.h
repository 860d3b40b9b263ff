// The text form of any value an Any may hold: strings as they are, numbers in their
// shortest exact form, sequences as "[a,b]", maps as "{k : v, ...}"; and its JSON form.
#pragma once

#include "cppmicroservices/detail/TypeName.h"
#include "cppmicroservices/detail/ValueKinds.h"

#include <charconv>
#include <sstream>
#include <stdexcept>
#include <string>

namespace cppmicroservices {
class Any;
}

namespace cppmicroservices::detail {

std::string textOfAny(const Any& value);
std::string jsonOfAny(const Any& value);
// The text as a JSON string: quoted, with quotes and backslashes escaped, \b \f \n \r \t
// for those control characters and \u00XX for the others.
std::string jsonString(std::string_view text);

template <typename T>
std::string numberText(T value)
{
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

template <typename T>
std::string textOf(const T& value)
{
    if constexpr (std::is_same_v<T, Any>) {
        return textOfAny(value);
    } else if constexpr (std::is_same_v<T, char*> || std::is_same_v<T, const char*>) {
        return value ? std::string(value) : std::string();
    } else if constexpr (TextLike<T>) {
        return std::string(std::string_view(value));
    } else if constexpr (std::is_same_v<T, bool>) {
        return value ? "true" : "false";
    } else if constexpr (std::is_same_v<T, char>) {
        return std::string(1, value);
    } else if constexpr (std::is_arithmetic_v<T> && !std::is_same_v<T, long double>) {
        return numberText(value);
    } else if constexpr (MapLike<T>) {
        std::string text = "{";
        for (const auto& [key, mapped] : value) {
            text.append(text.size() > 1 ? ", " : "").append(textOf(key)).append(" : ").append(textOf(mapped));
        }
        return text + "}";
    } else if constexpr (SequenceLike<T>) {
        std::string text = "[";
        for (const auto& element : value) {
            text.append(text.size() > 1 ? "," : "").append(textOf(element));
        }
        return text + "]";
    } else if constexpr (Streamable<T>) {
        std::ostringstream out;
        out << value;
        return out.str();
    } else {
        throw std::logic_error("a value of type " + demangledName(typeid(T)) + " has no text form");
    }
}

// JSON: strings quoted, numbers as numbers (non-finite ones as null), booleans, sequences
// as arrays ("[1,2]"), maps as objects with their keys' text as names, spaced as
// CppMicroServices spaces them ("{"one" : 1, "two" : 2}"); other values as the JSON string
// of their text form.
template <typename T>
std::string jsonOf(const T& value)
{
    if constexpr (std::is_same_v<T, Any>) {
        return jsonOfAny(value);
    } else if constexpr (std::is_same_v<T, bool>) {
        return value ? "true" : "false";
    } else if constexpr (std::is_floating_point_v<T> && !std::is_same_v<T, long double>) {
        return value == value && value - value == 0 ? numberText(value) : "null";
    } else if constexpr (std::is_arithmetic_v<T> && !std::is_same_v<T, char> && !std::is_same_v<T, long double>) {
        return numberText(value);
    } else if constexpr (MapLike<T>) {
        std::string text = "{";
        for (const auto& [key, mapped] : value) {
            text.append(text.size() > 1 ? ", " : "").append(jsonString(textOf(key))).append(" : ").append(jsonOf(mapped));
        }
        return text + "}";
    } else if constexpr (SequenceLike<T> && !TextLike<T>) {
        std::string text = "[";
        for (const auto& element : value) {
            text.append(text.size() > 1 ? "," : "").append(jsonOf(element));
        }
        return text + "]";
    } else {
        return jsonString(textOf(value));
    }
}

} // namespace cppmicroservices::detail
