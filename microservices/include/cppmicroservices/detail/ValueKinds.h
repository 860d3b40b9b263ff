// Classifies the C++ types an Any may hold, so that text forms and filter matching
// can treat strings, containers and maps alike whatever their exact type.
#pragma once

#include <iterator>
#include <ostream>
#include <ranges>
#include <string_view>
#include <type_traits>

namespace cppmicroservices::detail {

template <typename T>
concept TextLike = std::is_convertible_v<const T&, std::string_view> && !std::is_same_v<T, std::nullptr_t>;

template <typename T>
concept MapLike = requires { typename T::key_type; typename T::mapped_type; } && std::ranges::range<const T>;

template <typename T>
concept SequenceLike = std::ranges::range<const T> && !TextLike<T> && !MapLike<T>;

template <typename T>
concept Streamable = requires(std::ostream& out, const T& value) { out << value; };

} // namespace cppmicroservices::detail
