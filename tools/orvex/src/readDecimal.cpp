#include "readDecimal.hpp"

#include <charconv>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <system_error>

namespace orvex::detail {
namespace {

// The value of the explicit exponent; a huge one keeps only its sign, which is all that
// matters once the number is out of range. Bounding it leaves room for the digit counts
// added to it.
std::int64_t exponentOf(std::string_view number) {
    const auto e = number.find_first_of("eE");
    if (e == std::string_view::npos) return 0;
    std::string_view digits = number.substr(e + 1);
    const bool negative = digits.front() == '-';
    if (digits.front() == '-' || digits.front() == '+') digits.remove_prefix(1);
    constexpr std::int64_t bound = std::numeric_limits<std::int32_t>::max();
    std::int64_t exponent = 0;
    if (std::from_chars(digits.data(), digits.data() + digits.size(), exponent).ec != std::errc{} ||
        exponent > bound) {
        exponent = bound;
    }
    return negative ? -exponent : exponent;
}

// A number from_chars refused as out of range: it overflows when its leading digit
// stands left of the decimal point after the exponent is applied, else it underflows.
double outOfRangeValue(std::string_view number) {
    const std::string_view mantissa = number.substr(0, number.find_first_of("eE"));
    const auto point = mantissa.find('.');
    const auto integerDigits = static_cast<std::int64_t>(point == std::string_view::npos ? mantissa.size() : point);
    auto leading = static_cast<std::int64_t>(mantissa.find_first_not_of("0."));
    if (leading > integerDigits) --leading; // skip the point itself
    const bool overflows = integerDigits - leading + exponentOf(number) > 0;
    return overflows ? std::numeric_limits<double>::infinity() : 0.0;
}

} // namespace

double readDecimal(std::string_view number) {
    double value = 0;
    const auto [end, ec] = std::from_chars(number.data(), number.data() + number.size(), value);
    if (ec == std::errc::result_out_of_range) return outOfRangeValue(number);
    if (ec != std::errc{} || end != number.data() + number.size()) {
        throw std::logic_error("orvex: '" + std::string(number) + "' is not a decimal number");
    }
    return value;
}

} // namespace orvex::detail
