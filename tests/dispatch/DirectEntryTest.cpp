// A plain developer function over scalars and host arrays is called straight from the
// host arrays of a call; what it and its caller see must be what the generic entry gives
// them: the inputs' references and marks, the result, an escaping exception.
#include <builtin/builtinreg/MakeVariant.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using namespace Velloc::builtin;
using namespace Velloc::builtin::builtinreg;

// What a callee saw of its host-array input while it ran.
struct Seen {
    std::uint32_t references = 0;
    bool temporary = true;
};
Seen seen;

double scaleFirst(double factor, const oxArray* a) {
    seen = {matrix::getReferenceCount(a), matrix::isTemporary(a)};
    if (factor < 0) {
        throw std::domain_error("negative factor");
    }
    return factor * *matrix::getTypedData<double>(a);
}
std::int16_t negate(std::int16_t x) { return static_cast<std::int16_t>(-x); }
std::complex<float> swapParts(std::complex<float> z) { return {z.imag(), z.real()}; }

struct Builtin {
    explicit Builtin(std::vector<BuiltinVariant> variants)
        : lists(std::move(variants)), builtin("f", "test", "", lists, noDefaultImplementation("f")) {}
    BuiltinVariantLists lists;
    RegisteredBuiltin builtin;
};

matrix::ArrayPtr call(const BuiltinFcn& builtin, std::vector<oxArray*> inputs) {
    oxArray* result = nullptr;
    builtin.invoke(1, &result, static_cast<int>(inputs.size()), inputs.data(), BuiltinFcn::NoLxe);
    return matrix::ArrayPtr(result);
}

bool everyVariantHasADirectEntry(const BuiltinFcn& builtin) {
    const auto list = builtin.getSearchedByInvokeNoLxe();
    return !list.empty() && std::all_of(list.begin(), list.end(),
                                        [](const BuiltinVariant& v) { return v.directEntry != nullptr; });
}

TEST(DirectEntry, HostArrayInputsAreHeldAndNoLongerTemporaryWhileTheFunctionRuns) {
    const Builtin f(makeVariants<&scaleFirst>("f"));
    ASSERT_TRUE(everyVariantHasADirectEntry(f.builtin));
    const matrix::ArrayPtr factor(matrix::createScalar(2.0));
    const matrix::ArrayPtr input(matrix::createScalar(1.5));
    matrix::setTemporary(input.get(), true);
    // Twice: the first call searches, the second is served by the dispatch cache.
    for (int i = 0; i < 2; ++i) {
        const matrix::ArrayPtr result = call(f.builtin, {factor.get(), input.get()});
        EXPECT_EQ(*matrix::getTypedData<double>(result.get()), 3.0);
        EXPECT_EQ(seen.references, 2u);
        EXPECT_FALSE(seen.temporary);
        EXPECT_EQ(matrix::getReferenceCount(input.get()), 1u);
    }

    const matrix::ArrayPtr negative(matrix::createScalar(-1.0));
    EXPECT_THROW(call(f.builtin, {negative.get(), input.get()}), std::domain_error);
    EXPECT_EQ(matrix::getReferenceCount(input.get()), 1u) << "the reference is given back when the callee throws";
}

// A callee may keep an input by taking a reference of its own, whichever thread made it.
oxArray* kept = nullptr;
double keepSecond(double factor, oxArray* a) {
    kept = matrix::addReference(a);
    return scaleFirst(factor, a);
}

TEST(DirectEntry, HoldsAndKeptReferencesCountAlikeOnArraysMadeOnAnyThread) {
    const Builtin direct(makeVariants<&keepSecond>("f"));
    const Builtin generic(makeVariants<&keepSecond>("f", {.mayRaiseWarnings = true}));
    ASSERT_TRUE(everyVariantHasADirectEntry(direct.builtin));
    ASSERT_EQ(generic.builtin.getSearchedByInvokeNoLxe().front().directEntry, nullptr);
    const matrix::ArrayPtr factor(matrix::createScalar(2.0));
    for (const bool madeHere : {true, false}) {
        for (const BuiltinFcn* builtin : {&direct.builtin, &generic.builtin}) {
            oxArray* input = nullptr;
            if (madeHere) {
                input = matrix::createScalar(1.5);
            } else {
                std::thread([&] { input = matrix::createScalar(1.5); }).join();
            }
            EXPECT_EQ(*matrix::getTypedData<double>(call(*builtin, {factor.get(), input}).get()), 3.0);
            EXPECT_EQ(seen.references, 3u) << "the caller's, the call's and the kept one";
            EXPECT_EQ(matrix::getReferenceCount(input), 2u);
            matrix::destroyArray(input);
            EXPECT_EQ(matrix::getReferenceCount(kept), 1u);
            EXPECT_EQ(*matrix::getTypedData<double>(kept), 1.5);
            matrix::destroyArray(kept);
        }
    }
}

