#include "cppmicroservices/detail/BorrowSlots.h"

#include <atomic>
#include <mutex>

namespace cppmicroservices::detail {

namespace {

// Slot numbers given back, reused first so that threads' slot tables stay as small as the
// number of trackers alive at once.
struct SlotNumbers {
    std::mutex mutex;
    std::vector<std::size_t> free;
    std::size_t next = 0;
};

SlotNumbers& slotNumbers()
{
    static SlotNumbers* const numbers = new SlotNumbers; // trackers may outlive static destruction
    return *numbers;
}

std::atomic<std::uint64_t> stamps{0};

} // namespace

std::size_t acquireBorrowSlot()
{
    SlotNumbers& numbers = slotNumbers();
    const std::lock_guard lock(numbers.mutex);
    if (numbers.free.empty()) {
        return numbers.next++;
    }
    const std::size_t slot = numbers.free.back();
    numbers.free.pop_back();
    return slot;
}

void releaseBorrowSlot(std::size_t slot)
{
    SlotNumbers& numbers = slotNumbers();
    const std::lock_guard lock(numbers.mutex);
    numbers.free.push_back(slot);
}

std::uint64_t nextBorrowStamp()
{
    return stamps.fetch_add(1, std::memory_order_relaxed) + 1;
}

} // namespace cppmicroservices::detail
