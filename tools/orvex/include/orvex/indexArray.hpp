// Indexing of the arrays that hold elements (numeric, logical and char) as the language
// indexes them: a(k) by linear indices, a(i, j, ...) by one subscript per dimension, the
// last subscript running over all the dimensions that remain.
#pragma once

#include <matrix/oxArray.hpp>

#include <cstddef>
#include <span>
#include <stdexcept>

namespace orvex {

// A subscript that is no index, or that lies outside the array.
class IndexError : public std::out_of_range {
public:
    using std::out_of_range::out_of_range;
};

// Whether indexArray takes the array.
bool holdsElements(const oxArray* array);

// What 'end' stands for in subscript position (0-based) of count subscripts.
std::size_t endOf(const oxArray* array, std::size_t position, std::size_t count);

// The elements the subscripts select, in the array's class. A subscript is a positive
// integer value of any numeric class or a logical mask; a null subscript stands for ':'.
// A linear index keeps its own shape, except that a vector indexed by a vector keeps the
// vector's orientation; subscripts give one dimension each.
matrix::ArrayPtr indexArray(const oxArray* array, std::span<const oxArray* const> subscripts);

} // namespace orvex
