// The variant a builtin's invoke chose for each recently seen kind of call, and how it
// calls that variant. A builtin's lists never change, so the first acceptable variant for
// a list, an output count and the keys of the inputs never changes either, nor whether its
// direct entry takes inputs of those keys: a call whose key is found skips the search and
// the entry's tests.
//
// Lock-free: each slot is guarded by a sequence number that is odd while a writer fills
// it. A reader that sees the number change (or odd) treats the slot as a miss, and a
// writer that finds the slot busy leaves it; either way the call falls back to the search.
//
// The key and the probe are inline: invoke runs them on every call.
#pragma once

#include <builtin/types/InputKey.hpp>

#include <algorithm>
#include <array>
#include <bit>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace Velloc::builtin {

class BuiltinVariant;

namespace builtinreg::detail {

// The list searched, the output count and the inputs' keys, packed. A zero first word
// marks an empty slot; every valid key has its lowest bit set.
struct CallKey {
    std::array<std::uint64_t, 3> words{};
    friend bool operator==(const CallKey&, const CallKey&) = default;
};

// How invoke calls the variant chosen for a kind of call: its direct entry on the inputs
// as they are, its direct entry's element-wise loop (for inputs small enough), or its
// generic entry.
enum class Route : std::uint8_t { GENERIC = 0, DIRECT = 1, ELEMENT_WISE = 2 };

class DispatchCache {
public:
    static constexpr std::size_t MAX_INPUTS = 4;
    static constexpr std::size_t SLOTS = 16;

    // The key of a call from the keys of its inputs; false when the first acceptable
    // variant may depend on more than those keys: an input the host rejects, or element-wise
    // broadcasting between arrays of different dimensions that are not 1-by-1. At most
    // MAX_INPUTS inputs and 0xff outputs. The input keys stay in registers; a caller that
    // needs them reads them again.
    [[gnu::always_inline]] static bool keyOf(unsigned listIndex, std::uint64_t nlhs, std::uint64_t nrhs,
                                             oxArray* const* prhs, CallKey& key) noexcept;

    // What a probe found, in one word so that it stays in a register: the variant's address
    // (null when no variant accepts the call), the route in its low bits and a bit that
    // says whether the key was found at all.
    class Lookup {
    public:
        constexpr Lookup() noexcept = default;
        Lookup(const BuiltinVariant* variant, Route route) noexcept
            : packed_(reinterpret_cast<std::uintptr_t>(variant) | static_cast<std::uintptr_t>(route) | FOUND) {}

        bool found() const noexcept { return packed_ != 0; }
        const BuiltinVariant* variant() const noexcept {
            return reinterpret_cast<const BuiltinVariant*>(packed_ & ~(ROUTE_MASK | FOUND));
        }
        Route route() const noexcept { return static_cast<Route>(packed_ & ROUTE_MASK); }

    private:
        friend class DispatchCache;
        explicit Lookup(std::uintptr_t packed) noexcept : packed_(packed) {}
        std::uintptr_t packed_ = 0;
    };
    [[gnu::always_inline]] Lookup find(const CallKey& key) const noexcept;
    // Best effort: a slot another thread is filling is left as it is.
    void store(const CallKey& key, const BuiltinVariant* variant, Route route) noexcept;

private:
    static constexpr std::uintptr_t ROUTE_MASK = 3;
    static constexpr std::uintptr_t FOUND = 4;

    // The variant's address with the route and the found bit in its low bits, as Lookup
    // keeps it.
    struct Slot {
        std::atomic<std::uint64_t> sequence{0};
        std::array<std::atomic<std::uint64_t>, 3> words{};
        std::atomic<std::uintptr_t> variant{0};
    };

    // One multiplication: its top bits, which pick the slot, depend on every bit of the key.
    static std::uint64_t hashOf(const CallKey& key) noexcept {
        return (key.words[0] ^ key.words[1] ^ std::rotl(key.words[2], 29)) * 0x9e3779b97f4a7c15ull;
    }
    // Two slots per key: where the top bits of its hash point, and the neighbour.
    static std::size_t homeSlot(std::uint64_t hash) noexcept {
        static_assert(SLOTS == 16);
        return static_cast<std::size_t>(hash >> 60);
    }
    [[gnu::always_inline]] static Lookup findIn(const Slot& slot, const CallKey& key) noexcept;
    template <std::size_t N>
    [[gnu::always_inline]] static bool keyOfInputs(unsigned listIndex, std::uint64_t nlhs, oxArray* const* prhs,
                                                   CallKey& key) noexcept;
    // Whether the call's N inputs, not all 1-by-1, decide broadcasting by their keys;
    // sameDimensions says whether all of them have the same dimensions.
    template <std::size_t N>
    static bool broadcastIsKeyed(oxArray* const* prhs, std::array<std::uint32_t, N> bits,
                                 bool& sameDimensions) noexcept;

