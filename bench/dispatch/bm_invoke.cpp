// The cost of a builtin call through invoke, against the floor of any scalar call that
// creates its output: an indirect call and one allocation of an array's size.
#include <builtin/builtinreg/MakeVariant.hpp>

#include <SampleBuiltins.hpp>

#include <foundation/core/diag/terminate.hpp>
#include <foundation/usm/usm.hpp>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace {

using namespace Velloc::builtin;
using namespace Velloc::builtin::builtinreg;

double plusDouble(double a, double b) { return a + b; }

void BM_Floor(benchmark::State& state) {
    double (*volatile function)(double, double) = &plusDouble;
    double a = 1;
    double b = 2;
    for (auto _ : state) {
        benchmark::DoNotOptimize(a);
        void* result = std::malloc(72);
        benchmark::DoNotOptimize(result);
        *static_cast<double*>(result) = function(a, b);
        benchmark::ClobberMemory();
        std::free(result);
    }
}
BENCHMARK(BM_Floor);

const BuiltinFcn& plusBuiltin() {
    static const BuiltinVariantLists lists{makeVariants<&plusDouble>("plus", {.isElementWise = true})};
    static const RegisteredBuiltin builtin("plus", "bench", "", lists, noDefaultImplementation("plus"));
    return builtin;
}

void invokeRepeatedly(benchmark::State& state, const BuiltinFcn& builtin, oxArray* a, oxArray* b) {
    oxArray* args[] = {a, b};
    for (auto _ : state) {
        oxArray* result = nullptr;
        builtin.invoke(1, &result, 2, args, BuiltinFcn::NoLxe);
        benchmark::DoNotOptimize(result);
        matrix::destroyArray(result);
    }
}

// Checks disarmed, as a production host runs: they cost one flag read.
void BM_InvokeScalarPlus(benchmark::State& state) {
    matrix::ArrayPtr a(matrix::createScalar<double>(1));
    matrix::ArrayPtr b(matrix::createScalar<double>(2));
    invokeRepeatedly(state, plusBuiltin(), a.get(), b.get());
}
BENCHMARK(BM_InvokeScalarPlus);

// Armed, in a language instance: the variant is pushed as the active one, its warnings
// are captured, and its execution traced.
void BM_InvokeScalarPlusChecksArmed(benchmark::State& state) {
    foundation::usm::OvmInstance instance;
    const foundation::usm::CurrentOvm current(instance);
    const bool wasArmed = foundation::core::diag::terminationsArmed();
    foundation::core::diag::setTerminationsArmed(true);
    matrix::ArrayPtr a(matrix::createScalar<double>(1));
    matrix::ArrayPtr b(matrix::createScalar<double>(2));
    invokeRepeatedly(state, plusBuiltin(), a.get(), b.get());
    foundation::core::diag::setTerminationsArmed(wasArmed);
}
BENCHMARK(BM_InvokeScalarPlusChecksArmed);

// The same scalar function, not element-wise: the interpreter reaches its boxed copy,
// which passes the 1-by-1 arrays and unboxes them.
void BM_InvokeBoxedScalar(benchmark::State& state) {
    static const BuiltinVariantLists lists{makeVariants<&plusDouble>("plus")};
    static const RegisteredBuiltin boxed("plus", "bench", "", lists, noDefaultImplementation("plus"));
    if (boxed.getSearchedByInvokeNoLxe().back().originalVariant == nullptr) {
        state.SkipWithError("no boxed copy");
        return;
    }
    matrix::ArrayPtr a(matrix::createScalar<double>(1));
    matrix::ArrayPtr b(matrix::createScalar<double>(2));
    invokeRepeatedly(state, boxed, a.get(), b.get());
}
BENCHMARK(BM_InvokeBoxedScalar);

template <class T>
T same(T a, T) {
    return a;
}

oxArray* anyPair(const oxArray*, const oxArray*) { return matrix::createScalar<double>(1); }

// Fifteen element-wise variants that each look at the arguments and refuse them, then
// one over host arrays that takes them.
const BuiltinFcn& sixteenBuiltin() {
    static const BuiltinVariantLists lists{
        makeVariants<&same<double>>("f", {.isElementWise = true}),
        makeVariants<&same<float>>("f", {.isElementWise = true}),
        makeVariants<&same<bool>>("f", {.isElementWise = true}),
        makeVariants<&same<std::int8_t>>("f", {.isElementWise = true}),
        makeVariants<&same<std::uint8_t>>("f", {.isElementWise = true}),
        makeVariants<&same<std::int16_t>>("f", {.isElementWise = true}),
        makeVariants<&same<std::uint16_t>>("f", {.isElementWise = true}),
        makeVariants<&same<std::int32_t>>("f", {.isElementWise = true}),
        makeVariants<&same<std::uint32_t>>("f", {.isElementWise = true}),
        makeVariants<&same<std::int64_t>>("f", {.isElementWise = true}),
        makeVariants<&same<std::uint64_t>>("f", {.isElementWise = true}),
        makeVariants<&same<std::complex<double>>>("f", {.isElementWise = true}),
        makeVariants<&same<std::complex<float>>>("f", {.isElementWise = true}),
        makeVariants<&same<double>>("f", {.isElementWise = true, .cppFunctionName = "sameAgain"}),
        makeVariants<&same<float>>("f", {.isElementWise = true, .cppFunctionName = "sameSingleAgain"}),
        makeVariants<&anyPair>("f"),
    };
    static const RegisteredBuiltin builtin("f", "bench", "", lists, noDefaultImplementation("f"));
    return builtin;
}

