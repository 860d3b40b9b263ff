// Decimal numbers as the literal language writes them.
#pragma once

#include <string_view>

namespace orvex::detail {

// The double nearest to a well-formed unsigned decimal: digits, an optional fraction and
// an optional exponent ("12", "1.", ".5", "2.5e-3"). Beyond the double range it gives
// Inf or 0, as the language does, independently of the C locale.
double readDecimal(std::string_view number);

} // namespace orvex::detail
