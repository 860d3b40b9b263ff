#include "RecordingEnvironment.hpp"

#include <builtin/builtinreg/MflBinaryDrivers.hpp>
#include <builtin/builtinreg/ParallelEnvironment.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <complex>
#include <cstddef>
#include <functional>
#include <limits>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <vector>

namespace {

using namespace Velloc::builtin::builtinreg::detail;
using Velloc::lxe::ILxeBuiltinEnvironment;
using Velloc::lxe::LxeFunctionDescriptor;
using Shape = std::vector<std::size_t>;

constexpr std::size_t SERIAL = std::numeric_limits<std::size_t>::max();
constexpr std::size_t ALWAYS_PARALLEL = 0;
constexpr std::size_t DEFAULT_THRESHOLD = 1024;

// Not symmetric, so that exchanging A and B shows.
double weighted(double a, double b) { return 100 * a + b; }

const LxeFunctionDescriptor* expectedCallee = nullptr;
double weightedWithCallee(double a, double b, const LxeFunctionDescriptor* callee) {
    return callee == expectedCallee ? weighted(a, b) : -1;
}

// Reports the elements where a < b, after setting the result.
bool lessReports(double a, double b, double* result, ILxeBuiltinEnvironment* environment,
                 const LxeFunctionDescriptor*) {
    *result = weighted(a, b);
    if (a < b) {
        environment->AddWarningMessage(u"a < b");
        return true;
    }
    return false;
}

std::atomic<int> calls{0};
double counted(double a, double b) {
    ++calls;
    return a + b;
}

double throwing(double, double) { throw std::runtime_error("element failed"); }

template <class F>
LxeFunctionDescriptor descriptorOf(F* function, Velloc::lxe::JIT_CALLING_CONVENTION convention = Velloc::lxe::Plain) {
    return LxeFunctionDescriptor(nullptr, nullptr, convention, reinterpret_cast<void*>(function));
}

std::size_t countOf(const Shape& shape) {
    return std::accumulate(shape.begin(), shape.end(), std::size_t{1}, std::multiplies<>());
}

Shape broadcastShape(const Shape& a, const Shape& b) {
    Shape out(std::max(a.size(), b.size()), 1);
    for (std::size_t d = 0; d < out.size(); ++d) {
        const std::size_t ea = d < a.size() ? a[d] : 1;
        out[d] = ea == 1 && d < b.size() ? b[d] : ea;
    }
    return out;
}

// Element by element from the output's coordinates: the definition the loops must meet.
std::vector<double> referenceBroadcast(const Shape& sa, const std::vector<double>& a, const Shape& sb,
                                       const std::vector<double>& b) {
    const Shape so = broadcastShape(sa, sb);
    std::vector<double> out(countOf(so));
    for (std::size_t k = 0; k < out.size(); ++k) {
        std::size_t rest = k, offA = 0, offB = 0, strideA = 1, strideB = 1;
        for (std::size_t d = 0; d < so.size(); ++d) {
            const std::size_t c = rest % so[d];
            rest /= so[d];
            const std::size_t ea = d < sa.size() ? sa[d] : 1;
            const std::size_t eb = d < sb.size() ? sb[d] : 1;
            offA += (ea == 1 ? 0 : c) * strideA;
            offB += (eb == 1 ? 0 : c) * strideB;
            strideA *= ea;
            strideB *= eb;
        }
        out[k] = weighted(a[offA], b[offB]);
    }
    return out;
}

std::vector<double> iota(std::size_t n, double first) {
    std::vector<double> values(n);
    std::iota(values.begin(), values.end(), first);
    return values;
}

struct LoopRun {
    std::vector<double> out;
    bool raised = false;
};

LoopRun runDriver(const Shape& sa, const std::vector<double>& a, const Shape& sb, const std::vector<double>& b,
              const LxeFunctionDescriptor& descriptor, std::size_t threshold,
              ILxeBuiltinEnvironment* environment = nullptr) {
    const Shape so = broadcastShape(sa, sb);
    LoopRun run;
    run.out.assign(countOf(so), -7);
    const MflFunctor<double, double, double> functor{threshold, environment, &descriptor, &run.raised};
    binaryDriver<double>()(a.data(), b.data(), run.out.data(), a.size(), sa.size(), sa.data(), b.size(), sb.size(),
                           sb.data(), run.out.size(), so.size(), so.data(), functor);
    return run;
}

TEST(MflBinaryLoops, broadcastsEveryPairOfShapesSeriallyAndInParallel) {
    const LxeFunctionDescriptor descriptor = descriptorOf(&weighted);
    // Every combination of singleton and full extents over 2x3x4, with A also in two dims.
    const Shape full{2, 3, 4};
    std::vector<Shape> shapes;
    for (unsigned mask = 0; mask < 8; ++mask) {
        Shape shape(3);
        for (std::size_t d = 0; d < 3; ++d) {
            shape[d] = (mask >> d & 1) != 0 ? full[d] : 1;
        }
        shapes.push_back(shape);
    }
    for (const Shape& sa : shapes) {
        for (const Shape& sb : shapes) {
            const Shape sa2 = sa[2] == 1 ? Shape{sa[0], sa[1]} : sa;
            const std::vector<double> a = iota(countOf(sa2), 1);
            const std::vector<double> b = iota(countOf(sb), 0.5);
            const std::vector<double> expected = referenceBroadcast(sa2, a, sb, b);
            for (std::size_t threshold : {SERIAL, ALWAYS_PARALLEL}) {
                EXPECT_EQ(runDriver(sa2, a, sb, b, descriptor, threshold).out, expected)
                    << "A " << ::testing::PrintToString(sa2) << " B " << ::testing::PrintToString(sb)
                    << " threshold " << threshold;
            }
        }
    }
}

TEST(MflBinaryLoops, broadcastsEachInnerBlockPattern) {
    const LxeFunctionDescriptor descriptor = descriptorOf(&weighted);
    const std::vector<double> a3x4 = iota(12, 1);
    const std::vector<double> b3x1{10, 20, 30};
    // Both vary along the first dimension; B's block repeats along the second.
    EXPECT_EQ(runDriver({3, 4}, a3x4, {3, 1}, b3x1, descriptor, SERIAL).out,
              (std::vector<double>{110, 220, 330, 410, 520, 630, 710, 820, 930, 1010, 1120, 1230}));
    // Only B varies along the first dimension.
    EXPECT_EQ(runDriver({1, 4}, {1, 2, 3, 4}, {3, 1}, b3x1, descriptor, SERIAL).out,
              (std::vector<double>{110, 120, 130, 210, 220, 230, 310, 320, 330, 410, 420, 430}));
    // Only A varies along the first dimension.
    EXPECT_EQ(runDriver({3, 1}, {1, 2, 3}, {1, 4}, {1, 2, 3, 4}, descriptor, SERIAL).out,
              (std::vector<double>{101, 201, 301, 102, 202, 302, 103, 203, 303, 104, 204, 304}));
}

TEST(MflBinaryLoops, emptyInputsCallNothing) {
    const LxeFunctionDescriptor descriptor = descriptorOf(&counted);
    calls = 0;
    EXPECT_TRUE(runDriver({0, 0}, {}, {0, 0}, {}, descriptor, ALWAYS_PARALLEL).out.empty());
    EXPECT_TRUE(runDriver({0, 1}, {}, {1, 4}, {1, 2, 3, 4}, descriptor, ALWAYS_PARALLEL).out.empty());
    EXPECT_TRUE(runDriver({1, 1}, {1}, {0, 3}, {}, descriptor, SERIAL).out.empty());
    EXPECT_EQ(calls, 0);
}

TEST(MflBinaryLoops, callsByTheDescriptorsConvention) {
    const std::vector<double> a{1, 5, 3};
    const std::vector<double> b{2, 2, 2};
    const LxeFunctionDescriptor withCallee = descriptorOf(&weightedWithCallee, Velloc::lxe::WithCallee);
    expectedCallee = &withCallee;
    EXPECT_EQ(runDriver({3, 1}, a, {3, 1}, b, withCallee, SERIAL).out, (std::vector<double>{102, 502, 302}));

    // The element calls raise through the environment they are given.
    const LxeFunctionDescriptor canThrow = descriptorOf(&lessReports, Velloc::lxe::CanThrow);
    elementwise_test::RecordingEnvironment parent;
    LoopRun run = runDriver({3, 1}, a, {3, 1}, b, canThrow, SERIAL, &parent);
    EXPECT_EQ(run.out, (std::vector<double>{102, 502, 302}));
    EXPECT_TRUE(run.raised);
    EXPECT_THAT(parent.events, ::testing::ElementsAre(u"a < b"));
    EXPECT_FALSE(runDriver({3, 1}, a, {1, 1}, {0}, canThrow, SERIAL, &parent).raised);

    // Conventions the loops do not call, and a missing function, leave zeros.
    for (const LxeFunctionDescriptor& unusable :
         {descriptorOf(&weighted, Velloc::lxe::CanThrowLxeInternal), LxeFunctionDescriptor()}) {
        EXPECT_EQ(runDriver({3, 1}, a, {3, 1}, b, unusable, SERIAL).out, (std::vector<double>{0, 0, 0}));
    }
}

TEST(MflBinaryLoops, oneElementFunctor) {
    const LxeFunctionDescriptor canThrow = descriptorOf(&lessReports, Velloc::lxe::CanThrow);
    elementwise_test::RecordingEnvironment parent;
    bool raised = false;
    const MflFunctor<double, double, double> functor{SERIAL, &parent, &canThrow, &raised};
    EXPECT_EQ(functor(3, 2), 302);
    EXPECT_FALSE(raised);
    EXPECT_EQ(functor(1, 2), 102);
    EXPECT_TRUE(raised);
}

TEST(MflBinaryLoops, parallelRunsMatchSerialRunsOnLargeInputs) {
    const LxeFunctionDescriptor descriptor = descriptorOf(&weighted);
    const struct {
        Shape sa, sb;
    } cases[] = {{{300000, 1}, {300000, 1}}, {{700, 1}, {700, 700}}, {{1, 900}, {800, 1}}, {{1, 1}, {200000, 1}},
                 {{3, 70000}, {3, 1}}};
    for (const auto& [sa, sb] : cases) {
        const std::vector<double> a = iota(countOf(sa), 0.25);
        const std::vector<double> b = iota(countOf(sb), -3);
        const LoopRun serial = runDriver(sa, a, sb, b, descriptor, SERIAL);
        EXPECT_EQ(runDriver(sa, a, sb, b, descriptor, DEFAULT_THRESHOLD).out, serial.out);
        EXPECT_EQ(serial.out, referenceBroadcast(sa, a, sb, b));
    }
}

TEST(MflBinaryLoops, oneReportingElementOfManyRaisesTheFlagInParallel) {
    const LxeFunctionDescriptor canThrow = descriptorOf(&lessReports, Velloc::lxe::CanThrow);
    std::vector<double> a(1 << 18, 5);
    a[123457] = -1;
    elementwise_test::RecordingEnvironment parent;
    bool raised = false;
    {
        ParallelEnvironment environment(&parent, &raised);
        EXPECT_TRUE(runDriver({a.size(), 1}, a, {1, 1}, {0}, canThrow, DEFAULT_THRESHOLD, &environment).raised);
    }
    EXPECT_TRUE(raised);
    EXPECT_THAT(parent.events, ::testing::ElementsAre(u"a < b"));
}

TEST(MflBinaryLoopsDeathTest, anExceptionEscapingAnElementEndsTheProcess) {
    const LxeFunctionDescriptor descriptor = descriptorOf(&throwing);
    const std::vector<double> a(5000, 1);
    EXPECT_DEATH(runDriver({5000, 1}, a, {5000, 1}, a, descriptor, SERIAL), "");
    EXPECT_DEATH(runDriver({5000, 1}, a, {1, 1}, {1}, descriptor, ALWAYS_PARALLEL), "");
}

// Every element type has its driver in the library.
template <class T>
T add(T a, T b) {
    return static_cast<T>(a + b);
}

template <class T>
class EveryElementType : public ::testing::Test {};

template <class List>
struct GTestTypes;
template <class... T>
struct GTestTypes<TypeList<T...>> {
    using type = ::testing::Types<T...>;
};
TYPED_TEST_SUITE(EveryElementType, GTestTypes<ElementTypes>::type);

TYPED_TEST(EveryElementType, broadcastsThroughTheLibrarysDriver) {
    using T = TypeParam;
    const LxeFunctionDescriptor descriptor = descriptorOf(&add<T>);
    const T a[2] = {T(1), T(0)};
    const T b[2] = {T(2), T(1)};
    const Shape sa{2, 1};
    const Shape sb{1, 2};
    const Shape so{2, 2};
    std::unique_ptr<T[]> out(new T[4]());
    bool raised = false;
    binaryDriver<T>()(a, b, out.get(), 2, 2, sa.data(), 2, 2, sb.data(), 4, 2, so.data(),
                      MflFunctor<T, T, T>{SERIAL, nullptr, &descriptor, &raised});
    EXPECT_EQ(out[0], add(a[0], b[0]));
    EXPECT_EQ(out[1], add(a[1], b[0]));
    EXPECT_EQ(out[2], add(a[0], b[1]));
    EXPECT_EQ(out[3], add(a[1], b[1]));
    EXPECT_FALSE(raised);
}

} // namespace
