#include "HeaderBlocks.hpp"

#include <atomic>

namespace matrix::detail {

constinit thread_local WaitingHeaders waitingHeaders;
constinit thread_local std::uint64_t threadSerial = 0;

std::uint64_t assignThreadSerial() noexcept {
    static std::atomic<std::uint64_t> lastSerial{0};
    threadSerial = lastSerial.fetch_add(1, std::memory_order_relaxed) + 1;
    return threadSerial;
}

bool openWaitingList() noexcept {
    struct Drain {
        ~Drain() {
            waitingHeaders.closed = true;
            waitingHeaders.capacity = 0;
            while (waitingHeaders.head != nullptr) {
                ::operator delete(popWaitingHeader());
            }
        }
    };
    if (waitingHeaders.closed || waitingHeaders.capacity != 0) {
        return false;
    }
    thread_local Drain drain;
    waitingHeaders.capacity = WaitingHeaders::MAX_WAITING;
    return true;
}

} // namespace matrix::detail