void BM_InvokeSixteenVariantsLastMatches(benchmark::State& state) {
    const BuiltinFcn& f = sixteenBuiltin();
    if (f.getSearchedByInvokeNoLxe().size() != 16 ||
        f.getSearchedByInvokeNoLxe().back().cppFunctionName.str().find("anyPair") == std::string::npos) {
        state.SkipWithError("the list is not sixteen variants with the host-array one last");
        return;
    }
    matrix::ArrayPtr a(matrix::createCharRow(u"a"));
    matrix::ArrayPtr b(matrix::createCharRow(u"b"));
    invokeRepeatedly(state, f, a.get(), b.get());
}
BENCHMARK(BM_InvokeSixteenVariantsLastMatches);

// The sixteenth variant alone: what the fifteen before it cost is the sixteen-variant call
// over this one; what a function over host arrays costs is this one over the scalar call.
void BM_InvokeOneVariantOverArrays(benchmark::State& state) {
    static const BuiltinVariantLists lists{makeVariants<&anyPair>("f")};
    static const RegisteredBuiltin builtin("f", "bench", "", lists, noDefaultImplementation("f"));
    matrix::ArrayPtr a(matrix::createCharRow(u"a"));
    matrix::ArrayPtr b(matrix::createCharRow(u"b"));
    invokeRepeatedly(state, builtin, a.get(), b.get());
}
BENCHMARK(BM_InvokeOneVariantOverArrays);

std::int32_t plusInt32(std::int32_t a, std::int32_t b) { return a + b; }
float plusSingle(float a, float b) { return a + b; }

// One call per iteration, cycling through five kinds of call to the same builtin, so
// that a dispatch shortcut that serves only the first kind it sees, or that evicts one
// kind for the next, costs here what a full search costs.
void BM_InvokeMixedCalls(benchmark::State& state) {
    static const BuiltinVariantLists lists{
        makeVariants<&plusDouble>("plus", {.isElementWise = true}),
        makeVariants<&plusInt32>("plus", {.isElementWise = true}),
        makeVariants<&plusSingle>("plus", {.isElementWise = true}),
        makeVariants<&anyPair>("plus"),
    };
    static const RegisteredBuiltin builtin("plus", "bench", "", lists, noDefaultImplementation("plus"));
    const std::size_t rowDims[] = {1, 3};
    matrix::ArrayPtr row(matrix::detail::do_create_uninitnumeric(rowDims, oxDOUBLE_CLASS, oxREAL));
    std::fill_n(matrix::getTypedData<double>(row.get()), 3, 1.0);
    const matrix::ArrayPtr operands[] = {
        matrix::ArrayPtr(matrix::createScalar<double>(1)),   matrix::ArrayPtr(matrix::createScalar<std::int32_t>(2)),
        matrix::ArrayPtr(matrix::createScalar<float>(3)),    std::move(row),
        matrix::ArrayPtr(matrix::createCharRow(u"c")),
    };
    std::size_t next = 0;
    for (auto _ : state) {
        oxArray* args[] = {operands[next].get(), operands[next].get()};
        oxArray* result = nullptr;
        builtin.invoke(1, &result, 2, args, BuiltinFcn::NoLxe);
        benchmark::DoNotOptimize(result);
        matrix::destroyArray(result);
        next = next == 4 ? 0 : next + 1;
    }
}
BENCHMARK(BM_InvokeMixedCalls);

matrix::ArrayPtr rowOf(std::size_t n, double value) {
    const std::size_t dims[] = {1, n};
    matrix::ArrayPtr row(matrix::detail::do_create_uninitnumeric(dims, oxDOUBLE_CLASS, oxREAL));
    std::fill_n(matrix::getTypedData<double>(row.get()), n, value);
    return row;
}

// Two 1-by-8 rows through the sample library's plus, as an interpreter passes small
// arrays: the element-wise variant's loop over them into a new 1-by-8 array.
void BM_InvokeSmallArrays(benchmark::State& state) {
    const matrix::ArrayPtr a = rowOf(8, 1);
    const matrix::ArrayPtr b = rowOf(8, 2);
    invokeRepeatedly(state, samplelib::plusBuiltin(), a.get(), b.get());
}
BENCHMARK(BM_InvokeSmallArrays);

// Its raw twin: allocate a result of a header and eight doubles, add the rows into it.
void BM_RawSmallArrays(benchmark::State& state) {
    const matrix::ArrayPtr a = rowOf(8, 1);
    const matrix::ArrayPtr b = rowOf(8, 2);
    const double* x = matrix::getTypedData<double>(a.get());
    const double* y = matrix::getTypedData<double>(b.get());
    for (auto _ : state) {
        benchmark::DoNotOptimize(x);
        benchmark::DoNotOptimize(y);
        auto* result = static_cast<double*>(std::malloc(128 + 8 * sizeof(double)));
        benchmark::DoNotOptimize(result);
        for (std::size_t i = 0; i < 8; ++i) {
            result[16 + i] = x[i] + y[i];
        }
        benchmark::ClobberMemory();
        std::free(result);
    }
}
BENCHMARK(BM_RawSmallArrays);

} // namespace
