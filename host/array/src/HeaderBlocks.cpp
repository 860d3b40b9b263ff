#include "HeaderBlocks.hpp"

namespace matrix::detail {

constinit thread_local WaitingHeaders waitingHeaders;

void registerDrain() noexcept {
    struct Drain {
        ~Drain() {
            waitingHeaders.closed = true;
            while (waitingHeaders.head != nullptr) {
                ::operator delete(popWaitingHeader());
            }
        }
    };
    thread_local Drain drain;
    waitingHeaders.drainRegistered = true;
}

} // namespace matrix::detail
