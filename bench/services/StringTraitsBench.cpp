// Reading a 16-character char row vector into std::u16string through the string trait
// (shape checks, the temporaries list, one reference taken and dropped), against copying
// the 16 code units straight from the array's data.
#include <builtin/builtinreg/StringTraits.hpp>

#include <matrix/oxArray.hpp>

#include <benchmark/benchmark.h>

#include <string>

namespace {

using Velloc::builtin::types::Temporaries;
using Velloc::builtin::types::TypeTraitsImpl;

const std::u16string_view SIXTEEN = u"sixteen code uni";

void BM_StringFromCharRow(benchmark::State& state) {
    const matrix::ArrayPtr row(matrix::createCharRow(SIXTEEN));
    const TypeTraitsImpl<std::u16string> read;
    Temporaries temporaries;
    for (auto _ : state) {
        // The trait takes over one reference, as a caller's argument hands it one.
        std::u16string text = read(matrix::addReference(row.get()), temporaries);
        benchmark::DoNotOptimize(text.data());
        temporaries.clear();
    }
}
BENCHMARK(BM_StringFromCharRow);

void BM_RawStringFromCharRow(benchmark::State& state) {
    const matrix::ArrayPtr row(matrix::createCharRow(SIXTEEN));
    const char16_t* data = matrix::getTypedData<char16_t>(static_cast<const oxArray*>(row.get()));
    for (auto _ : state) {
        std::u16string text(data, SIXTEEN.size());
        benchmark::DoNotOptimize(text.data());
    }
}
BENCHMARK(BM_RawStringFromCharRow);

} // namespace
