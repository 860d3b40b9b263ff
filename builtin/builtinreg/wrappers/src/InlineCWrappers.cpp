// The look-up of the inline-C wrappers: a direct index into tables built at compile time.
#include <builtin/builtinreg/InlineCWrappers.hpp>

#include "InlineCThunk.hpp"

#include <array>
#include <utility>

namespace Velloc::builtin::builtinreg::detail {

namespace {

constexpr std::size_t N = WRAPPER_TYPE_COUNT;

constexpr auto ONE_INDEX = []<std::size_t... R>(std::index_sequence<R...>) {
    return std::array<InlineCWrapperNoArgsFcn, N>{&InlineCThunk<WrapperTypeAt<R>>::callWithoutArguments...};
}(std::make_index_sequence<N>{});

constexpr auto TWO_INDEX = []<std::size_t... I>(std::index_sequence<I...>) {
    return std::array<InlineCWrapperFcn, N * N>{&InlineCThunk<WrapperTypeAt<I / N>, WrapperTypeAt<I % N>>::call...};
}(std::make_index_sequence<N * N>{});

constexpr auto THREE_INDEX_GROUP_TABLES = []<std::size_t... G>(std::index_sequence<G...>) {
    return std::array<const ThreeIndexGroup& (*)() noexcept, THREE_INDEX_GROUPS>{&threeIndexGroup<G>...};
}(std::make_index_sequence<THREE_INDEX_GROUPS>{});

} // namespace

InlineCWrapperNoArgsFcn getExportedInlineCWrapperFcn(const InlineCTypeList*, unsigned long resultIndex) {
    return resultIndex < N ? ONE_INDEX[resultIndex] : nullptr;
}

InlineCWrapperFcn getExportedInlineCWrapperFcn(const InlineCTypeList*, unsigned long resultIndex,
                                               unsigned long argumentIndex) {
    return resultIndex < N && argumentIndex < N ? TWO_INDEX[resultIndex * N + argumentIndex] : nullptr;
}

InlineCWrapperFcn getExportedInlineCWrapperFcn(const InlineCTypeList*, unsigned long resultIndex,
                                               unsigned long argumentIndex1, unsigned long argumentIndex2) {
    if (resultIndex >= N || argumentIndex1 >= N || argumentIndex2 >= N) {
        return nullptr;
    }
    const ThreeIndexGroup& group = THREE_INDEX_GROUP_TABLES[resultIndex % THREE_INDEX_GROUPS]();
    return group[resultIndex / THREE_INDEX_GROUPS][argumentIndex1 * N + argumentIndex2];
}

} // namespace Velloc::builtin::builtinreg::detail
