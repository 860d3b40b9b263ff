#include "RecordingEnvironment.hpp"

#include <builtin/builtinreg/ParallelEnvironment.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using Velloc::builtin::builtinreg::detail::ParallelEnvironment;
using elementwise_test::RecordingEnvironment;
using ::testing::ElementsAre;

void raise(ParallelEnvironment& environment, const char* what) {
    try {
        throw std::runtime_error(what);
    } catch (...) {
        environment.GetLxeBuiltinAccessors()->SetInternalPendingException();
    }
}

TEST(ParallelEnvironment, onlyTheFirstErrorReachesTheParentAfterTheWarnings) {
    RecordingEnvironment parent;
    bool raised = false;
    {
        ParallelEnvironment environment(&parent, &raised);
        EXPECT_FALSE(environment.containsException());
        std::thread([&] { raise(environment, "first"); }).join();
        EXPECT_TRUE(environment.containsException());
        std::thread([&] {
            environment.AddWarningMessage(u"late warning");
            raise(environment, "second");
        }).join();
        EXPECT_TRUE(parent.events.empty()) << "nothing reaches the parent before destruction";
    }
    EXPECT_THAT(parent.events, ElementsAre(u"late warning", u"error: first"));
    EXPECT_TRUE(raised);
}

TEST(ParallelEnvironment, concurrentErrorsLeaveExactlyOne) {
    RecordingEnvironment parent;
    {
        ParallelEnvironment environment(&parent, nullptr);
        std::vector<std::jthread> workers;
        for (const char* what : {"a", "b", "c", "d"}) {
            workers.emplace_back([&environment, what] { raise(environment, what); });
        }
    }
    ASSERT_EQ(parent.events.size(), 1u);
    EXPECT_EQ(parent.events[0].rfind(u"error: ", 0), 0u);
}

TEST(ParallelEnvironment, warningsKeepTheirArrivalOrder) {
    RecordingEnvironment parent;
    constexpr int WORKERS = 4;
    constexpr int PER_WORKER = 200;
    {
        ParallelEnvironment environment(&parent, nullptr);
        environment.AddWarningMessage(u"main");
        std::vector<std::jthread> workers;
        for (int w = 0; w < WORKERS; ++w) {
            workers.emplace_back([&environment, w] {
                for (int i = 0; i < PER_WORKER; ++i) {
                    environment.AddWarningMessage(std::u16string{char16_t(u'A' + w)} + char16_t(u'0' + i % 10));
                }
            });
        }
    }
    ASSERT_EQ(parent.events.size(), 1u + WORKERS * PER_WORKER);
    EXPECT_EQ(parent.events[0], u"main");
    // Each worker's warnings arrive in the order it raised them.
    std::vector<int> next(WORKERS, 0);
    for (std::size_t k = 1; k < parent.events.size(); ++k) {
        const int w = parent.events[k][0] - u'A';
        EXPECT_EQ(parent.events[k][1], char16_t(u'0' + next[w]++ % 10));
    }
}

TEST(ParallelEnvironment, raisedFlagTellsWhetherAnythingWasCollected) {
    RecordingEnvironment parent;
    const auto replay = [&](auto collect) {
        bool raised = true;
        {
            ParallelEnvironment environment(&parent, &raised);
            collect(environment);
        }
        return raised;
    };
    EXPECT_FALSE(replay([](ParallelEnvironment&) {}));
    EXPECT_TRUE(replay([](ParallelEnvironment& e) { e.AddWarningMessage(u"w"); }));
    EXPECT_TRUE(replay([](ParallelEnvironment& e) { raise(e, "x"); }));
}

} // namespace
