// Classification of a run-time array and acceptance of a declared scalar: the two tests
// dispatch runs for every argument of every call. Each has a hand-written twin.
#include <builtin/types/ArgType.hpp>
#include <builtin/types/ArgTypeOfOxArray.hpp>
#include <matrix/oxArray.hpp>

#include <benchmark/benchmark.h>

#include <cstdint>

namespace {

using namespace Velloc::builtin::types;

void BM_ClassifyScalarDouble(benchmark::State& state) {
    const matrix::ArrayPtr array(matrix::createScalar(2.5));
    const oxArray* handle = array.get();
    for (auto _ : state) {
        benchmark::DoNotOptimize(handle);
        ArgType type = getArgTypeOfOxArray(handle);
        benchmark::DoNotOptimize(type);
    }
}
BENCHMARK(BM_ClassifyScalarDouble);

// The least a classifier must ask the host: class, scalar, complex and sparse.
void BM_RawClassifyScalarDouble(benchmark::State& state) {
    const matrix::ArrayPtr array(matrix::createScalar(2.5));
    const oxArray* handle = array.get();
    for (auto _ : state) {
        benchmark::DoNotOptimize(handle);
        const bool realFullDoubleScalar = matrix::getClassID(handle) == oxDOUBLE_CLASS &&
                                          matrix::isScalar(handle) && !matrix::isComplex(handle) &&
                                          !matrix::isSparse(handle);
        benchmark::DoNotOptimize(realFullDoubleScalar);
    }
}
BENCHMARK(BM_RawClassifyScalarDouble);

void BM_AcceptExactScalar(benchmark::State& state) {
    const ArgType declared = NumericScalarTypes(oxDOUBLE_CLASS, NumericScalarTypes::Complexity::NOT_COMPLEX);
    ArgType actual = NumericScalarTypes(oxDOUBLE_CLASS, NumericScalarTypes::Complexity::NOT_COMPLEX);
    for (auto _ : state) {
        benchmark::DoNotOptimize(actual);
        benchmark::DoNotOptimize(isAcceptable(declared, actual));
    }
}
BENCHMARK(BM_AcceptExactScalar);

struct RawScalarType {
    std::int32_t element;
    std::int32_t complexity;
};

void BM_RawAcceptExactScalar(benchmark::State& state) {
    const RawScalarType declared{oxDOUBLE_CLASS, 0};
    RawScalarType actual{oxDOUBLE_CLASS, 0};
    for (auto _ : state) {
        benchmark::DoNotOptimize(actual);
        benchmark::DoNotOptimize(declared.element == actual.element &&
                                 declared.complexity == actual.complexity);
    }
}
BENCHMARK(BM_RawAcceptExactScalar);

} // namespace
