// Small text helpers shared by the filter parser and the filter matcher.
#pragma once

#include <charconv>
#include <optional>
#include <string_view>

namespace cppmicroservices::detail {

constexpr bool isSpace(char c) noexcept
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

constexpr std::string_view trimmed(std::string_view text) noexcept
{
    while (!text.empty() && isSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

// The number the whole of text spells (an optional leading '+' allowed), or nothing.
template <typename Number>
std::optional<Number> wholeNumber(std::string_view text)
{
    if (text.size() > 1 && text.front() == '+') {
        text.remove_prefix(1);
    }
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return number;
}

} // namespace cppmicroservices::detail
