// What a 1e7-element element-wise call allocates: through invoke it must be one output of
// 80 MB (rounded up to whole huge pages), or none when the array library's cache of freed
// blocks hands the last output back, and a few small blocks, as in a plain loop that
// allocates its output once. The counters are per call; a call whose outputs come neither
// from one large allocation nor from the cache is reported as an error.
#include "CountingNew.hpp"

#include <builtin/builtinreg/MakeVariant.hpp>
#include <matrix/DataBlocks.hpp>

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

namespace {

using namespace Velloc::builtin::builtinreg;
using Velloc::builtin::BuiltinFcn;

constexpr std::size_t ELEMENTS = 10'000'000;
constexpr std::size_t OUTPUT_BYTES = ELEMENTS * sizeof(double);

double plusOf(double a, double b) { return a + b; }

const BuiltinFcn& plusBuiltin() {
    static const BuiltinVariantLists lists{makeVariants<&plusOf>("plus", {.isElementWise = true})};
    static const RegisteredBuiltin builtin("plus", "bench", "", lists, noDefaultImplementation("plus"));
    return builtin;
}

matrix::ArrayPtr filledColumn(double first) {
    const std::size_t dims[2] = {ELEMENTS, 1};
    matrix::ArrayPtr array(matrix::detail::do_create_uninitnumeric(dims, oxDOUBLE_CLASS, oxREAL));
    double* data = matrix::getTypedData<double>(array.get());
    for (std::size_t i = 0; i < ELEMENTS; ++i) {
        data[i] = first + static_cast<double>(i % 1000);
    }
    return array;
}

// Counts what the timed loop allocated, per iteration.
class AllocationsPerCall {
public:
    explicit AllocationsPerCall(benchmark::State& state)
        : state_(state), before_(allocation_counts::totals()), hitsBefore_(matrix::dataBlockStatistics().cacheHits) {}
    AllocationsPerCall(const AllocationsPerCall&) = delete;
    AllocationsPerCall& operator=(const AllocationsPerCall&) = delete;

    ~AllocationsPerCall() {
        const allocation_counts::Totals after = allocation_counts::totals();
        const auto calls = static_cast<double>(state_.iterations());
        const std::size_t largeCount = after.largeAllocations - before_.largeAllocations;
        const std::size_t largeTotal = after.largeBytes - before_.largeBytes;
        const std::size_t cachedCount = matrix::dataBlockStatistics().cacheHits - hitsBefore_;
        state_.counters["allocationsPerCall"] = static_cast<double>(after.allocations - before_.allocations) / calls;
        state_.counters["largeAllocationsPerCall"] = static_cast<double>(largeCount) / calls;
        state_.counters["largeMBPerCall"] = static_cast<double>(largeTotal) / calls / 1e6;
        state_.counters["cachedOutputsPerCall"] = static_cast<double>(cachedCount) / calls;
        const bool outputSized = largeTotal >= OUTPUT_BYTES * largeCount &&
                                 largeTotal <= (OUTPUT_BYTES + matrix::HUGE_PAGE_BYTES - 1) * largeCount;
        if (largeCount + cachedCount != static_cast<std::size_t>(state_.iterations()) || !outputSized) {
            state_.SkipWithError(("expected one allocation of " + std::to_string(OUTPUT_BYTES) +
                                  " bytes, or one block from the cache, per call").c_str());
        }
    }

private:
    benchmark::State& state_;
    allocation_counts::Totals before_;
    std::size_t hitsBefore_;
};

void BM_InvokePlusAllocations(benchmark::State& state) {
    const BuiltinFcn& plus = plusBuiltin();
    const matrix::ArrayPtr a = filledColumn(1);
    const matrix::ArrayPtr b = filledColumn(2);
    oxArray* args[] = {a.get(), b.get()};
    const AllocationsPerCall counted(state);
    for (auto _ : state) {
        oxArray* result = nullptr;
        plus.invoke(1, &result, 2, args, BuiltinFcn::NoLxe);
        matrix::destroyArray(result);
    }
}
BENCHMARK(BM_InvokePlusAllocations)->Unit(benchmark::kMillisecond);

void BM_RawPlusAllocations(benchmark::State& state) {
    const matrix::ArrayPtr a = filledColumn(1);
    const matrix::ArrayPtr b = filledColumn(2);
    const double* x = matrix::getTypedData<double>(a.get());
    const double* y = matrix::getTypedData<double>(b.get());
    const AllocationsPerCall counted(state);
    for (auto _ : state) {
        const auto out = std::make_unique_for_overwrite<double[]>(ELEMENTS);
        for (std::size_t i = 0; i < ELEMENTS; ++i) {
            out[i] = x[i] + y[i];
        }
        benchmark::DoNotOptimize(out.get());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_RawPlusAllocations)->Unit(benchmark::kMillisecond);

} // namespace
