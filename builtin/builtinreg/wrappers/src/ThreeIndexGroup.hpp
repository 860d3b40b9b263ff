// The definition of the three-index groups, for the files that instantiate them.
#pragma once

#include "InlineCThunk.hpp"

namespace Velloc::builtin::builtinreg::detail {

template <std::size_t ResultIndex>
constexpr ThreeIndexRow makeThreeIndexRow() {
    constexpr std::size_t N = WRAPPER_TYPE_COUNT;
    if constexpr (ResultIndex >= N) {
        return ThreeIndexRow{};
    } else {
        return []<std::size_t... I>(std::index_sequence<I...>) {
            return ThreeIndexRow{
                &InlineCThunk<WrapperTypeAt<ResultIndex>, WrapperTypeAt<I / N>, WrapperTypeAt<I % N>>::call...};
        }(std::make_index_sequence<N * N>{});
    }
}

template <std::size_t Group>
const ThreeIndexGroup& threeIndexGroup() noexcept {
    static constexpr ThreeIndexGroup GROUP = []<std::size_t... Row>(std::index_sequence<Row...>) {
        return ThreeIndexGroup{makeThreeIndexRow<Row * THREE_INDEX_GROUPS + Group>()...};
    }(std::make_index_sequence<ROWS_PER_GROUP>{});
    return GROUP;
}

} // namespace Velloc::builtin::builtinreg::detail