TEST(DirectEntry, ScalarsOfTheirOwnClassAreReadOthersTakeTheGenericEntry) {
    const Builtin negation(makeVariants<&negate>("f", {.isElementWise = true}));
    ASSERT_TRUE(everyVariantHasADirectEntry(negation.builtin));
    const matrix::ArrayPtr small(matrix::createScalar<std::int16_t>(7));
    const matrix::ArrayPtr result = call(negation.builtin, {small.get()});
    EXPECT_EQ(matrix::getClassID(result.get()), oxINT16_CLASS);
    EXPECT_EQ(*matrix::getTypedData<std::int16_t>(result.get()), -7);
    const std::size_t dims[] = {1, 2};
    const matrix::ArrayPtr pair(matrix::detail::do_create_uninitnumeric(dims, oxINT16_CLASS, oxREAL));
    std::fill_n(matrix::getTypedData<std::int16_t>(pair.get()), 2, std::int16_t{3});
    const matrix::ArrayPtr looped = call(negation.builtin, {pair.get()});
    EXPECT_EQ(matrix::getNumberOfElements(looped.get()), 2u);
    EXPECT_EQ(matrix::getTypedData<std::int16_t>(looped.get())[1], -3);

    const Builtin swapping(makeVariants<&swapParts>("f", {.isElementWise = true}));
    const matrix::ArrayPtr z(matrix::createScalar(std::complex<float>(1, 2)));
    const matrix::ArrayPtr swapped = call(swapping.builtin, {z.get()});
    EXPECT_TRUE(matrix::isComplex(swapped.get()));
    EXPECT_EQ(*matrix::getTypedData<std::complex<float>>(swapped.get()), std::complex<float>(2, 1));
}

TEST(DirectEntry, TheBoxedCopyClearsTheMarkOfTheArrayItUnboxes) {
    const Builtin boxed(makeVariants<&negate>("f"));
    ASSERT_TRUE(everyVariantHasADirectEntry(boxed.builtin));
    const matrix::ArrayPtr small(matrix::createScalar<std::int16_t>(7));
    matrix::setTemporary(small.get(), true);
    EXPECT_EQ(*matrix::getTypedData<std::int16_t>(call(boxed.builtin, {small.get()}).get()), -7);
    EXPECT_FALSE(matrix::isTemporary(small.get()));
    const std::size_t dims[] = {1, 2};
    const matrix::ArrayPtr pair(matrix::detail::do_create_uninitnumeric(dims, oxINT16_CLASS, oxREAL));
    EXPECT_THROW(call(boxed.builtin, {pair.get()}), NotScalarError);
}

double weightedSum(double a, double b) { return 2 * a + b; }
bool isBelow(double a, double b) { return a < b; }
double failsOnNegative(double a, double b) {
    if (a < 0) {
        throw std::domain_error("negative element");
    }
    return a * b;
}

matrix::ArrayPtr counting(std::vector<std::size_t> dims, double start) {
    matrix::ArrayPtr array(matrix::detail::do_create_uninitnumeric(dims, oxDOUBLE_CLASS, oxREAL));
    double* data = matrix::getTypedData<double>(array.get());
    for (std::size_t i = 0; i < matrix::getNumberOfElements(array.get()); ++i) {
        data[i] = start + static_cast<double>(i);
    }
    return array;
}

// Class, dimensions and elements, to compare a result with another bit for bit.
template <class T>
std::vector<double> contents(const oxArray* array) {
    std::vector<double> text{static_cast<double>(matrix::getClassID(array))};
    for (const std::size_t extent : matrix::getDimensions(array)) {
        text.push_back(static_cast<double>(extent));
    }
    const T* data = matrix::getTypedData<T>(array);
    text.insert(text.end(), data, data + matrix::getNumberOfElements(array));
    return text;
}

