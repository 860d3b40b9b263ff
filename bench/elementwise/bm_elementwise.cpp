// The broadcasting binary loops, called as the engine calls them (the element function
// through its descriptor), against plain loops that do the same arithmetic. Every run
// creates its output, as a builtin call does, except the hypot pair, which measures how
// the parallel loop scales against the same loop forced serial.
#include <builtin/builtinreg/MflBinaryDrivers.hpp>
#include <builtin/builtinreg/MflBinaryLoops.hpp>

#include <matrix/oxArray.hpp>

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace {

using namespace Velloc::builtin::builtinreg::detail;
using Velloc::lxe::LxeFunctionDescriptor;

constexpr std::size_t PARALLEL_THRESHOLD = 1024;
constexpr std::size_t SERIAL = std::numeric_limits<std::size_t>::max();

double plus(double a, double b) { return a + b; }
double hypotenuse(double a, double b) { return std::hypot(a, b); }

const LxeFunctionDescriptor plusDescriptor(nullptr, nullptr, Velloc::lxe::Plain, reinterpret_cast<void*>(&plus));
const LxeFunctionDescriptor hypotDescriptor(nullptr, nullptr, Velloc::lxe::Plain,
                                            reinterpret_cast<void*>(&hypotenuse));

matrix::ArrayPtr newDoubles(std::size_t rows, std::size_t columns) {
    const std::size_t dims[2] = {rows, columns};
    return matrix::ArrayPtr(matrix::detail::do_create_uninitnumeric(dims, oxDOUBLE_CLASS, oxREAL));
}

std::vector<double> filled(std::size_t n, double first) {
    std::vector<double> values(n);
    for (std::size_t i = 0; i < n; ++i) {
        values[i] = first + static_cast<double>(i % 1000);
    }
    return values;
}

// The loops with the element function visible to the compiler, for comparison with the
// descriptor's indirect call.
struct VisiblePlus {
    std::size_t threshold;
    struct Kernel {
        double operator()(double a, double b) const { return a + b; }
        void finish() const noexcept {}
    };
    template <class Body>
    void withKernel(Body&& body) const {
        body(Kernel{});
    }
};

// a + b over n x 1 arrays into a new output.
template <class Loop>
void plusInto(benchmark::State& state, const Loop& loop) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const std::vector<double> a = filled(n, 1);
    const std::vector<double> b = filled(n, 2);
    for (auto _ : state) {
        matrix::ArrayPtr out = newDoubles(n, 1);
        loop(a.data(), b.data(), matrix::getTypedData<double>(out.get()), n);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * n * 3 * sizeof(double)));
}

void BM_ElementWisePlus(benchmark::State& state) {
    bool raised = false;
    const MflFunctor<double, double, double> functor{PARALLEL_THRESHOLD, nullptr, &plusDescriptor, &raised};
    plusInto(state, [&](const double* a, const double* b, double* out, std::size_t n) {
        const std::size_t dims[2] = {n, 1};
        binaryDriver<double>()(a, b, out, n, 2, dims, n, 2, dims, n, 2, dims, functor);
    });
}

void BM_ElementWisePlusSerial(benchmark::State& state) {
    bool raised = false;
    const MflFunctor<double, double, double> functor{SERIAL, nullptr, &plusDescriptor, &raised};
    plusInto(state, [&](const double* a, const double* b, double* out, std::size_t n) {
        const std::size_t dims[2] = {n, 1};
        binaryDriver<double>()(a, b, out, n, 2, dims, n, 2, dims, n, 2, dims, functor);
    });
}

void BM_ElementWisePlusVisible(benchmark::State& state) {
    plusInto(state, [](const double* a, const double* b, double* out, std::size_t n) {
        const std::size_t dims[2] = {n, 1};
        mfl_binary::binaryOpDispatch(a, b, out, n, 2, dims, n, 2, dims, n, 2, dims, VisiblePlus{PARALLEL_THRESHOLD});
    });
}

