// Threads calling one builtin with inputs of different classes and shapes at once, so that
// they fill and read its remembered choices concurrently: every call must give what the
// same call gave when run alone, on a builtin that had seen nothing before.
#include "RunTogether.hpp"

#include <builtin/builtinreg/MakeVariant.hpp>
#include <builtin/types/InputKey.hpp>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <latch>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace Velloc::builtin::builtinreg;
using Velloc::builtin::BuiltinFcn;

constexpr int THREADS = 4;
constexpr int ROUNDS = 400;
constexpr std::chrono::seconds BUDGET{3};

double plusDouble(double a, double b) { return a + b; }
float plusSingle(float a, float b) { return a + b; }
std::int32_t plusInt32(std::int32_t a, std::int32_t b) { return a + b; }
oxArray* fallback(const oxArray* a, const oxArray*) {
    return matrix::createScalar<double>(1000.0 * static_cast<int>(matrix::getClassID(a)) + double(matrix::getNumberOfElements(a)));
}

const BuiltinVariantLists& mixedLists() {
    static const BuiltinVariantLists lists{
        makeVariants<&plusDouble>("plus", {.isElementWise = true}),
        makeVariants<&plusSingle>("plus", {.isElementWise = true}),
        makeVariants<&plusInt32>("plus", {.isElementWise = true}),
        makeVariants<&fallback>("plus"),
    };
    return lists;
}

matrix::ArrayPtr doubles(std::vector<std::size_t> dims) {
    matrix::ArrayPtr array(matrix::detail::do_create_uninitnumeric(dims, oxDOUBLE_CLASS, oxREAL));
    double* data = matrix::getTypedData<double>(array.get());
    for (std::size_t i = 0; i < matrix::getNumberOfElements(array.get()); ++i) {
        data[i] = double(i) + 0.5;
    }
    return array;
}

// Class, dimensions and data bytes of the result.
std::string outcome(const BuiltinFcn& builtin, const oxArray* a, const oxArray* b) {
    oxArray* args[] = {const_cast<oxArray*>(a), const_cast<oxArray*>(b)};
    oxArray* result = nullptr;
    builtin.invoke(1, &result, 2, args, BuiltinFcn::NoLxe);
    const matrix::ArrayPtr owned(result);
    std::string text = std::to_string(matrix::getClassID(result)) + ":";
    for (const std::size_t extent : matrix::getDimensions(result)) {
        text += std::to_string(extent) + ",";
    }
    const std::size_t bytes = matrix::getNumberOfElements(result) * matrix::getElementSize(matrix::getClassID(result));
    text.append(static_cast<const char*>(matrix::getData(result)), bytes);
    return text;
}

TEST(ConcurrentDispatch, ThreadsCallingOneBuiltinWithDifferentClassesGetTheSerialResults) {
    std::vector<matrix::ArrayPtr> inputs;
    const auto keep = [&](oxArray* array) {
        inputs.emplace_back(array);
        return array;
    };
    const auto keepArray = [&](matrix::ArrayPtr array) {
        inputs.push_back(std::move(array));
        return inputs.back().get();
    };
    const std::vector<std::pair<const oxArray*, const oxArray*>> calls{
        {keep(matrix::createScalar<double>(1.5)), keep(matrix::createScalar<double>(2))},
        {keep(matrix::createScalar<float>(3)), keep(matrix::createScalar<float>(0.25))},
        {keep(matrix::createScalar<std::int32_t>(7)), keep(matrix::createScalar<std::int32_t>(-9))},
        {keep(matrix::createScalar<std::uint8_t>(7)), keep(matrix::createScalar<std::uint8_t>(9))},
        {keep(matrix::createCharRow(u"ab")), keep(matrix::createCharRow(u"cd"))},
        {keepArray(doubles({1, 3})), keepArray(doubles({1, 3}))},
        {keepArray(doubles({1, 3})), keepArray(doubles({3, 1}))},
        {keepArray(doubles({1, 3})), keepArray(doubles({1, 2}))},
        {keep(matrix::createScalar<double>(4)), keepArray(doubles({2, 2, 0}))},
        {keep(matrix::createScalar<double>(4)), keepArray(doubles({0, 2}))},
    };
    std::vector<std::string> expected;
    {
        const RegisteredBuiltin serial("plus", "stress", "", mixedLists(), noDefaultImplementation("plus"));
        for (const auto& [a, b] : calls) {
            expected.push_back(outcome(serial, a, b));
        }
    }
    // The threads start on a builtin that has seen no call yet.
    const RegisteredBuiltin shared("plus", "stress", "", mixedLists(), noDefaultImplementation("plus"));

    std::atomic<int> wrongResults{0};
    std::atomic<long> callsMade{0};
    stress::runTogether(THREADS, ROUNDS, BUDGET, [&](int t) {
        for (std::size_t i = 0; i < calls.size(); ++i) {
            const std::size_t k = (i + static_cast<std::size_t>(t) * 3) % calls.size();
            if (outcome(shared, calls[k].first, calls[k].second) != expected[k]) {
                ++wrongResults;
            }
            ++callsMade;
        }
    });
    EXPECT_EQ(wrongResults.load(), 0);
    EXPECT_GE(callsMade.load(), long{THREADS} * static_cast<long>(calls.size()));
    for (const matrix::ArrayPtr& array : inputs) {
        EXPECT_EQ(matrix::getReferenceCount(array.get()), 1U) << "a call kept or lost a reference";
    }
}

} // namespace

namespace {

// The key of an array of these dimensions made in the ordinary way.
std::uint32_t keyOfPlain(std::vector<std::size_t> dims) {
    const matrix::ArrayPtr plain(matrix::detail::do_create_uninitnumeric(dims, oxDOUBLE_CLASS, oxREAL));
    return Velloc::builtin::types::InputKey::of(plain.get()).bits();
}

} // namespace

// One thread classifies an input whose dimensions are still opaque while another thread
// completes them: classification reads the dimension fields only once it has seen the
// opaque flag clear (the completion clears it after writing them), so whichever comes first
// the key is the completed array's, and ThreadSanitizer sees no race.
TEST(ConcurrentDispatch, ClassifyingAnArrayWhileAnotherThreadCompletesItsDimensions) {
    for (const std::vector<std::size_t>& dims : {std::vector<std::size_t>{2, 3}, std::vector<std::size_t>{2, 3, 4}}) {
        const std::uint32_t expected = keyOfPlain(dims);
        for (int round = 0; round < 100; ++round) {
            const matrix::ArrayPtr array(matrix::createWithOpaqueDimensions(dims, oxDOUBLE_CLASS, oxREAL));
            std::latch start(2);
            std::uint32_t seen = 0;
            std::thread classifier([&] {
                start.arrive_and_wait();
                seen = Velloc::builtin::types::InputKey::of(array.get()).bits();
            });
            std::thread completer([&] {
                start.arrive_and_wait();
                matrix::completeDimensions(array.get());
            });
            classifier.join();
            completer.join();
            EXPECT_EQ(seen, expected) << "round " << round;
        }
    }
}
