// The element-wise loops run a baseline copy or an AVX2 copy of the same loop, whichever
// the processor can: both must give the same bits, including where a fused multiply-add
// or a reordered complex product would round differently.
#include <builtin/builtinreg/ForEachIndex.hpp>

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstring>
#include <limits>
#include <vector>

namespace {

using namespace Velloc::builtin::builtinreg::detail;

std::vector<double> awkwardValues() {
    std::vector<double> values = {0.1, -0.0, 1e308, -1e308, 4.9e-324, 2.2250738585072014e-308,
                                  std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()};
    for (int i = 0; i < 1000; ++i) {
        values.push_back(std::sin(i) * std::pow(10.0, i % 40 - 20));
    }
    return values;
}

template <class R, class Element>
void expectSameBits(const Element& element) {
#if defined(__x86_64__)
    if (!__builtin_cpu_supports("avx2")) {
        GTEST_SKIP() << "no AVX2 on this processor";
    }
    const std::vector<double> a = awkwardValues();
    std::vector<double> b(a.rbegin(), a.rend());
    std::vector<R> baseline(a.size());
    std::vector<R> wide(a.size());
    auto intoBaseline = [&](std::size_t i) { baseline[i] = element(a[i], b[i]); };
    auto intoWide = [&](std::size_t i) { wide[i] = element(a[i], b[i]); };
    forEachIndexBaseline(0, a.size(), intoBaseline);
    forEachIndexAvx2(0, a.size(), intoWide);
    EXPECT_EQ(std::memcmp(baseline.data(), wide.data(), a.size() * sizeof(R)), 0);
#else
    GTEST_SKIP() << "one copy only";
#endif
}

TEST(ForEachIndex, BaselineAndAvx2CopiesGiveTheSameBits) {
    expectSameBits<double>([](double x, double y) { return x * y + x; });
    expectSameBits<double>([](double x, double y) { return std::hypot(x, y); });
    expectSameBits<double>([](double x, double y) { return std::sqrt(std::abs(x)) / y; });
    expectSameBits<std::complex<double>>(
        [](double x, double y) { return std::complex<double>(x, y) * std::complex<double>(y, x); });
    expectSameBits<float>([](double x, double y) { return static_cast<float>(x) * static_cast<float>(y) + 1.0f; });
}

} // namespace
