// Readable forms of host arrays, as the orvex command line prints results.
#pragma once

#include <matrix/oxArray.hpp>

#include <string>

namespace orvex {

// Values in the literal language where one reads them back: 5, -2.5, 3 + 4i, true,
// [1 2; 3 4], int8([1 2]), single(0.1), 'text', "text". Empty arrays print as
// "[] (0x3 double)"; N-d, sparse, cell, struct, object and opaque arrays, and arrays too
// large to list, print as a summary such as "<2x3x4 double>". A null array prints as
// "<no value>".
std::string formatArray(const oxArray* a);

// Size and class: "1x1 double", "2x3 int8", "1x1 complex single", "1x5 char",
// "1x1 string", "3x3 sparse double".
std::string formatType(const oxArray* a);

} // namespace orvex
