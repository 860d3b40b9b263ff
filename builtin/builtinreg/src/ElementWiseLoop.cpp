#include <builtin/builtinreg/ElementWiseLoop.hpp>

namespace Velloc::builtin::builtinreg::detail {

std::vector<std::size_t> broadcastDims(const std::array<matrix::Dims, 2>& operandDims, std::size_t operands) {
    std::size_t rank = 2;
    for (std::size_t i = 0; i < operands; ++i) {
        rank = std::max(rank, operandDims[i].size());
    }
    std::vector<std::size_t> out(rank, 1);
    for (std::size_t i = 0; i < operands; ++i) {
        for (std::size_t d = 0; d < operandDims[i].size(); ++d) {
            if (operandDims[i][d] != 1) {
                out[d] = operandDims[i][d];
            }
        }
    }
    return out;
}

BroadcastWalk::BroadcastWalk(const std::vector<std::size_t>& outDims, const std::array<matrix::Dims, 2>& operandDims,
                             std::size_t operands)
    : outDims_(outDims), operands_(operands), coordinate_(outDims.size(), 0) {
    for (std::size_t i = 0; i < operands_; ++i) {
        strides_[i].assign(outDims.size(), 0);
        std::size_t stride = 1;
        for (std::size_t d = 0; d < operandDims[i].size(); ++d) {
            strides_[i][d] = operandDims[i][d] == 1 ? 0 : stride;
            stride *= operandDims[i][d];
        }
    }
}

void BroadcastWalk::next() noexcept {
    for (std::size_t d = 0; d < coordinate_.size(); ++d) {
        ++coordinate_[d];
        for (std::size_t i = 0; i < operands_; ++i) {
            offsets_[i] += strides_[i][d];
        }
        if (coordinate_[d] < outDims_[d]) {
            return;
        }
        for (std::size_t i = 0; i < operands_; ++i) {
            offsets_[i] -= strides_[i][d] * coordinate_[d];
        }
        coordinate_[d] = 0;
    }
}

} // namespace Velloc::builtin::builtinreg::detail
