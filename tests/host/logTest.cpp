#include <foundation/log/Channel.hpp>

#include <gtest/gtest.h>

#include <cstdlib>
#include <thread>

namespace {

namespace log = foundation::log;

std::string text(const char* value) { return value; }

TEST(LogChannel, CapturesOnlyWhileEnabledAndBuildsTextOnlyThen) {
    log::Channel& channel = log::channel("test::capture");
    EXPECT_EQ(&channel, &log::channel("test::capture"));
    EXPECT_EQ(channel.name(), "test::capture");
    int built = 0;
    const auto build = [&] { ++built; return text("hello"); };

    log::logIf(channel, 1, "before.cpp", 1, build);
    EXPECT_EQ(built, 0);
    {
        const log::ScopedCapture capture("test::capture");
        const log::ScopedCapture other("test::other");
        EXPECT_TRUE(channel.isEnabled(1));
        log::logIf(channel, 2, "Widget.cpp", 17, build);
        log::channel("test::other").write(1, "elsewhere", "Other.cpp", 3);
        const std::vector<log::CapturedRecord> records = capture.records();
        ASSERT_EQ(records.size(), 1u);
        EXPECT_EQ(records[0].channel, "test::capture");
        EXPECT_EQ(records[0].severity, 2);
        EXPECT_EQ(records[0].source, "Widget.cpp");
        EXPECT_EQ(records[0].line, 17);
        EXPECT_EQ(records[0].text, "hello");
        EXPECT_EQ(other.records().size(), 1u);
    }
    EXPECT_FALSE(channel.isEnabled());
    log::logIf(channel, 1, "after.cpp", 1, build);
    EXPECT_EQ(built, 1);
}

TEST(LogChannel, CollectsRecordsFromManyThreads) {
    const log::ScopedCapture capture("test::threads");
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([] {
            for (int i = 0; i < 100; ++i) {
                log::logIf(log::channel("test::threads"), 0, "t.cpp", i, [] { return text("x"); });
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(capture.records().size(), 400u);
}

TEST(LogChannel, EnabledChannelsPrintToStandardError) {
    testing::internal::CaptureStderr();
    log::enableChannels(" test::shown , test::later");
    log::channel("test::shown").write(1, "alpha", "a.cpp", 1);
    log::channel("test::hidden").write(1, "beta", "b.cpp", 1);
    log::channel("test::later").write(1, "gamma", "c.cpp", 1);
    log::enableChannels("*");
    log::channel("test::hidden").write(1, "delta", "b.cpp", 2);
    log::enableChannels("");
    log::channel("test::shown").write(1, "epsilon", "a.cpp", 2);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "[test::shown] alpha\n[test::later] gamma\n[test::hidden] delta\n");
    EXPECT_FALSE(log::channel("test::hidden").isEnabled());
}

TEST(LogChannelDeathTest, FirstUseReadsTheEnvironment) {
    const std::string style = GTEST_FLAG_GET(death_test_style);
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    setenv("BUILTIN2_LOG", "test::env,test::more", 1);
    EXPECT_EXIT(std::exit(log::channel("test::env").isEnabled() && !log::channel("test::off").isEnabled() ? 0 : 1),
                testing::ExitedWithCode(0), "");
    unsetenv("BUILTIN2_LOG");
    GTEST_FLAG_SET(death_test_style, style);
}

} // namespace
