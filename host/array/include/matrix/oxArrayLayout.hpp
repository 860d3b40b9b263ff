// The header every array starts with, and the queries that read it inline. Dispatch
// classifies each input of every builtin call from these fields, so a query must cost a
// few loads rather than a call into the library. Only the array library writes them.
//
// A numeric, logical or char array whose data fits in INLINE_DATA_BYTES lives in one
// allocation with its header and up to INLINE_DIMENSIONS dimensions: a 1-by-1 result, or
// the few elements of a small row, costs no allocation of its own. Larger data is a
// separate DATA_ALIGNMENT-aligned block so that element-wise loops vectorise over it.
//
// The glance word says what the array is (class, complexity, storage, shape category) in
// 32 bits, so that whoever classifies arrays by the million, as builtin dispatch does,
// reads one field instead of five.
// The flags word and the reference count are atomic because marks and references change
// while other threads read.
//
// A call holds a reference on each host array it passes for as long as it runs. On the
// thread that made the array that hold is counted in callHolds, which only that thread
// writes, so it costs a load and a store instead of two locked read-modify-writes; on any
// other thread it goes to the shared count. Either way the hold keeps the array alive as
// one more reference would: the callee may call back into the language, which may drop
// the caller's own reference (reassigning the variable that held the input). A reference
// dropped on the owner thread while calls there hold the array is counted in
// droppedDuringCalls instead of leaving the shared count, so the shared count cannot reach
// zero under the call, on any thread; the release of the last hold gives those references
// back, and frees the array if they were the last. That costs the release one more load.
#pragma once

#include <matrix/oxArray.hpp>

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace matrix::detail {

inline constexpr std::size_t INLINE_DIMENSIONS = 4;
inline constexpr std::size_t INLINE_DATA_BYTES = 64;
inline constexpr std::size_t DATA_ALIGNMENT = 64;

// Bits of the flags word.
namespace flag {
inline constexpr std::uint32_t COMPLEX_LOW = 1u << 0;
inline constexpr std::uint32_t COMPLEX_HIGH = 1u << 1;
inline constexpr std::uint32_t COMPLEX = COMPLEX_LOW | COMPLEX_HIGH;
inline constexpr std::uint32_t SPARSE = 1u << 2;
inline constexpr std::uint32_t SHARED_DATA = 1u << 3;
inline constexpr std::uint32_t TEMPORARY = 1u << 4;
inline constexpr std::uint32_t STORAGE_LOW = 1u << 5;
inline constexpr std::uint32_t STORAGE_HIGH = 1u << 6;
inline constexpr std::uint32_t FOREIGN_STORAGE = STORAGE_LOW | STORAGE_HIGH;
inline constexpr std::uint32_t TWO_DIMENSIONAL = 1u << 7;
inline constexpr std::uint32_t OPAQUE_DIMENSIONS = 1u << 8;
} // namespace flag

// The glance word's layout: class id in the low 16 bits, then complexity, sparse storage,
// a shape category in 4 bits and the dimension count of that category in 6, and KNOWN in
// the top bit. Zero for an array that is not told at a glance (opaque dimensions until
// they are completed, more than two dimensions, a class id out of range, an element count
// that overflowed): those are classified from the header's fields.
namespace glance {
inline constexpr std::uint32_t CLASS_MASK = 0xffff;
inline constexpr std::uint32_t COMPLEX = 1u << 16;
inline constexpr std::uint32_t SPARSE = 1u << 17;
inline constexpr unsigned SHAPE_SHIFT = 18;
inline constexpr unsigned DIMS_SHIFT = 22;
inline constexpr std::uint32_t KNOWN = 1u << 31;

enum Shape : std::uint32_t { EMPTY_ROW = 1, EMPTY_COLUMN = 2, EMPTY = 3, SCALAR = 4, ROW = 5, COLUMN = 6, MATRIX = 8 };

constexpr std::uint32_t word(std::uint32_t classId, std::uint32_t flags, std::uint32_t shape,
                             std::uint32_t numDims) noexcept {
    return (classId & CLASS_MASK) | KNOWN | ((flags & flag::COMPLEX) == flag::COMPLEX ? COMPLEX : 0) |
           ((flags & flag::SPARSE) != 0 ? SPARSE : 0) | (shape << SHAPE_SHIFT) | (numDims << DIMS_SHIFT);
}

// The word of a two-dimensional array of a class id within 0..MAX_CLASS_ID.
constexpr std::uint32_t ofMatrix(std::uint32_t classId, std::uint32_t flags, std::size_t rows,
                                 std::size_t cols) noexcept {
    if (rows == 1 && cols == 1) {
        return word(classId, flags, SCALAR, 0);
    }
    if (rows == 0 || cols == 0) {
        return word(classId, flags, rows == 1 ? EMPTY_ROW : (cols == 1 ? EMPTY_COLUMN : EMPTY), 0);
    }
    if (rows == 1 || cols == 1) {
        return word(classId, flags, rows == 1 ? ROW : COLUMN, 1);
    }
    return word(classId, flags, MATRIX, 2);
}
} // namespace glance

// What arrays other than plain numeric ones carry besides their header.
struct ArrayExtras;

// The calling thread's serial number: 0 until it makes its first array, then unique in
// the process and never reused, so no other thread ever matches an array's owner.
[[gnu::tls_model("initial-exec")]] extern constinit thread_local std::uint64_t threadSerial;

} // namespace matrix::detail

