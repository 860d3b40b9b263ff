// The per-thread slots through which a ServiceTracker lends its best service. A slot holds
// a reference to the snapshot it lends from, tagged with the snapshot's stamp; a borrow
// whose tracker still publishes that stamp reads the slot and takes no reference, no lock
// and no read-modify-write. Stamps are unique in the process, so a slot handed to another
// tracker can never be taken for the old tracker's.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace cppmicroservices::detail {

struct BorrowSlot {
    std::uint64_t stamp = 0; // 0: nothing published yet, which lends null
    const void* service = nullptr;
    std::shared_ptr<const void> keep; // what keeps the lent service alive
};

// A slot number for a tracker, free until it is given back. A number given back may go
// to the next tracker at once: what a thread's slot of that number still lends is let go
// when the thread borrows through the number again, or ends.
std::size_t acquireBorrowSlot();
void releaseBorrowSlot(std::size_t slot);

// A stamp never handed out before.
std::uint64_t nextBorrowStamp();

// What the fast path reads of the calling thread's slots. Trivially destructible and
// constant-initialised: the table that owns the slots empties it when the thread's
// thread-locals are destroyed, so a borrow from a later thread_local destructor, or from a
// static destructor on the main thread, finds no slots instead of a destroyed table.
struct BorrowSlotView {
    BorrowSlot* slots = nullptr;
    std::size_t count = 0;
};

[[gnu::tls_model("initial-exec")]] extern constinit thread_local BorrowSlotView borrowSlotView;

// The calling thread's slot of that number, or null when it has none yet (or no longer).
inline const BorrowSlot* findBorrowSlot(std::size_t slot) noexcept
{
    const BorrowSlotView& view = borrowSlotView;
    return slot < view.count ? view.slots + slot : nullptr;
}

// Puts filled in the calling thread's slot of that number, letting go of what the slot
// lent before, and returns the slot. Once the thread's table is gone (its thread-locals
// are being destroyed, or the process is exiting) the snapshot is kept instead until the
// process exits, so that what a late borrow lends stays valid.
const BorrowSlot& storeBorrowSlot(std::size_t slot, BorrowSlot filled);

} // namespace cppmicroservices::detail
