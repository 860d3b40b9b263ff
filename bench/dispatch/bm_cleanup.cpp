// Cleaning and partitioning a large variant list, against copying and sorting it, the
// least that any cleanup has to do; and the heap that 10 000 registered variants keep,
// against the same variants made once into one vector (the growth of the heap in use,
// mallinfo2's small blocks and mapped ones, across making the variants and what holds
// them, per variant: what copies share is counted once, as a host pays it).
#include <builtin/builtinreg/BuiltinVariantLists.hpp>
#include <builtin/builtinreg/MakeVariant.hpp>
#include <builtin/builtinreg/VariantListHelpers.hpp>

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <memory>

#include <random>
#include <set>

namespace {

using namespace Velloc::builtin;
namespace lxe = Velloc::lxe;
namespace types = Velloc::builtin::types;

Parameter neverCalled(const lxe::LxeFunctionDescriptor&, lxe::ILxeBuiltinEnvironment&, bool&, const Parameter*) {
    return {};
}

// Distinct input lists of one to four positions over a small alphabet of declarations,
// a quarter of them calling into the language.
std::vector<BuiltinVariant> manyVariants(std::size_t count) {
    const auto relaxed = [](types::OxArrayTypes type) {
        type.setSignatureTolerance(types::SignatureTolerance::RELAXED);
        return types::ArgType(type);
    };
    std::vector<types::ArgType> alphabet;
    for (oxClassID id : {oxDOUBLE_CLASS, oxSINGLE_CLASS, oxINT8_CLASS, oxINT32_CLASS, oxLOGICAL_CLASS}) {
        const types::ArgType scalar = types::NumericScalarTypes(id, types::NumericScalarTypes::Complexity::NOT_COMPLEX);
        alphabet.push_back(scalar);
        alphabet.push_back(types::asElementWiseArrayType(scalar));
    }
    alphabet.push_back(relaxed(types::OxArrayTypes::fullyOpen()));
    std::mt19937 random(7);
    std::set<std::vector<std::size_t>> seen;
    std::vector<BuiltinVariant> variants;
    variants.reserve(count);
    using B = BuiltinVariant;
    while (variants.size() < count) {
        std::vector<std::size_t> picks(1 + random() % 4);
        for (auto& pick : picks) {
            pick = random() % alphabet.size();
        }
        if (!seen.insert(picks).second) {
            continue;
        }
        std::vector<types::ArgType> inputs;
        inputs.reserve(picks.size());
        for (std::size_t pick : picks) {
            inputs.push_back(alphabet[pick]);
        }
        variants.emplace_back(nullptr, lxe::LxeFunctionDescriptor(&neverCalled, nullptr, lxe::Plain), std::move(inputs),
                              std::vector<types::ArgType>{alphabet.back()}, B::CallsIntoOrvex{random() % 4 == 0},
                              B::HasWarnings::NO, B::HasExceptions::NO, B::HasSideEffects::NO, "f", "f", "",
                              B::IsElementWise::NO);
    }
    return variants;
}

void BM_CleanupVariants(benchmark::State& state) {
    const std::vector<BuiltinVariant> variants = manyVariants(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        std::vector<BuiltinVariant> copy = variants;
        builtinreg::BuiltinVariantLists lists(std::move(copy));
        benchmark::DoNotOptimize(lists.all.data());
    }
}
BENCHMARK(BM_CleanupVariants)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

void BM_CopyAndSortVariants(benchmark::State& state) {
    const std::vector<BuiltinVariant> variants = manyVariants(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        std::vector<BuiltinVariant> copy = variants;
        builtinreg::detail::sortVariants(copy);
        benchmark::DoNotOptimize(copy.data());
    }
}
BENCHMARK(BM_CopyAndSortVariants)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

constexpr std::size_t HELD_VARIANTS = 10000;

std::size_t heapInUse() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

// Makes the variants and hands them to build once per iteration, and reports what the
// heap kept while build's result lived.
template <class Build>
void measureHeld(benchmark::State& state, const Build& build) {
    std::size_t held = 0;
    for (auto _ : state) {
        const std::size_t before = heapInUse();
        const auto kept = build(manyVariants(HELD_VARIANTS));
        held = heapInUse() - before;
        benchmark::DoNotOptimize(kept.get());
    }
    state.counters["bytesPerVariant"] = static_cast<double>(held) / HELD_VARIANTS;
}

void BM_RegisteredVariantsHeap(benchmark::State& state) {
    struct Registered {
        explicit Registered(std::vector<BuiltinVariant> variants)
            : lists(std::move(variants)), builtin("f", "bench", "", lists, builtinreg::noDefaultImplementation("f")) {}
        builtinreg::BuiltinVariantLists lists;
        builtinreg::RegisteredBuiltin builtin;
    };
    measureHeld(state, [](std::vector<BuiltinVariant> variants) {
        return std::make_unique<Registered>(std::move(variants));
    });
}
BENCHMARK(BM_RegisteredVariantsHeap)->Unit(benchmark::kMillisecond);

void BM_PlainVariantCopiesHeap(benchmark::State& state) {
    measureHeld(state, [](std::vector<BuiltinVariant> variants) {
        return std::make_unique<std::vector<BuiltinVariant>>(std::move(variants));
    });
}
BENCHMARK(BM_PlainVariantCopiesHeap)->Unit(benchmark::kMillisecond);


} // namespace