    std::array<Slot, SLOTS> slots_;
};

// Broadcasting is decided by the keys alone when every input has the same dimensions, or
// when at most one input is not 1-by-1 and that one is not empty. Whether all dimensions
// agree is part of the key; 1-by-1 inputs agree with each other and with nothing else, so
// only several arrays that are not 1-by-1 need their dimensions compared, straight from
// their headers: every input has a key, so its dimensions are complete.
template <std::size_t N>
inline bool DispatchCache::broadcastIsKeyed(oxArray* const* prhs, std::array<std::uint32_t, N> bits,
                                            bool& sameDimensions) noexcept {
    std::size_t notScalar = 0;
    bool notScalarIsEmpty = false;
#pragma GCC unroll 4
    for (std::size_t i = 0; i < N; ++i) {
        if (types::InputKey::notScalarBits(bits[i]) != 0) {
            ++notScalar;
            notScalarIsEmpty = types::InputKey::isEmpty(bits[i]);
        }
    }
    sameDimensions = N == 1;
    if (notScalar == N && N > 1) {
        sameDimensions = true;
        for (std::size_t i = 1; i < N && sameDimensions; ++i) {
            sameDimensions = prhs[i]->numberOfDimensions == prhs[0]->numberOfDimensions &&
                             std::equal(prhs[0]->dimensions, prhs[0]->dimensions + prhs[0]->numberOfDimensions,
                                        prhs[i]->dimensions);
        }
    }
    return sameDimensions || (notScalar <= 1 && !notScalarIsEmpty);
}

// Unrolled, with the inputs' keys in registers: a call's key is a few instructions per input.
template <std::size_t N>
inline bool DispatchCache::keyOfInputs(unsigned listIndex, std::uint64_t nlhs, oxArray* const* prhs,
                                       CallKey& key) noexcept {
    std::array<std::uint32_t, N> bits{};
    std::uint32_t common = ~0u;
    std::uint32_t notScalar = 0;
#pragma GCC unroll 4
    for (std::size_t i = 0; i < N; ++i) {
        bits[i] = types::InputKey::of(prhs[i]).bits();
        common &= bits[i];
        notScalar |= types::InputKey::notScalarBits(bits[i]);
    }
    if (!types::InputKey::allSupported(common)) {
        return false;
    }
    // 1-by-1 inputs have the same dimensions, and broadcast with each other.
    bool sameDimensions = true;
    if (notScalar != 0 && !broadcastIsKeyed<N>(prhs, bits, sameDimensions)) {
        return false;
    }
    const auto pair = [&](std::size_t first) {
        return (first < N ? std::uint64_t{bits[first]} : 0) |
               (first + 1 < N ? std::uint64_t{bits[first + 1]} << 32 : 0);
    };
    key.words = {1 | (std::uint64_t{listIndex} << 1) | (std::uint64_t{sameDimensions} << 3) | (nlhs << 8) |
                     (std::uint64_t{N} << 16),
                 pair(0), pair(2)};
    return true;
}

inline bool DispatchCache::keyOf(unsigned listIndex, std::uint64_t nlhs, std::uint64_t nrhs, oxArray* const* prhs,
                                 CallKey& key) noexcept {
    static_assert(MAX_INPUTS == 4);
    switch (nrhs) {
    case 0: return keyOfInputs<0>(listIndex, nlhs, prhs, key);
    case 1: return keyOfInputs<1>(listIndex, nlhs, prhs, key);
    case 2: return keyOfInputs<2>(listIndex, nlhs, prhs, key);
    case 3: return keyOfInputs<3>(listIndex, nlhs, prhs, key);
    default: return keyOfInputs<4>(listIndex, nlhs, prhs, key);
    }
}

inline DispatchCache::Lookup DispatchCache::find(const CallKey& key) const noexcept {
    const std::size_t home = homeSlot(hashOf(key));
    if (const Lookup found = findIn(slots_[home], key); found.found()) {
        return found;
    }
    return findIn(slots_[home ^ 1], key);
}

// A seqlock without fences: the slot's words are read with acquire, so the second read of
// the sequence number cannot move before them; the writer stores them with release after
// making the number odd, so a reader that sees any new word also sees the number changed.
inline DispatchCache::Lookup DispatchCache::findIn(const Slot& slot, const CallKey& key) noexcept {
    const std::uint64_t before = slot.sequence.load(std::memory_order_acquire);
    const std::uint64_t first = slot.words[0].load(std::memory_order_acquire);
    const std::uint64_t second = slot.words[1].load(std::memory_order_acquire);
    const std::uint64_t third = slot.words[2].load(std::memory_order_acquire);
    const std::uintptr_t variant = slot.variant.load(std::memory_order_acquire);
    // An odd number is a slot being filled; a changed one, a slot refilled while read.
    const bool settled = (before & 1) == 0 && slot.sequence.load(std::memory_order_relaxed) == before;
    if (settled && first == key.words[0] && second == key.words[1] && third == key.words[2]) {
        return Lookup(variant);
    }
    return {};
}

} // namespace builtinreg::detail

} // namespace Velloc::builtin