struct oxArray {
    oxClassID classId;
    std::atomic<std::uint32_t> flags;
    std::atomic<std::uint32_t> referenceCount;
    std::uint32_t numberOfDimensions;
    std::size_t numberOfElements; // saturates at the largest size_t when the product overflows
    std::size_t* dimensions;      // inlineDimensions, or a separate block for more dimensions
    void* data;                   // inlineData, a separate aligned block, another array's data, or null
    matrix::detail::ArrayExtras* extras; // null for plain numeric, logical and char arrays
    std::uint64_t ownerThread;           // serial number of the thread that made the array
    std::atomic<std::uint32_t> callHolds; // references held by calls on the owner thread
    // References dropped on the owner thread while callHolds was not zero, still counted in
    // referenceCount until the last hold's release; written only by the owner thread.
    std::atomic<std::uint32_t> droppedDuringCalls;
    // Set when the array is made, or with release order once opaque dimensions are complete.
    std::atomic<std::uint32_t> glance;
    std::size_t inlineDimensions[matrix::detail::INLINE_DIMENSIONS];
    alignas(16) std::byte inlineData[matrix::detail::INLINE_DATA_BYTES];
};

namespace matrix {

namespace detail {

[[noreturn]] void throwNullHandle(const char* function);
void completeOpaqueDimensions(const oxArray& array);

// Throws std::logic_error naming the function when given a null handle. Inline: every
// query passes through it, and the test must cost no call.
inline const oxArray& checkedArray(const oxArray* array, const char* function) {
    if (array == nullptr) [[unlikely]] {
        throwNullHandle(function);
    }
    return *array;
}
inline oxArray& checkedArray(oxArray* array, const char* function) {
    return const_cast<oxArray&>(checkedArray(static_cast<const oxArray*>(array), function));
}

// Queries that read dimensions call this first: opaque dimensions are materialised
// once, and concurrent callers wait for the first.
inline void ensureDimensions(const oxArray& array) {
    if ((array.flags.load(std::memory_order_acquire) & flag::OPAQUE_DIMENSIONS) != 0) [[unlikely]] {
        completeOpaqueDimensions(array);
    }
}

inline const oxArray& withDimensions(const oxArray* a, const char* function) {
    const oxArray& array = checkedArray(a, function);
    ensureDimensions(array);
    return array;
}

inline bool allFlagsSet(const oxArray* a, const char* function, std::uint32_t bits) {
    return (checkedArray(a, function).flags.load(std::memory_order_relaxed) & bits) == bits;
}

// Frees the array and what its creation attached, once its last reference is gone.
void freeArray(oxArray* array);

// One more reference on an array known to be valid: addReference without the check, for
// a caller that takes a reference around a call and gives it back after.
inline void holdReference(oxArray& array) noexcept { array.referenceCount.fetch_add(1, std::memory_order_relaxed); }

// Whether a reference dropped on this thread must wait for the release of the calls that
// hold the array on it (calls of another thread hold through referenceCount). callHolds is
// not zero only while the owner thread runs such a call, and only that thread writes it.
inline bool dropWaitsForCalls(oxArray& array) noexcept {
    if (array.callHolds.load(std::memory_order_relaxed) != 0 && array.ownerThread == threadSerial) [[unlikely]] {
        array.droppedDuringCalls.store(array.droppedDuringCalls.load(std::memory_order_relaxed) + 1,
                                       std::memory_order_relaxed);
        return true;
    }
    return false;
}

// Gives back a reference taken with holdReference, freeing the array if it was the last
// (another holder may have dropped its own meanwhile).
inline void dropReference(oxArray& array) {
    if (dropWaitsForCalls(array)) {
        return;
    }
    if (array.referenceCount.fetch_sub(1, std::memory_order_acq_rel) == 1) [[unlikely]] {
        freeArray(&array);
    }
}

// Gives back the references dropped under the calls whose last hold was just released.
void settleDroppedDuringCalls(oxArray& array);

// What a call does to every input it passes as a host array: the callee may keep it, so
// it is no longer a temporary. Most inputs are not, and a read costs less than the locked
// write that clears the mark.
inline void clearTemporaryMark(oxArray& array) noexcept {
    if ((array.flags.load(std::memory_order_relaxed) & flag::TEMPORARY) != 0) [[unlikely]] {
        array.flags.fetch_and(~flag::TEMPORARY, std::memory_order_relaxed);
    }
}

// A reference held around a call; the callee sees it in getReferenceCount. Until
// releaseAfterCall gives it back on the same thread, the array is not freed, whoever drops
// the other references meanwhile. thread is the calling thread's serial, which a caller
// holding several arrays reads once.
[[gnu::always_inline]] inline void holdForCall(oxArray& array, std::uint64_t thread = threadSerial) noexcept {
    if (array.ownerThread == thread) [[likely]] {
        array.callHolds.store(array.callHolds.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    } else {
        holdReference(array);
    }
}

[[gnu::always_inline]] inline void releaseAfterCall(oxArray& array, std::uint64_t thread = threadSerial) {
    if (array.ownerThread == thread) [[likely]] {
        const std::uint32_t holds = array.callHolds.load(std::memory_order_relaxed) - 1;
        array.callHolds.store(holds, std::memory_order_relaxed);
        // Dropped references first: the last hold's release, the common case, then runs
        // straight through.
        if (array.droppedDuringCalls.load(std::memory_order_relaxed) != 0 && holds == 0) [[unlikely]] {
            settleDroppedDuringCalls(array);
        }
    } else {
        dropReference(array);
    }
}

} // namespace detail

inline oxClassID getClassID(const oxArray* a) { return detail::checkedArray(a, "matrix::getClassID").classId; }

inline std::size_t getNumberOfDimensions(const oxArray* a) {
    return detail::withDimensions(a, "matrix::getNumberOfDimensions").numberOfDimensions;
}

inline Dims getDimensions(const oxArray* a) {
    const oxArray& array = detail::withDimensions(a, "matrix::getDimensions");
    return {array.dimensions, array.numberOfDimensions};
}

inline std::size_t getNumberOfElements(const oxArray* a) {
    return detail::withDimensions(a, "matrix::getNumberOfElements").numberOfElements;
}

inline bool isEmpty(const oxArray* a) { return detail::withDimensions(a, "matrix::isEmpty").numberOfElements == 0; }

inline bool isScalar(const oxArray* a) { return detail::withDimensions(a, "matrix::isScalar").numberOfElements == 1; }

inline bool isComplex(const oxArray* a) { return detail::allFlagsSet(a, "matrix::isComplex", detail::flag::COMPLEX); }

inline bool isSparse(const oxArray* a) { return detail::allFlagsSet(a, "matrix::isSparse", detail::flag::SPARSE); }

inline void* getData(oxArray* a) { return detail::checkedArray(a, "matrix::getData").data; }

inline const void* getData(const oxArray* a) { return detail::checkedArray(a, "matrix::getData").data; }

} // namespace matrix
