// A bounded wait for tests of calls that used to hang: the body runs on the calling thread,
// and if it has not finished within the limit the process ends with a message and a
// failing status, so that a regression fails the test instead of holding up the run.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>

namespace test_support {

template <class Body>
void withinLimit(const char* what, std::chrono::seconds limit, Body&& body)
{
    std::mutex mutex;
    std::condition_variable finished;
    bool done = false;
    std::thread watchdog([&] {
        std::unique_lock lock(mutex);
        if (!finished.wait_for(lock, limit, [&] { return done; })) {
            std::fprintf(stderr, "watchdog: %s did not finish within %lld s\n", what,
                         static_cast<long long>(limit.count()));
            std::fflush(stderr);
            std::_Exit(3);
        }
    });
    try {
        body();
    } catch (...) {
        {
            const std::lock_guard lock(mutex);
            done = true;
        }
        finished.notify_all();
        watchdog.join();
        throw;
    }
    {
        const std::lock_guard lock(mutex);
        done = true;
    }
    finished.notify_all();
    watchdog.join();
}

} // namespace test_support