void BM_RawPlus(benchmark::State& state) {
    plusInto(state, [](const double* a, const double* b, double* out, std::size_t n) {
        for (std::size_t i = 0; i < n; ++i) {
            out[i] = a[i] + b[i];
        }
    });
}

BENCHMARK(BM_ElementWisePlus)->Arg(10000)->Arg(1000000)->Arg(10000000)->UseRealTime();
BENCHMARK(BM_ElementWisePlusSerial)->Arg(10000)->Arg(1000000)->Arg(10000000)->UseRealTime();
BENCHMARK(BM_ElementWisePlusVisible)->Arg(10000)->Arg(1000000)->Arg(10000000)->UseRealTime();
BENCHMARK(BM_RawPlus)->Arg(10000)->Arg(1000000)->Arg(10000000)->UseRealTime();

// n x 1 plus 1 x n into a new n x n output.
template <class Loop>
void broadcastInto(benchmark::State& state, const Loop& loop) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const std::vector<double> a = filled(n, 1);
    const std::vector<double> b = filled(n, 2);
    for (auto _ : state) {
        matrix::ArrayPtr out = newDoubles(n, n);
        loop(a.data(), b.data(), matrix::getTypedData<double>(out.get()), n);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * n * n * sizeof(double)));
}

template <std::size_t Threshold>
void elementWiseBroadcast(benchmark::State& state) {
    bool raised = false;
    const MflFunctor<double, double, double> functor{Threshold, nullptr, &plusDescriptor, &raised};
    broadcastInto(state, [&](const double* a, const double* b, double* out, std::size_t n) {
        const std::size_t dimsA[2] = {n, 1};
        const std::size_t dimsB[2] = {1, n};
        const std::size_t dimsOut[2] = {n, n};
        binaryDriver<double>()(a, b, out, n, 2, dimsA, n, 2, dimsB, n * n, 2, dimsOut, functor);
    });
}

void BM_ElementWiseBroadcast(benchmark::State& state) { elementWiseBroadcast<PARALLEL_THRESHOLD>(state); }
void BM_ElementWiseBroadcastSerial(benchmark::State& state) { elementWiseBroadcast<SERIAL>(state); }

void BM_RawBroadcast(benchmark::State& state) {
    broadcastInto(state, [](const double* a, const double* b, double* out, std::size_t n) {
        for (std::size_t j = 0; j < n; ++j) {
            for (std::size_t i = 0; i < n; ++i) {
                out[j * n + i] = a[i] + b[j];
            }
        }
    });
}

BENCHMARK(BM_ElementWiseBroadcast)->Arg(3000)->UseRealTime();
BENCHMARK(BM_ElementWiseBroadcastSerial)->Arg(3000)->UseRealTime();
BENCHMARK(BM_RawBroadcast)->Arg(3000)->UseRealTime();

// hypot over n x 1 arrays into one output kept across runs, so that only the loop counts.
template <std::size_t Threshold>
void elementWiseHypot(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const std::vector<double> a = filled(n, 1);
    const std::vector<double> b = filled(n, 2);
    std::vector<double> out(n);
    bool raised = false;
    const MflFunctor<double, double, double> functor{Threshold, nullptr, &hypotDescriptor, &raised};
    const std::size_t dims[2] = {n, 1};
    for (auto _ : state) {
        binaryDriver<double>()(a.data(), b.data(), out.data(), n, 2, dims, n, 2, dims, n, 2, dims, functor);
        benchmark::ClobberMemory();
    }
}

void BM_ElementWiseHypotParallel(benchmark::State& state) { elementWiseHypot<PARALLEL_THRESHOLD>(state); }
void BM_ElementWiseHypotSerial(benchmark::State& state) { elementWiseHypot<SERIAL>(state); }

BENCHMARK(BM_ElementWiseHypotParallel)->Arg(10000000)->UseRealTime();
BENCHMARK(BM_ElementWiseHypotSerial)->Arg(10000000)->UseRealTime();

} // namespace
