// The literal language of the orvex command line: one argument becomes one host array.
//
//   3  -2.5  1e3  .5  Inf  NaN          1x1 double
//   3+4i  -2i  1-0.5j  1+Infi           1x1 complex double
//   [1 2; 3 4]  [1, 2, 3]  []           double matrices, complex if any element is;
//                                       a newline ends a row as ';' does
//   true  false  [true false]           logical
//   int8(5)  uint16([1 2])  single(2)   casts: int8 ... uint64, single, double, logical
//   'chars'  'it''s'  ''                char rows; '' is 0x0
//   "string"  ""                        1x1 host strings
//
// Inside a matrix, as in the language itself, a sign that follows a space and sticks to
// its number starts a new element: [1 -2] has two elements, [1 - 2i] and [1-2i] one.
#pragma once

#include <matrix/oxArray.hpp>

#include <string_view>

namespace orvex {

// Throws LiteralError for text outside the language.
matrix::ArrayPtr parseLiteral(std::string_view text);

} // namespace orvex
