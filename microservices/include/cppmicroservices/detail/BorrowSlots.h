// The per-thread slots through which a ServiceTracker lends its best service. A slot holds
// a reference to the snapshot it lends from, tagged with the snapshot's stamp; a borrow
// whose tracker still publishes that stamp reads the slot and takes no reference, no lock
// and no read-modify-write. Stamps are unique in the process, so a slot handed to another
// tracker can never be taken for the old tracker's.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace cppmicroservices::detail {

struct BorrowSlot {
    std::uint64_t stamp = 0; // 0: nothing published yet, which lends null
    const void* service = nullptr;
    std::shared_ptr<const void> keep; // what keeps the lent service alive
};

// A slot number for a tracker, free until it is given back.
std::size_t acquireBorrowSlot();
void releaseBorrowSlot(std::size_t slot);

// A stamp never handed out before.
std::uint64_t nextBorrowStamp();

// This thread's slots, indexed by slot number; released when the thread ends.
inline std::vector<BorrowSlot>& borrowSlots()
{
    thread_local std::vector<BorrowSlot> slots;
    return slots;
}

} // namespace cppmicroservices::detail
