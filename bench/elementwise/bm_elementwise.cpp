// Element-wise calls as the interpreter makes them (BuiltinFcn::invoke) and as the engine
// makes them (elementWiseInlineC, the element function through its descriptor), against
// plain loops that do the same arithmetic. Every run creates its output, as a builtin call
// does, except the reuse pair, whose temporary input takes the result in place, and the
// hypot pair, which measures how the parallel loop scales against the same loop forced
// serial. A raw loop that writes a fresh output has two twins: one into a plain heap
// block (small pages, faulted in on every run) and one into a fresh block on transparent
// huge pages, as a careful hand-written program would allocate it.
#include <builtin/builtinreg/ElementWiseInlineC.hpp>
#include <builtin/builtinreg/MakeVariant.hpp>
#include <builtin/builtinreg/MflBinaryDrivers.hpp>
#include <builtin/builtinreg/MflBinaryLoops.hpp>

#include <matrix/oxArray.hpp>

#include <benchmark/benchmark.h>
#include <sys/mman.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <vector>

namespace {

using namespace Velloc::builtin::builtinreg;
using namespace Velloc::builtin::builtinreg::detail;
using Velloc::builtin::BuiltinFcn;
using Velloc::builtin::Parameter;
using Velloc::lxe::LxeFunctionDescriptor;

constexpr std::size_t PARALLEL_THRESHOLD = 1024;
constexpr std::size_t SERIAL = std::numeric_limits<std::size_t>::max();
constexpr std::size_t DOUBLE = WRAPPER_TYPE_INDEX<double>;

// plus never warns, so nothing reaches the environment.
class NullEnvironment final : public Velloc::lxe::ILxeBuiltinEnvironment {
public:
    void AddWarningMessage(const std::u16string&) override {}
    Velloc::lxe::ILxeBuiltinAccessors* GetLxeBuiltinAccessors() override { return nullptr; }
};

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

struct FreeBlock {
    void operator()(double* data) const noexcept { std::free(data); }
};
using Doubles = std::unique_ptr<double[], FreeBlock>;

// A fresh heap block: the allocator maps large ones anew, so their pages fault in on first write.
Doubles heapDoubles(std::size_t n) { return Doubles(static_cast<double*>(std::malloc(n * sizeof(double)))); }

// A fresh block of whole huge pages, advised for transparent huge pages.
Doubles hugePageDoubles(std::size_t n) {
    constexpr std::size_t huge = std::size_t{2} << 20;
    const std::size_t bytes = (n * sizeof(double) + huge - 1) / huge * huge;
    void* data = std::aligned_alloc(huge, bytes);
    madvise(data, bytes, MADV_HUGEPAGE);
    return Doubles(static_cast<double*>(data));
}

// a + b over n-element vectors into a fresh output from allocate.
template <class Allocate>
void rawPlusInto(benchmark::State& state, const Allocate& allocate) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const std::vector<double> a = filled(n, 1);
    const std::vector<double> b = filled(n, 2);
    for (auto _ : state) {
        const Doubles out = allocate(n);
        double* const o = out.get();
        for (std::size_t i = 0; i < n; ++i) {
            o[i] = a[i] + b[i];
        }
        benchmark::DoNotOptimize(o);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * n * 3 * sizeof(double)));
}

matrix::ArrayPtr filledArray(std::size_t rows, std::size_t columns, double first) {
    matrix::ArrayPtr array = newDoubles(rows, columns);
    const std::vector<double> values = filled(rows * columns, first);
    std::copy(values.begin(), values.end(), matrix::getTypedData<double>(array.get()));
    return array;
}

const BuiltinFcn& plusBuiltin() {
    static const BuiltinVariantLists lists{makeVariants<&plus>("plus", {.isElementWise = true})};
    static const RegisteredBuiltin builtin("plus", "bench", "", lists, noDefaultImplementation("plus"));
    return builtin;
}