// The element-wise variant's loop over arrays gives what the generic entry's broadcasting
// gives (the same function declared as warning has no direct entry), for every pairing
// of shapes, including those the loop leaves to the generic entry: arrays that broadcast
// along different dimensions and arrays too large for one thread.
TEST(DirectEntry, ElementWiseLoopsOverArraysGiveWhatTheGenericEntryGives) {
    const Builtin direct(makeVariants<&weightedSum>("f", {.isElementWise = true}));
    const Builtin generic(makeVariants<&weightedSum>("f", {.mayRaiseWarnings = true, .isElementWise = true}));
    const Builtin directBelow(makeVariants<&isBelow>("f", {.isElementWise = true}));
    const Builtin genericBelow(makeVariants<&isBelow>("f", {.mayRaiseWarnings = true, .isElementWise = true}));
    ASSERT_TRUE(everyVariantHasADirectEntry(direct.builtin));
    ASSERT_NE(direct.builtin.getSearchedByInvokeNoLxe().front().directEntry->callElementWise, nullptr);
    ASSERT_EQ(generic.builtin.getSearchedByInvokeNoLxe().front().directEntry, nullptr);
    const std::size_t large = DirectEntry::MAX_ELEMENT_WISE + 1;
    const std::vector<std::pair<std::vector<std::size_t>, std::vector<std::size_t>>> shapes{
        {{1, 8}, {1, 8}}, {{1, 1}, {2, 3}}, {{2, 3}, {1, 1}}, {{3, 1}, {3, 1}}, {{2, 2, 2}, {2, 2, 2}},
        {{1, 3}, {3, 1}}, {{1, 1}, {1, large}}, {{large, 1}, {large, 1}},
    };
    for (const auto& [first, second] : shapes) {
        const matrix::ArrayPtr a = counting(first, 1);
        const matrix::ArrayPtr b = counting(second, 3);
        matrix::setTemporary(a.get(), true);
        matrix::setTemporary(b.get(), true);
        const std::string label = ::testing::PrintToString(first) + " with " + ::testing::PrintToString(second);
        SCOPED_TRACE(label);
        // Twice: the first call searches, the second is served by the dispatch cache.
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(contents<double>(call(direct.builtin, {a.get(), b.get()}).get()),
                      contents<double>(call(generic.builtin, {a.get(), b.get()}).get()))
                << label;
            EXPECT_EQ(contents<bool>(call(directBelow.builtin, {b.get(), a.get()}).get()),
                      contents<bool>(call(genericBelow.builtin, {b.get(), a.get()}).get()))
                << label;
        }
        // Arrays are passed, and so no longer temporaries; 1-by-1 inputs are read as values.
        EXPECT_EQ(matrix::isTemporary(a.get()), matrix::getNumberOfElements(a.get()) == 1) << label;
        EXPECT_EQ(matrix::getReferenceCount(a.get()), 1u) << label;
        EXPECT_EQ(matrix::getReferenceCount(b.get()), 1u) << label;
    }
}

TEST(DirectEntry, AnExceptionFromAnElementEndsTheLoopAndReleasesEverything) {
    const Builtin f(makeVariants<&failsOnNegative>("f", {.isElementWise = true}));
    ASSERT_NE(f.builtin.getSearchedByInvokeNoLxe().front().directEntry->callElementWise, nullptr);
    const matrix::ArrayPtr a = counting({1, 8}, -4);
    const matrix::ArrayPtr b = counting({1, 8}, 0);
    EXPECT_THROW(call(f.builtin, {a.get(), b.get()}), std::domain_error);
    EXPECT_EQ(matrix::getReferenceCount(a.get()), 1u);
    EXPECT_EQ(matrix::getReferenceCount(b.get()), 1u);
    const matrix::ArrayPtr positive = counting({1, 8}, 1);
    const matrix::ArrayPtr product = call(f.builtin, {positive.get(), b.get()});
    EXPECT_EQ(matrix::getTypedData<double>(product.get())[7], 8.0 * 7.0);
}

TEST(DirectEntry, FunctionsThatWarnThrowOrTakeAContextKeepTheGenericEntryOnly) {
    const Builtin throwing(makeVariants<&negate>("f", {.mayThrowErrors = true, .isElementWise = true}));
    const Builtin flagged(makeVariants<&negate>("f", {.flags = {{1, "twice"}}}));
    for (const Builtin* b : {&throwing, &flagged}) {
        for (const BuiltinVariant& variant : b->builtin.getAllVariants()) {
            EXPECT_EQ(variant.directEntry, nullptr) << variant;
        }
    }
}

} // namespace
