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
