// Process-wide small numbers for property keys, compared without regard to ASCII case, so
// that a filter and a service's properties meet by comparing integers. Numbers are given
// out when filters are parsed and services registered, and never taken back.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace cppmicroservices::detail {

std::uint32_t internPropertyKey(std::string_view key);

// The key's number if it was ever given one.
std::optional<std::uint32_t> knownPropertyKey(std::string_view key);

} // namespace cppmicroservices::detail
