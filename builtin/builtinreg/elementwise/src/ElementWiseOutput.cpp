#include <builtin/builtinreg/ElementWiseOutput.hpp>
#include <builtin/builtinreg/ElementWiseRules.hpp>

#include <algorithm>
#include <ranges>

namespace Velloc::builtin::builtinreg::detail {

std::vector<std::size_t> elementWiseOutputDims(const OperandDims* first, const OperandDims* last) {
    std::size_t ndims = 2;
    for (const OperandDims* operand = first; operand != last; ++operand) {
        ndims = std::max(ndims, operand->ndims);
    }
    std::vector<std::size_t> out(ndims, 1);
    std::vector<std::size_t> position(static_cast<std::size_t>(last - first));
    for (std::size_t d = 0; d < ndims; ++d) {
        for (std::size_t i = 0; i < position.size(); ++i) {
            position[i] = d < first[i].ndims ? first[i].dims[d] : 1;
            if (position[i] != 1) {
                out[d] = position[i];
            }
        }
        assertElementwiseDimensions(position.data(), position.data() + position.size());
    }
    return out;
}

bool canReuseAsOutput(const oxArray* input, oxClassID classId, bool complex, const std::vector<std::size_t>& dims) {
    return input != nullptr && matrix::isTemporary(input) && !matrix::isSharedData(input) &&
           matrix::getClassID(input) == classId && matrix::isComplex(input) == complex && !matrix::isSparse(input) &&
           matrix::isOrdinaryStorage(input) && std::ranges::equal(matrix::getDimensions(input), dims);
}

matrix::ArrayPtr createElementWiseOutput(const std::vector<std::size_t>& dims, oxClassID classId, bool complex) {
    return matrix::ArrayPtr(matrix::detail::do_create_uninitnumeric(dims, classId, complex ? oxCOMPLEX : oxREAL));
}

} // namespace Velloc::builtin::builtinreg::detail
