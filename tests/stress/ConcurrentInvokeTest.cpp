// Several threads calling the same builtins at once: a scalar element-wise one, a boxed
// one, an element-wise one on arrays large enough to run its parallel loops, and one that
// warns. Every call must give what the same call gave when run alone, warnings included,
// and must hand back the references it took on the shared inputs.
#include "RunTogether.hpp"

#include <builtin/builtinreg/MakeVariant.hpp>

#include <fl/i18n.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace {

using namespace Velloc::builtin::builtinreg;
using Velloc::builtin::BuiltinFcn;

constexpr int THREADS = 4;
constexpr int ROUNDS = 40;
constexpr std::chrono::seconds BUDGET{3};
// Above the element count from which invoke's element-wise loops run in parallel.
constexpr std::size_t LARGE = 40000;
static_assert(LARGE > detail::INVOKE_PARALLEL_THRESHOLD);

double plusOf(double a, double b) { return a + b; }

double binomial(double n, double k) {
    double result = 1;
    for (double i = 1; i <= k; ++i) {
        result = result * (n - k + i) / i;
    }
    return result;
}

double negatedWarnsBelowZero(CallContext& context, double x) {
    if (x < 0) {
        context.warning("below zero: " + std::to_string(static_cast<int>(x)));
    }
    return -x;
}

const BuiltinFcn& plusBuiltin() {
    static const BuiltinVariantLists lists{makeVariants<&plusOf>("plus", {.isElementWise = true})};
    static const RegisteredBuiltin builtin("plus", "stress", "", lists, noDefaultImplementation("plus"));
    return builtin;
}

// Not element-wise: invoke reaches it through its boxed copy, which unboxes 1x1 arrays.
const BuiltinFcn& binomialBuiltin() {
    static const BuiltinVariantLists lists{makeVariants<&binomial>("binomial")};
    static const RegisteredBuiltin builtin("binomial", "stress", "", lists, noDefaultImplementation("binomial"));
    return builtin;
}

const BuiltinFcn& negateBuiltin() {
    static const BuiltinVariantLists lists{makeVariants<&negatedWarnsBelowZero>("negate", {.isElementWise = true})};
    static const RegisteredBuiltin builtin("negate", "stress", "", lists, noDefaultImplementation("negate"));
    return builtin;
}

// Warnings are replayed on the thread that called invoke, so each thread collects its own;
// one that arrives on another thread is counted as stray.
thread_local std::vector<std::string>* threadWarnings = nullptr;
std::atomic<int> strayWarnings{0};

class PerThreadWarnings {
public:
    PerThreadWarnings()
        : previous_(matrix::setWarningHandler([](const fl::ustring& message) {
              if (threadWarnings != nullptr) {
                  threadWarnings->push_back(fl::i18n::ustring_to_utf8(message));
              } else {
                  ++strayWarnings;
              }
          })) {}
    ~PerThreadWarnings() { matrix::setWarningHandler(previous_); }
    PerThreadWarnings(const PerThreadWarnings&) = delete;
    PerThreadWarnings& operator=(const PerThreadWarnings&) = delete;

private:
    matrix::WarningHandler previous_;
};

matrix::ArrayPtr doubles(std::size_t rows, std::size_t columns, const std::function<double(std::size_t)>& value) {
    const std::size_t dims[2] = {rows, columns};
    matrix::ArrayPtr array(matrix::detail::do_create_uninitnumeric(dims, oxDOUBLE_CLASS, oxREAL));
    double* data = matrix::getTypedData<double>(array.get());
    for (std::size_t i = 0; i < rows * columns; ++i) {
        data[i] = value(i);
    }
    return array;
}

struct Outcome {
    std::vector<std::size_t> dims;
    std::vector<double> values;
    // Sorted: warnings raised on worker threads arrive in no fixed order.
    std::vector<std::string> warnings;

    friend bool operator==(const Outcome&, const Outcome&) = default;
};

