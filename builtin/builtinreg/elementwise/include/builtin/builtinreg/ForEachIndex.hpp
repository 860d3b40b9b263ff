// The innermost loops of the element-wise kernels, compiled twice on x86-64: for the
// baseline target (two doubles per instruction) and for AVX2 (four), the copy chosen each
// time an inner loop starts by what the processor has (one load of its feature bits), as
// NumPy chooses its loops. The element function is inlined into both copies. AVX2 alone
// brings no fused multiply-add, so nothing is contracted that the baseline copy computes
// in two steps: both give the same results.
#pragma once

#include <cstddef>

namespace Velloc::builtin::builtinreg::detail {

#if defined(__x86_64__)
template <class Body>
[[gnu::target("avx2")]] void forEachIndexAvx2(std::size_t begin, std::size_t end, Body& body) {
    for (std::size_t i = begin; i < end; ++i) {
        body(i);
    }
}
#endif

template <class Body>
void forEachIndexBaseline(std::size_t begin, std::size_t end, Body& body) {
    for (std::size_t i = begin; i < end; ++i) {
        body(i);
    }
}

// body(i) for i from begin to end.
template <class Body>
void forEachIndex(std::size_t begin, std::size_t end, Body&& body) {
#if defined(__x86_64__)
    if (__builtin_cpu_supports("avx2")) {
        forEachIndexAvx2(begin, end, body);
        return;
    }
#endif
    forEachIndexBaseline(begin, end, body);
}

} // namespace Velloc::builtin::builtinreg::detail
