// The outer dimensions of a broadcast, those after the inner block that the loops run
// contiguously. A cursor walks the blocks in order and keeps the offset of each input's
// block; an input's singleton dimension has stride 0, so its block repeats along it.
#pragma once

#include <cstddef>
#include <vector>

namespace Velloc::builtin::builtinreg::detail::mfl_binary {

// One operand of the broadcast: its number of dims, its dims, and its cumulative counts
// over the output's dims (position i: elements in its leading i+1 dims).
struct BroadcastOperand {
    std::size_t ndims;
    const std::size_t* dims;
    const std::size_t* cumulative;

    std::size_t extent(std::size_t d) const noexcept { return d < ndims ? dims[d] : 1; }
};

class BroadcastBlocks {
public:
    // Dimensions outerStart to out.ndims - 1 are outer.
    BroadcastBlocks(std::size_t outerStart, const BroadcastOperand& a, const BroadcastOperand& b,
                    const BroadcastOperand& out);

    class Cursor {
    public:
        // Positioned at block index block.
        Cursor(const BroadcastBlocks& blocks, std::size_t block);

        std::size_t offsetA() const noexcept { return offsetA_; }
        std::size_t offsetB() const noexcept { return offsetB_; }

        void next() noexcept {
            for (std::size_t d = 0; d < coordinate_.size(); ++d) {
                offsetA_ += blocks_.strideA_[d];
                offsetB_ += blocks_.strideB_[d];
                if (++coordinate_[d] < blocks_.extents_[d]) {
                    return;
                }
                offsetA_ -= blocks_.strideA_[d] * coordinate_[d];
                offsetB_ -= blocks_.strideB_[d] * coordinate_[d];
                coordinate_[d] = 0;
            }
        }

    private:
        const BroadcastBlocks& blocks_;
        std::vector<std::size_t> coordinate_;
        std::size_t offsetA_ = 0;
        std::size_t offsetB_ = 0;
    };

private:
    std::vector<std::size_t> extents_;
    std::vector<std::size_t> strideA_;
    std::vector<std::size_t> strideB_;
};

} // namespace Velloc::builtin::builtinreg::detail::mfl_binary
