// Applies a scalar binary function to two arrays with broadcasting of singleton
// dimensions, in column-major order: serially while the output has no more elements than
// the functor's threshold, otherwise with oneTBB parallel_for.
//
// A functor F has a size_t threshold and withKernel(body), which calls body once with a
// kernel: k(a, b) gives one output element, k.finish() ends a chunk of elements. Each
// chunk copies the kernel, so the kind of call is fixed before the loop and the
// innermost loops below are plain loops over contiguous memory.
#pragma once

#include <builtin/builtinreg/BroadcastBlocks.hpp>
#include <builtin/builtinreg/ForEachIndex.hpp>
#include <builtin/builtinreg/ThreadSanitizerHandoff.hpp>

#include <oneapi/tbb/blocked_range.h>
#include <oneapi/tbb/parallel_for.h>
#include <oneapi/tbb/partitioner.h>
#include <oneapi/tbb/task_group.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace Velloc::builtin::builtinreg::detail::mfl_binary {

// The broadcast pattern of the inner block.
enum BSXType {
    B_VARIES = 0,    // A is singleton in the block: its element is reused
    A_VARIES = 1,    // B is singleton in the block
    BOTH_VARY = 2,
};

// Small enough that auto_partitioner can still split a loop of a few thousand elements.
inline constexpr std::size_t MAX_GRAIN = 512;

// Runs chunk(begin, end) over [0, count), on the calling thread when serial. chunk is
// noexcept: an exception escaping an element function ends the process.
template <class Chunk>
void runChunks(std::size_t count, bool serial, std::size_t grain, const Chunk& chunk) {
    static_assert(noexcept(chunk(std::size_t{}, std::size_t{})));
    if (serial) {
        chunk(0, count);
        return;
    }
    tbb::task_group_context context;
    const tbb::blocked_range<std::size_t> all(0, count, grain);
    int finished = 0;
    releaseTo(&context);
    tbb::parallel_for(
        all,
        [&](const tbb::blocked_range<std::size_t>& range) {
            acquireFrom(&context);
            chunk(range.begin(), range.end());
            releaseTo(&finished);
        },
        tbb::auto_partitioner(), context);
    acquireFrom(&finished);
}

// out[i] = f(a[i], b[i]).
template <class F, class R, class A, class B>
void binaryOpSimpleParallelLoop(const A* a, const B* b, R* out, std::size_t n, const F& f) {
    f.withKernel([&](const auto& kernel) {
        runChunks(n, f.threshold >= n, MAX_GRAIN, [&](std::size_t begin, std::size_t end) noexcept {
            auto k = kernel;
            forEachIndex(begin, end, [&](std::size_t i) { out[i] = k(a[i], b[i]); });
            k.finish();
        });
    });
}

// out[i] = f(a, b[i]).
template <class F, class R, class A, class B>
void binaryOpScalarMatrixParallel(A a, const B* b, R* out, std::size_t n, const F& f) {
    f.withKernel([&](const auto& kernel) {
        runChunks(n, f.threshold >= n, MAX_GRAIN, [&](std::size_t begin, std::size_t end) noexcept {
            auto k = kernel;
            forEachIndex(begin, end, [&](std::size_t i) { out[i] = k(a, b[i]); });
            k.finish();
        });
    });
}

// out[i] = f(a[i], b).
template <class F, class R, class A, class B>
void binaryOpMatrixScalarParallel(const A* a, B b, R* out, std::size_t n, const F& f) {
    f.withKernel([&](const auto& kernel) {
        runChunks(n, f.threshold >= n, MAX_GRAIN, [&](std::size_t begin, std::size_t end) noexcept {
            auto k = kernel;
            forEachIndex(begin, end, [&](std::size_t i) { out[i] = k(a[i], b); });
            k.finish();
        });
    });
}