// The interpreter's call: invoke picks the element-wise variant, whose loops see plus.
void invokePlus(benchmark::State& state, std::size_t rowsA, std::size_t columnsA, std::size_t rowsB,
                std::size_t columnsB) {
    const matrix::ArrayPtr a = filledArray(rowsA, columnsA, 1);
    const matrix::ArrayPtr b = filledArray(rowsB, columnsB, 2);
    oxArray* args[2] = {a.get(), b.get()};
    for (auto _ : state) {
        oxArray* result = nullptr;
        plusBuiltin().invoke(1, &result, 2, args, BuiltinFcn::NoLxe);
        matrix::destroyArray(result);
        benchmark::ClobberMemory();
    }
}

void BM_ElementWisePlus(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    invokePlus(state, n, 1, n, 1);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * n * 3 * sizeof(double)));
}

// The engine's call: elementWiseInlineC reaches plus through its descriptor.
void BM_ElementWisePlusInlineC(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const matrix::ArrayPtr a = filledArray(n, 1, 1);
    const matrix::ArrayPtr b = filledArray(n, 1, 2);
    const ElementWiseArguments arguments{Parameter(a.get()), Parameter(b.get())};
    NullEnvironment environment;
    for (auto _ : state) {
        bool raised = false;
        const InlineCResult result =
            elementWiseInlineC(&plusDescriptor, &environment, raised, arguments, nullptr, DOUBLE, DOUBLE, DOUBLE);
        matrix::destroyArray(reinterpret_cast<oxArray*>(static_cast<std::uintptr_t>(result.value)));
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * n * 3 * sizeof(double)));
}

void BM_RawPlus(benchmark::State& state) { rawPlusInto(state, heapDoubles); }
void BM_RawPlusHugePages(benchmark::State& state) { rawPlusInto(state, hugePageDoubles); }

BENCHMARK(BM_ElementWisePlus)->Arg(10000)->Arg(1000000)->Arg(10000000)->UseRealTime();
BENCHMARK(BM_ElementWisePlusInlineC)->Arg(10000)->Arg(1000000)->Arg(10000000)->UseRealTime();
BENCHMARK(BM_RawPlus)->Arg(10000)->Arg(1000000)->Arg(10000000)->UseRealTime();
BENCHMARK(BM_RawPlusHugePages)->Arg(1000000)->Arg(10000000)->UseRealTime();

// A temporary first input takes the result in place: no output is allocated. The engine
// calls the variant's generic entry, whose loops see plus.
void BM_ElementWisePlusReuse(benchmark::State& state) {
    static const std::vector<Velloc::builtin::BuiltinVariant> variants =
        makeVariants<&plus>("plus", {.isElementWise = true});
    const LxeFunctionDescriptor& descriptor = variants.front().functionDescriptor;
    const auto n = static_cast<std::size_t>(state.range(0));
    const matrix::ArrayPtr a = filledArray(n, 1, 1);
    const matrix::ArrayPtr b = filledArray(n, 1, 2);
    matrix::setTemporary(a.get(), true);
    const Parameter parameters[2] = {Parameter(a.get()), Parameter(b.get())};
    NullEnvironment environment;
    for (auto _ : state) {
        bool pending = false;
        const Parameter result = descriptor.getGenericEntry()(descriptor, environment, pending, parameters);
        oxArray* const out = boost::get<oxArray*>(result);
        matrix::destroyArray(out);
        if (out != a.get()) {
            state.SkipWithError("the temporary input was not reused");
            break;
        }
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * n * 3 * sizeof(double)));
}

void BM_RawPlusInPlace(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    std::vector<double> a = filled(n, 1);
    const std::vector<double> b = filled(n, 2);
    for (auto _ : state) {
        double* const out = a.data();
        const double* const in = b.data();
        for (std::size_t i = 0; i < n; ++i) {
            out[i] += in[i];
        }
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * n * 3 * sizeof(double)));
}

BENCHMARK(BM_ElementWisePlusReuse)->Arg(10000000)->UseRealTime();
BENCHMARK(BM_RawPlusInPlace)->Arg(10000000)->UseRealTime();

// n x 1 plus 1 x n into a new n x n output.
void BM_ElementWiseBroadcast(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    invokePlus(state, n, 1, 1, n);
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * n * n * sizeof(double)));
}

