#include <builtin/builtinreg/BroadcastBlocks.hpp>

namespace Velloc::builtin::builtinreg::detail::mfl_binary {

namespace {

// Elements in the leading d dims: the step of dimension d.
std::size_t leadingCount(const BroadcastOperand& operand, std::size_t d) {
    return d == 0 ? 1 : operand.cumulative[d - 1];
}

} // namespace

BroadcastBlocks::BroadcastBlocks(std::size_t outerStart, const BroadcastOperand& a, const BroadcastOperand& b,
                                 const BroadcastOperand& out) {
    for (std::size_t d = outerStart; d < out.ndims; ++d) {
        extents_.push_back(out.dims[d]);
        strideA_.push_back(a.extent(d) == 1 ? 0 : leadingCount(a, d));
        strideB_.push_back(b.extent(d) == 1 ? 0 : leadingCount(b, d));
    }
}

BroadcastBlocks::Cursor::Cursor(const BroadcastBlocks& blocks, std::size_t block)
    : blocks_(blocks), coordinate_(blocks.extents_.size(), 0) {
    for (std::size_t d = 0; d < coordinate_.size(); ++d) {
        coordinate_[d] = block % blocks.extents_[d];
        block /= blocks.extents_[d];
        offsetA_ += coordinate_[d] * blocks.strideA_[d];
        offsetB_ += coordinate_[d] * blocks.strideB_[d];
    }
}

} // namespace Velloc::builtin::builtinreg::detail::mfl_binary
