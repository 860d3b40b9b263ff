// What copies of a variant share: the lists hold the variants by value, and each copy must
// read the same data and free it only with the last copy, from any thread.
#include "VariantSamples.hpp"

#include <builtin/builtinreg/BuiltinVariantLists.hpp>

#include <gtest/gtest.h>

#include <thread>

namespace {

using namespace samples;
using Velloc::builtin::InternedText;
using Velloc::builtin::SharedArray;
using Velloc::builtin::builtinreg::BuiltinVariantLists;

// Counts the elements alive, so that a block freed too early or never shows.
struct Counted {
    static inline int alive = 0;
    explicit Counted(int value) : value(value) { ++alive; }
    Counted(const Counted& other) : value(other.value) { ++alive; }
    ~Counted() { --alive; }
    int value;
};

TEST(SharedData, TheLastCopyFreesTheElements) {
    {
        SharedArray<Counted> first(std::vector<Counted>{Counted(1), Counted(2)});
        EXPECT_EQ(Counted::alive, 2);
        SharedArray<Counted> second = first;
        SharedArray<Counted> third;
        third = second;
        EXPECT_EQ(third.data(), first.data());
        first = SharedArray<Counted>();
        second = std::move(third);
        EXPECT_EQ(Counted::alive, 2);
        ASSERT_EQ(second.size(), 2U);
        EXPECT_EQ(second[1].value, 2);
        EXPECT_TRUE(third.empty());
    }
    EXPECT_EQ(Counted::alive, 0);
}

TEST(SharedData, EveryListReadsTheTypesAndNamesMadeOnce) {
    // A host array of any kind takes a complex scalar, so the variant has a demoted copy too.
    const BuiltinVariantLists lists(std::vector<BuiltinVariant>{variant({anyArray()}, {anyArray()}, {}, "g")});
    ASSERT_EQ(lists.all.size(), 1U);
    const BuiltinVariant& made = lists.all[0];
    std::size_t copies = 0;
    for (const auto* list : {&lists.searchedByLxe, &lists.searchedByInvokeAfterLxe,
                             &lists.searchedByInvokeAfterLxeComplexScalarRhs, &lists.searchedByInvokeNoLxe}) {
        for (const BuiltinVariant& copy : *list) {
            EXPECT_EQ(copy.inputArgTypes.data(), made.inputArgTypes.data());
            EXPECT_EQ(copy.outputArgTypes.data(), made.outputArgTypes.data());
            EXPECT_EQ(copy.inputTypes.data(), made.inputTypes.data());
            EXPECT_EQ(copy.cppFunctionName.c_str(), made.cppFunctionName.c_str());
            ++copies;
        }
    }
    EXPECT_EQ(copies, 3U);
}

TEST(SharedData, EqualTextsAreOneEntry) {
    const InternedText a("oxArray_of<$a0,$b0,$c0,$d0>");
    const InternedText b(std::string("oxArray_of<$a0,") + "$b0,$c0,$d0>");
    EXPECT_EQ(a.c_str(), b.c_str());
    EXPECT_EQ(a, b);
    EXPECT_FALSE(a == InternedText("oxArray_of<$a1,$b1,$c1,$d1>"));
    EXPECT_EQ(InternedText(""), InternedText());
    EXPECT_TRUE(InternedText().empty());
    EXPECT_EQ(a + "!", "oxArray_of<$a0,$b0,$c0,$d0>!");
}

// Threads copy and drop copies of one variant while others read it; the counts must
// neither free the shared blocks under a reader nor keep them after the last copy.
TEST(SharedDataConcurrency, CopiesMadeAndDroppedOnManyThreads) {
    Counted::alive = 0;
    {
        const SharedArray<Counted> shared(std::vector<Counted>{Counted(7)});
        const BuiltinVariant original = variant({anyArray(), scalar(oxINT8_CLASS)}, {anyArray()});
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([&] {
                for (int i = 0; i < 2000; ++i) {
                    const SharedArray<Counted> copy = shared;
                    const BuiltinVariant variantCopy = original;
                    EXPECT_EQ(copy[0].value, 7);
                    EXPECT_EQ(variantCopy.inputTypes.size(), 2U);
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        EXPECT_EQ(Counted::alive, 1);
    }
    EXPECT_EQ(Counted::alive, 0);
}

} // namespace