struct Call {
    const BuiltinFcn* builtin;
    std::vector<oxArray*> args;

    Outcome run() const {
        std::vector<std::string> warnings;
        threadWarnings = &warnings;
        oxArray* result = nullptr;
        std::vector<oxArray*> prhs = args;
        builtin->invoke(1, &result, static_cast<int>(prhs.size()), prhs.data(), BuiltinFcn::NoLxe);
        threadWarnings = nullptr;
        const matrix::ArrayPtr owned(result);
        const matrix::Dims dims = matrix::getDimensions(result);
        const double* data = matrix::getTypedData<double>(result);
        std::sort(warnings.begin(), warnings.end());
        return {{dims.begin(), dims.end()}, {data, data + matrix::getNumberOfElements(result)}, std::move(warnings)};
    }
};

TEST(ConcurrentInvoke, EveryThreadGetsTheSerialResultsAndWarnings) {
    PerThreadWarnings handler;
    std::vector<matrix::ArrayPtr> inputs;
    const auto input = [&](matrix::ArrayPtr array) {
        inputs.push_back(std::move(array));
        return inputs.back().get();
    };
    const auto scalar = [&](double x) { return input(doubles(1, 1, [x](std::size_t) { return x; })); };
    oxArray* column = input(doubles(LARGE, 1, [](std::size_t i) { return double(i % 101); }));
    oxArray* row = input(doubles(1, LARGE, [](std::size_t i) { return 0.5 * double(i % 7); }));
    oxArray* someNegative = input(doubles(LARGE, 1, [](std::size_t i) { return i % 1250 == 3 ? -double(i) : 1.0; }));

    const std::vector<Call> calls{
        {&plusBuiltin(), {scalar(2), scalar(3)}},
        {&plusBuiltin(), {scalar(-1.5), scalar(0.25)}},
        {&binomialBuiltin(), {scalar(10), scalar(3)}},
        {&binomialBuiltin(), {scalar(40), scalar(20)}},
        {&plusBuiltin(), {column, column}},
        {&plusBuiltin(), {column, scalar(1)}},
        {&plusBuiltin(), {column, input(doubles(LARGE, 1, [](std::size_t i) { return double(i); }))}},
        {&plusBuiltin(), {input(doubles(8, 1, [](std::size_t i) { return double(i); })), row}},
        {&negateBuiltin(), {someNegative}},
        {&negateBuiltin(), {scalar(-4)}},
        {&negateBuiltin(), {scalar(4)}},
    };
    std::vector<Outcome> expected;
    for (const Call& call : calls) {
        expected.push_back(call.run());
    }
    ASSERT_EQ(expected[8].warnings.size(), LARGE / 1250);
    ASSERT_EQ(expected[7].dims, (std::vector<std::size_t>{8, LARGE}));

    std::atomic<int> wrongResults{0};
    std::atomic<long> callsMade{0};
    const auto began = std::chrono::steady_clock::now();
    stress::runTogether(THREADS, ROUNDS, BUDGET, [&](int t) {
        // Each thread walks the calls from its own starting point, so that different
        // builtins and the same builtin both overlap.
        for (std::size_t i = 0; i < calls.size(); ++i) {
            const std::size_t k = (i + static_cast<std::size_t>(t) * 3) % calls.size();
            if (!(calls[k].run() == expected[k])) {
                ++wrongResults;
            }
            ++callsMade;
        }
    });
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
    std::printf("[ stress   ] %d threads, %ld calls in %.2f s\n", THREADS, callsMade.load(), seconds);

    EXPECT_EQ(wrongResults.load(), 0);
    EXPECT_EQ(strayWarnings.load(), 0);
    EXPECT_GE(callsMade.load(), long{THREADS} * static_cast<long>(calls.size()));
    for (const matrix::ArrayPtr& array : inputs) {
        EXPECT_EQ(matrix::getReferenceCount(array.get()), 1U) << "a call kept or lost a reference";
    }
}

} // namespace
