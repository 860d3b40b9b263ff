// The output of an element-wise call: its dimensions, and the array that receives it, a
// temporary input taken over when that is safe, otherwise a new array.
#pragma once

#include <matrix/oxArray.hpp>

#include <cstddef>
#include <vector>

namespace Velloc::builtin::builtinreg::detail {

// The dims of one operand: its number of dims and the dims themselves.
struct OperandDims {
    std::size_t ndims;
    const std::size_t* dims;
};

// Position i takes the operands' non-singleton extent there (positions beyond an
// operand's dims count as 1); every position is checked by assertElementwiseDimensions.
std::vector<std::size_t> elementWiseOutputDims(const OperandDims* first, const OperandDims* last);

// An input may become the output when the host marked it temporary, its data is shared
// with no other array, and it has the output's class, complexity and dims exactly.
bool canReuseAsOutput(const oxArray* input, oxClassID classId, bool complex, const std::vector<std::size_t>& dims);

// A new uninitialised, full numeric array.
matrix::ArrayPtr createElementWiseOutput(const std::vector<std::size_t>& dims, oxClassID classId, bool complex);

} // namespace Velloc::builtin::builtinreg::detail