// General broadcasting: the output is cut into blocks of inner elements (its leading
// outerStart dims); in each block the operands named by Kind advance with the output.
template <BSXType Kind, class F, class R, class A, class B>
void binaryOpMainLoopParallel(const A* a, const B* b, R* out, const BroadcastOperand& shapeA,
                              const BroadcastOperand& shapeB, const BroadcastOperand& shapeOut, std::size_t countOut,
                              std::size_t outerStart, std::size_t inner, const F& f) {
    if (inner == 0 || countOut < inner) {
        return;
    }
    const std::size_t blockCount = countOut / inner;
    const BroadcastBlocks blocks(outerStart, shapeA, shapeB, shapeOut);
    const std::size_t grain = std::min(f.threshold / inner + 1, MAX_GRAIN);
    f.withKernel([&](const auto& kernel) {
        runChunks(blockCount, f.threshold >= countOut, grain, [&](std::size_t first, std::size_t last) noexcept {
            auto k = kernel;
            BroadcastBlocks::Cursor cursor(blocks, first);
            for (std::size_t j = first; j < last; ++j, cursor.next()) {
                R* const o = out + j * inner;
                const A* const pa = a + cursor.offsetA();
                const B* const pb = b + cursor.offsetB();
                if constexpr (Kind == B_VARIES) {
                    const A va = *pa;
                    forEachIndex(0, inner, [&](std::size_t i) { o[i] = k(va, pb[i]); });
                } else if constexpr (Kind == A_VARIES) {
                    const B vb = *pb;
                    forEachIndex(0, inner, [&](std::size_t i) { o[i] = k(pa[i], vb); });
                } else {
                    forEachIndex(0, inner, [&](std::size_t i) { o[i] = k(pa[i], pb[i]); });
                }
            }
            k.finish();
        });
    });
}

// Chooses the loop for the shapes. The fast cases cover every pair of shapes whose
// broadcast needs no change of pattern; the rest is cut into inner blocks.
template <class F, class R, class A, class B>
void binaryOpDispatch(const A* a, const B* b, R* out, std::size_t countA, std::size_t ndimsA,
                      const std::size_t* dimsA, std::size_t countB, std::size_t ndimsB, const std::size_t* dimsB,
                      std::size_t countOut, std::size_t ndimsOut, const std::size_t* dimsOut, const F& f) {
    if (countOut == std::max(countA, countB)) {
        if (countA == 1 && countB == 1) {
            binaryOpSimpleParallelLoop(a, b, out, 1, f);
            return;
        }
        if (countA == 1) {
            binaryOpScalarMatrixParallel(*a, b, out, countB, f);
            return;
        }
        if (countB == 1) {
            binaryOpMatrixScalarParallel(a, *b, out, countA, f);
            return;
        }
        if (countA == countB) {
            binaryOpSimpleParallelLoop(a, b, out, countA, f);
            return;
        }
    }
    std::vector<std::size_t> cumulativeA(ndimsOut);
    std::vector<std::size_t> cumulativeB(ndimsOut);
    std::vector<std::size_t> cumulativeOut(ndimsOut);
    const BroadcastOperand shapeA{ndimsA, dimsA, cumulativeA.data()};
    const BroadcastOperand shapeB{ndimsB, dimsB, cumulativeB.data()};
    const BroadcastOperand shapeOut{ndimsOut, dimsOut, cumulativeOut.data()};
    for (std::size_t d = 0; d < ndimsOut; ++d) {
        cumulativeA[d] = (d == 0 ? 1 : cumulativeA[d - 1]) * shapeA.extent(d);
        cumulativeB[d] = (d == 0 ? 1 : cumulativeB[d - 1]) * shapeB.extent(d);
        cumulativeOut[d] = (d == 0 ? 1 : cumulativeOut[d - 1]) * dimsOut[d];
    }
    // Pattern of a dimension: 2 when A varies along it, plus 1 when B does. The inner
    // block runs to the first dimension whose pattern differs from the first non-zero one.
    int kind = 0;
    std::size_t outerStart = 0;
    for (; outerStart < ndimsOut; ++outerStart) {
        const int pattern = (shapeA.extent(outerStart) != 1 ? 2 : 0) + (shapeB.extent(outerStart) != 1 ? 1 : 0);
        if (pattern == 0) {
            continue;
        }
        if (kind == 0) {
            kind = pattern;
        } else if (pattern != kind) {
            break;
        }
    }
    const std::size_t inner = outerStart == 0 ? 1 : cumulativeOut[outerStart - 1];
    switch (kind) {
    case 1:
        binaryOpMainLoopParallel<B_VARIES>(a, b, out, shapeA, shapeB, shapeOut, countOut, outerStart, inner, f);
        return;
    case 2:
        binaryOpMainLoopParallel<A_VARIES>(a, b, out, shapeA, shapeB, shapeOut, countOut, outerStart, inner, f);
        return;
    default:
        binaryOpMainLoopParallel<BOTH_VARY>(a, b, out, shapeA, shapeB, shapeOut, countOut, outerStart, inner, f);
    }
}

} // namespace Velloc::builtin::builtinreg::detail::mfl_binary
