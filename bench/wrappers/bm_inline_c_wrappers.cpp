// The cost of the engine calling a scalar developer function through its inline-C
// wrapper, against the same function called through a function pointer.
#include "bare_thunk.hpp"

#include <builtin/builtinreg/InlineCWrappers.hpp>

#include <benchmark/benchmark.h>

namespace {

using namespace Velloc::builtin;
using namespace Velloc::builtin::builtinreg::detail;

double plusDouble(double a, double b) { return a + b; }

class NoEnvironment final : public Velloc::lxe::ILxeBuiltinEnvironment {
public:
    void AddWarningMessage(const std::u16string&) override {}
    Velloc::lxe::ILxeBuiltinAccessors* GetLxeBuiltinAccessors() override { return nullptr; }
};

void BM_DirectScalarPlus(benchmark::State& state) {
    double (*volatile function)(double, double) = &plusDouble;
    double a = 1;
    double b = 2;
    for (auto _ : state) {
        benchmark::DoNotOptimize(a);
        benchmark::DoNotOptimize(b);
        benchmark::DoNotOptimize(function(a, b));
    }
}
BENCHMARK(BM_DirectScalarPlus);

void BM_InlineCWrapperScalarPlus(benchmark::State& state) {
    constexpr std::size_t DOUBLE = WRAPPER_TYPE_INDEX<double>;
    const InlineCWrapperFcn wrapper = getExportedInlineCWrapperFcn(nullptr, DOUBLE, DOUBLE, DOUBLE);
    const Velloc::lxe::LxeFunctionDescriptor callee(nullptr, nullptr, Velloc::lxe::Plain,
                                                     reinterpret_cast<void*>(&plusDouble));
    NoEnvironment environment;
    bool error = false;
    Parameter arguments[] = {Parameter(1.0), Parameter(2.0)};
    for (auto _ : state) {
        benchmark::DoNotOptimize(arguments);
        const InlineCResult result = wrapper(&callee, &environment, &error, arguments);
        benchmark::DoNotOptimize(readInlineCResult<double>(result));
    }
}
BENCHMARK(BM_InlineCWrapperScalarPlus);

// The structure's floor: two dependent indirect calls, the thunk's and the function's,
// with none of the thunk's tests.
void BM_BareThunkScalarPlus(benchmark::State& state) {
    bench_wrappers::InlineCResult (*volatile thunk)(const void*, const double*) = &bench_wrappers::bareThunk;
    const void* callee = reinterpret_cast<const void*>(&plusDouble);
    double arguments[] = {1.0, 2.0};
    for (auto _ : state) {
        benchmark::DoNotOptimize(arguments);
        const bench_wrappers::InlineCResult result = thunk(callee, arguments);
        benchmark::DoNotOptimize(readInlineCResult<double>(result));
    }
}
BENCHMARK(BM_BareThunkScalarPlus);

} // namespace
