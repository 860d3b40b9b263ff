// A parsed numeric, logical or char literal before it becomes a host array. Every
// element is kept as a double holding exactly the value its class stores, so casts can
// nest and the array is created once, at the end, with nothing to free on an error.
#pragma once

#include <matrix/oxArray.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace orvex::detail {

struct NumericMatrix {
    oxClassID classId = oxDOUBLE_CLASS;
    std::size_t rows = 0;
    std::size_t cols = 0;
    bool complex = false;
    std::vector<double> real{}; // column-major
    std::vector<double> imag{}; // column-major; empty unless complex
};

// Why the value cannot be converted to the class, or nothing when it can.
std::optional<std::string> castRefusal(const NumericMatrix& value, oxClassID target);

// Converts as the language does: integers round half away from zero and saturate, NaN
// becomes 0; single rounds to the nearest float; logical is nonzero. Call only when
// castRefusal has nothing to say.
void castTo(NumericMatrix& value, oxClassID target);

matrix::ArrayPtr toArray(const NumericMatrix& value);

} // namespace orvex::detail
