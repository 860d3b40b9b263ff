// The blocks that array headers live in. Every header is a block of the same size, so the
// blocks of destroyed arrays wait on a short per-thread list for the next array made on
// that thread: a 1-by-1 result, the commonest array of all, is then made and destroyed
// without a call into the allocator. Under AddressSanitizer a waiting block is poisoned,
// so that a use of an array after its destruction is still reported while it waits.
#pragma once

#include <matrix/oxArrayLayout.hpp>

#include <sanitizer/asan_interface.h>

#include <new>
#include <type_traits>

namespace matrix::detail {

struct WaitingBlock {
    WaitingBlock* next;
};

// Trivially destructible, so that arrays destroyed late in a thread's exit (or the
// process's) still find it; once closed, blocks go straight back to the allocator.
struct WaitingHeaders {
    // Enough for the results and temporaries a chain of scalar calls keeps alive at once;
    // 8 KiB per thread at most.
    static constexpr unsigned MAX_WAITING = 64;

    WaitingBlock* head = nullptr;
    unsigned count = 0;
    // MAX_WAITING once the thread's drain is registered, 0 before and once it has run: a
    // destroyed header tests one bound.
    unsigned capacity = 0;
    bool closed = false;
};

// Initial-exec: one load relative to the thread pointer, no call, for every array made.
[[gnu::tls_model("initial-exec")]] extern constinit thread_local WaitingHeaders waitingHeaders;

// Opens the thread's list on its first destroyed header, making the thread give its
// waiting blocks back when it ends; false when the list is full or closed.
bool openWaitingList() noexcept;

inline void* popWaitingHeader() noexcept {
    WaitingBlock* block = waitingHeaders.head;
    ASAN_UNPOISON_MEMORY_REGION(block, sizeof(oxArray));
    waitingHeaders.head = block->next;
    --waitingHeaders.count;
    return block;
}

std::uint64_t assignThreadSerial() noexcept;

// A header in a fresh or recycled block, owned by the calling thread and held by no call;
// the creating function sets the other fields.
inline oxArray* newHeader() {
    void* block = waitingHeaders.head != nullptr ? popWaitingHeader() : ::operator new(sizeof(oxArray));
    auto* array = new (block) oxArray;
    array->ownerThread = threadSerial != 0 ? threadSerial : assignThreadSerial();
    array->callHolds.store(0, std::memory_order_relaxed);
    array->droppedDuringCalls.store(0, std::memory_order_relaxed);
    return array;
}

// Gives the header's block back; what the header points to is the caller's to free.
inline void deleteHeader(oxArray* array) noexcept {
    static_assert(std::is_trivially_destructible_v<oxArray>);
    WaitingHeaders& waiting = waitingHeaders;
    if (waiting.count >= waiting.capacity && !openWaitingList()) [[unlikely]] {
        ::operator delete(array);
        return;
    }
    waiting.head = new (array) WaitingBlock{waiting.head};
    ++waiting.count;
    ASAN_POISON_MEMORY_REGION(array, sizeof(oxArray));
}

} // namespace matrix::detail
