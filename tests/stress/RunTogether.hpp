// Threads started together, each running rounds until a round count or a time budget is
// spent: the harness of the stress cases.
#pragma once

#include <chrono>
#include <latch>
#include <thread>
#include <vector>

namespace stress {

// Calls round(thread) repeatedly on each of `threads` threads released at once; no round
// starts after `budget`, so that a case stays short under ThreadSanitizer.
template <class Round>
void runTogether(int threads, int rounds, std::chrono::seconds budget, const Round& round) {
    std::latch start(threads);
    const auto began = std::chrono::steady_clock::now();
    std::vector<std::thread> running;
    for (int t = 0; t < threads; ++t) {
        running.emplace_back([&, t] {
            start.arrive_and_wait();
            for (int r = 0; r < rounds && std::chrono::steady_clock::now() - began < budget; ++r) {
                round(t);
            }
        });
    }
    for (auto& thread : running) {
        thread.join();
    }
}

} // namespace stress
