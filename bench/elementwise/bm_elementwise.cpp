// Element-wise calls as the interpreter makes them (BuiltinFcn::invoke) and as the engine
// makes them (elementWiseInlineC, the element function through its descriptor), against
// plain loops that do the same arithmetic. Every run creates its output, as a builtin call
// does, except the reuse pair, whose temporary input takes the result in place, and the
// hypot pair, which measures how the parallel loop scales against the same loop forced
// serial.
#include <builtin/builtinreg/ElementWiseInlineC.hpp>
#include <builtin/builtinreg/MakeVariant.hpp>
#include <builtin/builtinreg/MflBinaryDrivers.hpp>

#include <matrix/oxArray.hpp>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
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

void BM_RawPlus(benchmark::State& state) {
    plusInto(state, [](const double* a, const double* b, double* out, std::size_t n) {
        for (std::size_t i = 0; i < n; ++i) {
            out[i] = a[i] + b[i];
        }
    });
}

BENCHMARK(BM_ElementWisePlus)->Arg(10000)->Arg(1000000)->Arg(10000000)->UseRealTime();
BENCHMARK(BM_ElementWisePlusInlineC)->Arg(10000)->Arg(1000000)->Arg(10000000)->UseRealTime();
BENCHMARK(BM_RawPlus)->Arg(10000)->Arg(1000000)->Arg(10000000)->UseRealTime();

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

void BM_RawBroadcast(benchmark::State& state) {
    const auto n = static_cast<std::size_t>(state.range(0));
    const std::vector<double> a = filled(n, 1);
    const std::vector<double> b = filled(n, 2);
    for (auto _ : state) {
        matrix::ArrayPtr out = newDoubles(n, n);
        double* const o = matrix::getTypedData<double>(out.get());
        for (std::size_t j = 0; j < n; ++j) {
            for (std::size_t i = 0; i < n; ++i) {
                o[j * n + i] = a[i] + b[j];
            }
        }
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * n * n * sizeof(double)));
}

BENCHMARK(BM_ElementWiseBroadcast)->Arg(3000)->UseRealTime();
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
