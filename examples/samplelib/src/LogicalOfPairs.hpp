// Element-wise operators with logical results (comparisons, and, or) over operands of
// different classes, char arrays and empty operands: a logical array of the broadcast size.
#pragma once

#include "Broadcasting.hpp"
#include "Elements.hpp"

#include <matrix/oxArray.hpp>

#include <cstddef>
#include <vector>

namespace samplelib {

// Op names its builtin (Op::NAME) and gives the result of two elements (Op::of).
template <class Op>
oxArray* logicalOfPairs(const oxArray* a, const oxArray* b) {
    requireNumbers(Op::NAME, a);
    requireNumbers(Op::NAME, b);
    rejectSizeMismatch(a, b);
    const std::vector<std::size_t> dims = *broadcastDims(a, b);
    matrix::ArrayPtr out = createArrayOf<bool>(dims);
    bool* result = matrix::getTypedData<bool>(out.get());
    const NumberReader x(a);
    const NumberReader y(b);
    forEachBroadcast(dims, matrix::getDimensions(a), matrix::getDimensions(b),
                     [&](std::size_t k, std::size_t i, std::size_t j) { result[k] = Op::of(x[i], y[j]); });
    return out.release();
}

} // namespace samplelib
