#include "cppmicroservices/detail/BorrowSlots.h"

#include <atomic>
#include <deque>
#include <mutex>
#include <utility>
#include <vector>

namespace cppmicroservices::detail {

constinit thread_local BorrowSlotView borrowSlotView;

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

// Trivially destructible, so that it still reads right after the table is destroyed.
constinit thread_local bool tableGone = false;

// The thread's slots. Its destruction, among the thread's thread-locals, empties the view
// before it lets go of what the slots lent, so that a service destroyed then may borrow.
struct BorrowTable {
    std::vector<BorrowSlot> slots;

    BorrowTable() = default;
    BorrowTable(const BorrowTable&) = delete;
    BorrowTable& operator=(const BorrowTable&) = delete;
    ~BorrowTable()
    {
        borrowSlotView = BorrowSlotView();
        tableGone = true;
        std::vector<BorrowSlot> lent;
        lent.swap(slots);
    }
};

BorrowTable& borrowTable()
{
    thread_local BorrowTable table;
    return table;
}

// What borrows made after their thread's table went lend from, kept until the process
// exits: nothing runs after that to use it. One entry per snapshot.
struct LateLoans {
    std::mutex mutex;
    std::deque<BorrowSlot> kept; // a deque, so that growing it moves no entry
};

LateLoans& lateLoans()
{
    static LateLoans* const loans = new LateLoans; // borrows come from static destructors
    return *loans;
}

const BorrowSlot& keepUntilExit(BorrowSlot filled)
{
    static const BorrowSlot nothing;
    if (filled.service == nullptr) {
        return nothing;
    }
    LateLoans& loans = lateLoans();
    const std::lock_guard lock(loans.mutex);
    for (const BorrowSlot& kept : loans.kept) {
        if (kept.stamp == filled.stamp) {
            return kept;
        }
    }
    return loans.kept.emplace_back(std::move(filled));
}

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

const BorrowSlot& storeBorrowSlot(std::size_t slot, BorrowSlot filled)
{
    if (tableGone) {
        return keepUntilExit(std::move(filled));
    }
    std::vector<BorrowSlot>& slots = borrowTable().slots;
    if (slot >= slots.size()) {
        slots.resize(slot + 1);
        borrowSlotView = BorrowSlotView{slots.data(), slots.size()};
    }
    {
        // The slot's earlier snapshot may be the last reference to a service, whose
        // destructor may borrow on this thread and grow the table: index it afresh after.
        const BorrowSlot earlier = std::exchange(slots[slot], std::move(filled));
    }
    return slots[slot];
}

} // namespace cppmicroservices::detail