// a[i] + b[j] into a fresh column-major n x n output from allocate.
template <class Allocate>
void rawBroadcastInto(benchmark::State& state, const Allocate& allocate) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const std::vector<double> a = filled(n, 1);
    const std::vector<double> b = filled(n, 2);
    for (auto _ : state) {
        const Doubles out = allocate(n * n);
        double* const o = out.get();
        for (std::size_t j = 0; j < n; ++j) {
            for (std::size_t i = 0; i < n; ++i) {
                o[j * n + i] = a[i] + b[j];
            }
        }
        benchmark::DoNotOptimize(o);
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * n * n * sizeof(double)));
}

void BM_RawBroadcast(benchmark::State& state) { rawBroadcastInto(state, heapDoubles); }
void BM_RawBroadcastHugePages(benchmark::State& state) { rawBroadcastInto(state, hugePageDoubles); }

BENCHMARK(BM_ElementWiseBroadcast)->Arg(3000)->UseRealTime();
BENCHMARK(BM_RawBroadcast)->Arg(3000)->UseRealTime();
BENCHMARK(BM_RawBroadcastHugePages)->Arg(3000)->UseRealTime();

// run(a, b, out, n) over n-element inputs into one output kept across runs, so that only
// the loop counts.
template <class Run>
void intoKeptOutput(benchmark::State& state, const Run& run) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const std::vector<double> a = filled(n, 1);
    const std::vector<double> b = filled(n, 2);
    std::vector<double> out(n);
    for (auto _ : state) {
        run(a.data(), b.data(), out.data(), n);
        benchmark::ClobberMemory();
    }
}

// hypot over n x 1 arrays through the engine's descriptor.
template <std::size_t Threshold>
void elementWiseHypot(benchmark::State& state) {
    bool raised = false;
    const MflFunctor<double, double, double> functor{Threshold, nullptr, &hypotDescriptor, &raised};
    intoKeptOutput(state, [&](const double* a, const double* b, double* out, std::size_t n) {
        const std::size_t dims[2] = {n, 1};
        binaryDriver<double>()(a, b, out, n, 2, dims, n, 2, dims, n, 2, dims, functor);
    });
}

void BM_ElementWiseHypotParallel(benchmark::State& state) { elementWiseHypot<PARALLEL_THRESHOLD>(state); }
void BM_ElementWiseHypotSerial(benchmark::State& state) { elementWiseHypot<SERIAL>(state); }

// The CPU time is the whole process's, so its ratio to the real time says how many cores
// the parallel loop got: on a loaded machine it falls towards 1 and so does the speed-up.
// Repeated, because any other process that wakes up takes a core from the parallel loop
// and none from the serial one; the median keeps one such moment out of the ratio.
BENCHMARK(BM_ElementWiseHypotParallel)
    ->Arg(10000000)
    ->UseRealTime()
    ->MeasureProcessCPUTime()
    ->Repetitions(5)
    ->ReportAggregatesOnly();
BENCHMARK(BM_ElementWiseHypotSerial)
    ->Arg(10000000)
    ->UseRealTime()
    ->MeasureProcessCPUTime()
    ->Repetitions(5)
    ->ReportAggregatesOnly();

// Where two cores start to beat one: a + b over n elements that stay in cache, through the
// broadcasting loops with plus inlined as invoke's path has it, every size parallel against
// every size serial. invoke's threshold is the smallest size at which the ratio drops below 1.
struct PlusFunctor {
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

template <std::size_t Threshold>
void inCachePlus(benchmark::State& state) {
    const PlusFunctor functor{Threshold};
    intoKeptOutput(state, [&](const double* a, const double* b, double* out, std::size_t n) {
        mfl_binary::binaryOpSimpleParallelLoop(a, b, out, n, functor);
    });
}

void BM_InCachePlusParallel(benchmark::State& state) { inCachePlus<0>(state); }
void BM_InCachePlusSerial(benchmark::State& state) { inCachePlus<SERIAL>(state); }

BENCHMARK(BM_InCachePlusParallel)->RangeMultiplier(2)->Range(std::int64_t{1} << 12, std::int64_t{1} << 18)->UseRealTime();
BENCHMARK(BM_InCachePlusSerial)->RangeMultiplier(2)->Range(std::int64_t{1} << 12, std::int64_t{1} << 18)->UseRealTime();

} // namespace
