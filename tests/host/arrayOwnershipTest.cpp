#include <matrix/oxArray.hpp>
#include <matrix/oxArrayLayout.hpp>

#include <gtest/gtest.h>

#include <functional>
#include <thread>
#include <vector>

namespace {

using matrix::ArrayPtr;

TEST(ArrayHandles, NullHandlesRaiseLogicErrorsNamingTheFunction) {
    try {
        matrix::getClassID(nullptr);
        ADD_FAILURE() << "null handle accepted";
    } catch (const std::logic_error& error) {
        EXPECT_STREQ(error.what(), "matrix::getClassID: null oxArray handle");
    }
    const std::vector<std::function<void()>> queries = {
        [] { matrix::getDimensions(nullptr); },        [] { matrix::getNumberOfElements(nullptr); },
        [] { matrix::isComplex(nullptr); },            [] { matrix::isTemporary(nullptr); },
        [] { matrix::getData(static_cast<oxArray*>(nullptr)); },
        [] { matrix::addReference(nullptr); },         [] { matrix::setTemporary(nullptr, true); },
        [] { matrix::rejectUnsupportedShape(nullptr); }, [] { matrix::duplicateArray(nullptr); },
        [] { matrix::completeDimensions(nullptr); },   [] { matrix::getCell(nullptr, 0); },
    };
    for (const auto& query : queries) EXPECT_THROW(query(), std::logic_error);
    EXPECT_NO_THROW(matrix::destroyArray(nullptr));
}

TEST(ArrayHandles, ReferencesMarksAndSharedData) {
    oxArray* array = matrix::createScalar(1.5);
    EXPECT_EQ(matrix::addReference(array), array);
    EXPECT_EQ(matrix::getReferenceCount(array), 2u);
    matrix::destroyArray(array);
    EXPECT_EQ(matrix::getReferenceCount(array), 1u);

    matrix::setTemporary(array, true);
    EXPECT_TRUE(matrix::isTemporary(array));
    matrix::clearTemporary(array);
    EXPECT_FALSE(matrix::isTemporary(array));
    matrix::setForeignStorage(array, true);
    EXPECT_FALSE(matrix::isOrdinaryStorage(array));

    const ArrayPtr shared(matrix::createSharedDataCopy(array));
    EXPECT_TRUE(matrix::isSharedData(array) && matrix::isSharedData(shared.get()));
    EXPECT_EQ(matrix::getData(shared.get()), matrix::getData(array));
    matrix::setTemporary(array, true);
    matrix::destroyArray(array); // the shared copy keeps the data alive
    EXPECT_EQ(*matrix::getTypedData<double>(shared.get()), 1.5);

    const ArrayPtr copy(matrix::duplicateArray(shared.get()));
    EXPECT_NE(matrix::getData(copy.get()), matrix::getData(shared.get()));
    EXPECT_FALSE(matrix::isSharedData(copy.get()) || matrix::isTemporary(copy.get()));
    EXPECT_EQ(*matrix::getTypedData<double>(copy.get()), 1.5);
}

// Headers of destroyed arrays are reused by the thread that destroyed them: a recycled
// header starts afresh, whatever the array it held before, and blocks that change threads
// or outlive their thread are neither lost nor freed twice.
TEST(ArrayHandles, RecycledHeadersStartAfresh) {
    const std::size_t dims[] = {2, 3, 4, 5, 6};
    for (int round = 0; round < 3; ++round) {
        oxArray* large = matrix::createWithOpaqueDimensions(dims, oxINT8_CLASS, oxCOMPLEX);
        matrix::setTemporary(large, true);
        matrix::addReference(large);
        matrix::destroyArray(large);
        matrix::destroyArray(large);
        const ArrayPtr scalar(matrix::createScalar(2.5f));
        EXPECT_EQ(matrix::getClassID(scalar.get()), oxSINGLE_CLASS);
        EXPECT_FALSE(matrix::isComplex(scalar.get()) || matrix::isTemporary(scalar.get()) ||
                     matrix::hasOpaqueDimensions(scalar.get()));
        EXPECT_EQ(matrix::getReferenceCount(scalar.get()), 1u);
        EXPECT_EQ(matrix::getNumberOfDimensions(scalar.get()), 2u);
        EXPECT_EQ(*matrix::getTypedData<float>(scalar.get()), 2.5f);
    }

    std::vector<oxArray*> made(200);
    std::thread maker([&] {
        for (oxArray*& array : made) array = matrix::createScalar(1.0);
        for (std::size_t i = 0; i < made.size(); i += 2) matrix::destroyArray(made[i]);
    });
    maker.join();
    std::thread destroyer([&] {
        for (std::size_t i = 1; i < made.size(); i += 2) matrix::destroyArray(made[i]);
    });
    destroyer.join();
}

TEST(ArrayHandles, OpaqueDimensionsCompleteOnceAcrossThreads) {
    const std::size_t dims[] = {2, 3, 4};
    const ArrayPtr array(matrix::createWithOpaqueDimensions(dims, oxINT16_CLASS, oxCOMPLEX));
    EXPECT_TRUE(matrix::hasOpaqueDimensions(array.get()));
    std::vector<std::thread> threads;
    std::vector<std::size_t> counts(8);
    for (std::size_t t = 0; t < counts.size(); ++t) {
        threads.emplace_back([&, t] {
            counts[t] = matrix::getNumberOfElements(array.get()) * matrix::getNumberOfDimensions(array.get());
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const std::size_t count : counts) EXPECT_EQ(count, 24u * 3u);
    EXPECT_FALSE(matrix::hasOpaqueDimensions(array.get()));
    EXPECT_EQ(matrix::getDimensions(array.get())[2], 4u);
    EXPECT_TRUE(matrix::isComplex(array.get()));
}

// A call's hold on an input keeps it alive as one more reference would. On the thread that
// made the array the hold is counted apart; the caller's own reference dropped during the
// call (the callee called back into the language, which reassigned the variable that held
// the input) leaves the array to the release of the last hold.
TEST(ArrayHandles, ACallsHoldKeepsItsInputWhenTheCallersReferenceGoesDuringTheCall) {
    oxArray* input = matrix::createScalar(2.5);
    matrix::detail::holdForCall(*input);
    EXPECT_EQ(matrix::getReferenceCount(input), 2u);
    matrix::destroyArray(input); // the caller's reference
    EXPECT_EQ(matrix::getReferenceCount(input), 1u);
    EXPECT_EQ(*matrix::getTypedData<double>(input), 2.5);
    matrix::detail::releaseAfterCall(*input); // the last: frees it (the leak checker watches)

    // Nested holds: the array lives until the outermost call's release.
    oxArray* nested = matrix::createScalar(1.0);
    matrix::detail::holdForCall(*nested);
    matrix::detail::holdForCall(*nested);
    matrix::destroyArray(nested);
    matrix::detail::releaseAfterCall(*nested);
    EXPECT_EQ(*matrix::getTypedData<double>(nested), 1.0);
    EXPECT_EQ(matrix::getReferenceCount(nested), 1u);
    matrix::detail::releaseAfterCall(*nested);

    // A callee that keeps the input (returns it as its result) keeps it past the release.
    oxArray* kept = matrix::createScalar(3.0);
    matrix::detail::holdForCall(*kept);
    matrix::destroyArray(kept);
    matrix::addReference(kept);
    matrix::detail::releaseAfterCall(*kept);
    EXPECT_EQ(matrix::getReferenceCount(kept), 1u);
    EXPECT_EQ(*matrix::getTypedData<double>(kept), 3.0);
    matrix::destroyArray(kept);

    // Another thread that drops the last reference but the caller's during the call does
    // not free it either: the caller's reference still counts until the release.
    oxArray* shared = matrix::createScalar(4.0);
    matrix::addReference(shared); // the other thread's
    matrix::detail::holdForCall(*shared);
    matrix::destroyArray(shared);
    std::thread([shared] { matrix::destroyArray(shared); }).join();
    EXPECT_EQ(*matrix::getTypedData<double>(shared), 4.0);
    EXPECT_EQ(matrix::getReferenceCount(shared), 1u);
    matrix::detail::releaseAfterCall(*shared);
}

TEST(Warnings, GoToTheInstalledHandlerOrToStandardError) {
    std::vector<fl::ustring> seen;
    matrix::WarningHandler previous = matrix::setWarningHandler([&](const fl::ustring& warning) {
        seen.push_back(warning);
        matrix::setWarningHandler(matrix::setWarningHandler(nullptr)); // re-entering must not deadlock
    });
    matrix::handleWarning(u"careful");
    EXPECT_EQ(seen, std::vector<fl::ustring>{u"careful"});

    matrix::setWarningHandler(nullptr);
    testing::internal::CaptureStderr();
    matrix::handleWarning(u"gr\u00F6\u00DFe");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Warning: gr\xC3\xB6\xC3\x9F" "e\n");
    matrix::setWarningHandler(previous);
}

} // namespace
